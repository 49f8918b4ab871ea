// What is wrong with a definition: the rules by which it fails or becomes what nobody wants.
#pragma once

#include <string>
#include <vector>

#include "definition.h"

namespace qarv::command {

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

/// Whether a definition fails by the rules that it breaks.
bool HasFailure(const Findings& findings);

/// The broken rules of a definition, those by which it fails first.  No waveform is generated,
/// except to see whether a pulse can be compensated.
Findings FindingsOf(const Definition& definition);

/// The broken rules of a definition and, where it does not fail, its waveform with what is wrong
/// with that.
/// @param[out] def  the waveform; undefined where the definition fails
Findings Examine(const Definition& definition, wave_def::CWaveDef* def);

/// What is wrong with a waveform that was generated: samples that are no numbers, crossed bands, a
/// pulse's bands without width, a waveform outside its own bands.
Findings FindingsOf(const wave_def::CWaveDef& def);

/// Why the library refuses a definition: the first rule by which it fails.
std::string WhyRefused(const Definition& definition);

/// A finding as one text: what is wrong, and what works.
std::string FindingText(const Finding& finding);

/// Whether a classical pulse that breaks no other rule can be compensated.  The only rule that has
/// to try, and therefore one of its own.
Findings CompensationFindings(const wave_def::CWaveDefClassical& set, double fsamp);

/// Whether a compensation has taken more of the pulse's velocity change than the usual tolerance
/// leaves, and how much of it OptRatLevel may spend.
/// @param[in] def  the waveform of the definition
Findings VelocityFindings(const Definition& definition, const wave_def::CWaveDef& def);

// The tables, one per family.  `fsamp` is the sampling frequency of the definition [Hz].
Findings BrokenRules(const wave_def::CWaveDefClassical& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefSymmetry& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefSineBeatBurst& set, double fsamp);
Findings BrokenRules(const MeasuredSet& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefGradual& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefSingle& set, double fsamp);
Findings BrokenRules(const wave_def::CWaveDefDamping& set, double fsamp);

}  // namespace qarv::command
