// A definition: what is asked of a waveform, before it is generated.  From JSON and back, from a
// record and back, and on to the waveform.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "definition/error.h"
#include "wave_def/wave_def.h"

namespace qarv::definition {

/// The samples of a measured waveform.
struct Samples {
  common::CDataArrayFloatT<double> values;  // [amplitude unit]
  double fsamp = 0.0;                       // [Hz]; 0 if their source does not say
};

/// The parameters of a measured waveform, with its samples.
struct MeasuredSet {
  wave_def::CWaveDefMeasure set;
  Samples samples;
};

/// The parameters of a waveform, of whichever family.
using ParameterSet =
    std::variant<wave_def::CWaveDefClassical, wave_def::CWaveDefSymmetry,
                 wave_def::CWaveDefSineBeatBurst, MeasuredSet, wave_def::CWaveDefGradual,
                 wave_def::CWaveDefSingle, wave_def::CWaveDefDamping>;

/// A waveform family.
struct Family {
  const char* key;    // of its object in a definition
  const char* title;  // for people
  wave_def::CWaveDef::WAVE_TYPE type;
};

/// What is asked of a waveform.
struct Definition {
  wave_def::CWaveDef settings;  // defines nothing yet
  ParameterSet set;

  const Family& GetFamily() const;
};

/// The family of a defined waveform.
/// @throws Error if nothing is defined
const Family& FamilyOf(const wave_def::CWaveDef& def);

// ---- JSON --------------------------------------------------------------------------------------

/// Where the samples of a measured waveform come from that the definition names, and does not hold
/// itself.
/// @param[in] path       as the definition has it
/// @param[in] needsRate  whether the definition has no sampling frequency of its own
using SampleSource = std::function<Samples(const std::string& path, bool needsRate)>;

/// Reads a definition.
/// @param[in] text    one JSON object with settings and exactly one waveform family
/// @param[in] source  of samples; without one a measured waveform has its own in the text
/// @throws Error, with key and line, if it is not one: no JSON, an unknown or a missing key, a
/// value
///         of another kind, nesting and keys beyond every definition.  What `source` throws passes.
Definition FromJson(std::string_view text, const SampleSource& source = {});

/// A definition as JSON text, with every field, so that reading it gives the same.
/// @param[in] samplesFile  the file that the samples of a measured waveform are kept in; if it is
///                         empty they stand in the text
std::string ToJson(const Definition& definition, const std::string& samplesFile = {});

// ---- Records -----------------------------------------------------------------------------------

/// Restores a waveform from its record, with the samples and bands that were stored.
/// @throws Error if the bytes are not one whole record
wave_def::CWaveDef FromRecord(std::span<const unsigned char> record);

/// The record of a defined waveform.
/// @throws Error if nothing is defined
std::vector<unsigned char> ToRecord(wave_def::CWaveDef& def);

/// The definition of a defined waveform.
/// @throws Error if nothing is defined
Definition DefinitionOf(const wave_def::CWaveDef& def);

// ---- The waveform ------------------------------------------------------------------------------

/// Has the library generate the waveform of a definition.
/// @return false if it refuses
/// @throws std::bad_alloc, std::length_error where it does not fit into memory
bool TryToGenerate(const Definition& definition, wave_def::CWaveDef* def);

/// The waveform of a definition.
/// @throws Error (Refused), with the reason, if there is none
wave_def::CWaveDef Generate(const Definition& definition);

/// The samples of an array.
inline std::span<const double> SpanOf(const common::CDataArrayFloatT<double>& samples) {
  return {samples.begin(), samples.end()};
}

/// The sampling frequency of a defined waveform's samples [Hz]: for a classical pulse that of its
/// analysis frequency, otherwise Fsamp.
double SampleRateOf(const wave_def::CWaveDef& def);

/// Whether a waveform has samples, and bands of the same length; a record may have others.
bool HasBands(const wave_def::CWaveDef& def);

}  // namespace qarv::definition
