// How a table of rules is written: a row is the severity, when the rule is broken, what to say and
// what works.
#pragma once

#include <string>
#include <vector>

#include "definition/check.h"

namespace qarv::definition {

/// A row of a table.
struct Rule {
  Severity severity;
  bool broken;
  std::string text;
  std::vector<Remedy> remedies = {};
};

/// The broken rules of a table, those by which a definition fails first.  What would be no number
/// is not proposed.
Findings Broken(const std::vector<Rule>& table);

/// Warns where a stretch that should be smooth has fewer samples.
/// @param[in] what     "a period"
/// @param[in] samples  of it; nothing is said of a number that is not above 0
/// @param[in] key      of the frequency that is too low, `value` now [Hz]
Rule TooCoarse(const std::string& what, double samples, const std::string& key, double value);

// What several families ask of their sampling frequency, period and level.
Rule NoRate(double fsamp);
Rule OddRate(double fsamp);
Rule NoPeriod(double period);
Rule NoLevel(const char* key, double level);

/// A number of at most six digits that is not below, or not above, v, which is above 0.
double RoundedUp(double v);
double RoundedDown(double v);

}  // namespace qarv::definition
