// A definition as a JSON file: the settings of CWaveDef and one waveform family.
#pragma once

#include <string>
#include <vector>

#include "json_fields.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// What the command knows of a waveform family.
struct Family {
  const char* key;    // of its object in a definition
  const char* title;  // for people
  wave_def::CWaveDef::WAVE_TYPE type;
  /// Reads the family's object and defines the waveform.  Where the definition file gives no
  /// sampling frequency (`hasFsamp`), a family that knows it sets it.
  /// @return why the library refused it; empty if it is defined
  std::string (*define)(const Json& json, const Place& at, bool hasFsamp, wave_def::CWaveDef& def);
  /// Writes the family's object.  `samplesFile` is where the samples of a measured waveform are
  /// kept.
  Json (*write)(const wave_def::CWaveDef& def, const std::string& samplesFile);
  bool needsFsamp;  // whether the sampling frequency must be given
};

// One per file in families/.
extern const Family kClassicalFamily;
extern const Family kDampingFamily;
extern const Family kGradualFamily;
extern const Family kMeasureFamily;
extern const Family kSineBeatBurstFamily;
extern const Family kSingleFamily;
extern const Family kSymmetryFamily;

/// The family of a defined waveform.
const Family& FamilyOf(const wave_def::CWaveDef& def);

/// The sampling frequency of a defined waveform's samples [Hz]: for a classical pulse that of its
/// analysis frequency, otherwise Fsamp.
double SampleRateOf(const wave_def::CWaveDef& def);

/// Reads a definition file and defines its waveform.
/// Ends the command where the file cannot be used or the library refuses the definition.
wave_def::CWaveDef LoadDefinition(const std::string& file);

/// A definition as JSON text, with every field.
std::string DefinitionText(const wave_def::CWaveDef& def, const std::string& samplesFile);

/// What makes a definition fail, with the reason for each; the first broken one counts.
using Rules = std::vector<std::pair<bool, std::string>>;

inline std::string BrokenRule(const Rules& rules) {
  for (const auto& [broken, reason] : rules) {
    if (broken) return reason;
  }
  return "the parameters give no waveform";
}

/// The library's definition call for a set, and the reason where it refuses.
template <class Set>
std::string DefineSet(wave_def::CWaveDef& def, const Set& set,
                      bool (wave_def::CWaveDef::*define)(const Set&), const Rules& rules) {
  return (def.*define)(set) ? std::string() : BrokenRule(rules);
}

}  // namespace qarv::command
