// A definition as a JSON file: the settings of CWaveDef and one waveform family.
#pragma once

#include <span>
#include <string>
#include <variant>

#include "input_file.h"
#include "json_fields.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// The parameters of a measured waveform, with its samples.
struct MeasuredSet {
  wave_def::CWaveDefMeasure set;
  common::CDataArrayFloatT<double> samples;  // [amplitude unit]
  double fsamp;  // [Hz] of the file's time column; 0 if it was not needed
};

/// The parameters of a waveform, of whichever family.
using ParameterSet =
    std::variant<wave_def::CWaveDefClassical, wave_def::CWaveDefSymmetry,
                 wave_def::CWaveDefSineBeatBurst, MeasuredSet, wave_def::CWaveDefGradual,
                 wave_def::CWaveDefSingle, wave_def::CWaveDefDamping>;

/// What the command knows of a waveform family.
struct Family {
  const char* key;    // of its object in a definition
  const char* title;  // for people
  wave_def::CWaveDef::WAVE_TYPE type;
  /// Reads the family's object.  Where the definition file gives no sampling frequency
  /// (`hasFsamp`), all that is needed for the family's own is read too.
  ParameterSet (*read)(const Json& json, const Place& at, bool hasFsamp);
  /// The sampling frequency that the parameters imply [Hz]; null where it must be given.
  double (*ownFsamp)(const ParameterSet& set);
  /// Writes the family's object.  `samplesFile` is where the samples of a measured waveform are
  /// kept.
  Json (*write)(const wave_def::CWaveDef& def, const std::string& samplesFile);
};

// One per file in families/.
extern const Family kClassicalFamily;
extern const Family kDampingFamily;
extern const Family kGradualFamily;
extern const Family kMeasureFamily;
extern const Family kSineBeatBurstFamily;
extern const Family kSingleFamily;
extern const Family kSymmetryFamily;

/// The samples of an array.
inline std::span<const double> SpanOf(const common::CDataArrayFloatT<double>& samples) {
  return {samples.begin(), samples.end()};
}

/// The family of a defined waveform.
const Family& FamilyOf(const wave_def::CWaveDef& def);

/// The sampling frequency of a defined waveform's samples [Hz]: for a classical pulse that of its
/// analysis frequency, otherwise Fsamp.
double SampleRateOf(const wave_def::CWaveDef& def);

/// Refuses a definition without samples, or with a band of another length, as a record may have it.
void RequireBands(const wave_def::CWaveDef& def, const std::string& source);

/// What a definition file says, before its waveform is generated.
struct Definition {
  const Family* family;
  wave_def::CWaveDef settings;  // defines nothing yet
  ParameterSet set;
};

/// Reads a definition file.  Ends the command where the file cannot be used.
Definition ReadDefinition(InputFile file);

/// Has the library generate the waveform of a definition.
/// @return false if it refuses
bool DefineWave(const Definition& definition, wave_def::CWaveDef* def);

/// The same where the waveform may be larger than the memory.
/// @return why there is none; empty if there is
std::string TryToDefine(const Definition& definition, wave_def::CWaveDef* def);

/// What is said of a definition that is refused: its file, its family and the reason.
std::string RefusalLine(const Definition& definition, const std::string& file,
                        const std::string& reason);

/// The waveform of a definition.  Ends the command where the library refuses it.
/// @param[in] file  of the definition, for messages
wave_def::CWaveDef Generated(const Definition& definition, const std::string& file);

/// Reads a definition file and defines its waveform.
/// Ends the command where the file cannot be used or the library refuses the definition.
wave_def::CWaveDef LoadDefinition(InputFile file);

/// A definition as JSON text, with every field.
std::string DefinitionText(const wave_def::CWaveDef& def, const std::string& samplesFile);

}  // namespace qarv::command
