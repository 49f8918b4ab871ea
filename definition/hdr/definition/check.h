// What is wrong with a definition: the rules by which it fails or becomes what nobody wants.
#pragma once

#include <string>
#include <vector>

#include "definition/definition.h"

namespace qarv::definition {

/// The fewest samples that show a half-sine or a period as what it is.
inline constexpr double kLeastSamples = 10.0;

enum class Severity { Fails, Warns };

/// A value of one key that mends a definition, all else left as it is.
struct Remedy {
  std::string key;
  double value;
};

/// A broken rule.
struct Finding {
  Severity severity;
  std::string text;              // what is wrong, with its numbers
  std::vector<Remedy> remedies;  // the nearest values that work, where there are such; each alone
};
using Findings = std::vector<Finding>;

/// The broken rules of a definition, those by which it fails first, and, where it does not fail,
/// what is wrong with its waveform.
/// @param[out] def  if it is not null: the waveform; undefined where the definition fails
Findings Check(const Definition& definition, wave_def::CWaveDef* def = nullptr);

/// The broken rules of a definition, those by which it fails first.  No waveform is generated,
/// except to see whether a pulse can be compensated.
Findings BrokenRulesOf(const Definition& definition);

/// What is wrong with a waveform that was generated: samples that are no numbers, crossed bands, a
/// pulse's bands without width, a waveform outside its own bands.
Findings CheckWave(const wave_def::CWaveDef& def);

/// Whether a definition fails by the rules that it breaks.
bool HasFailure(const Findings& findings);

/// Why the library refuses a definition: the first rule by which it fails, or the want of memory.
std::string WhyRefused(const Definition& definition);

/// A finding as one text: what is wrong, and what works.
std::string FindingText(const Finding& finding);

/// Findings as a JSON list of {"Severity": "fails" | "warns", "Text", "Remedies": [{"Key",
/// "Value"}]}.
std::string FindingsJson(const Findings& findings);

}  // namespace qarv::definition
