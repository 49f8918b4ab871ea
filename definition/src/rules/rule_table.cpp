// How a table of rules is read, and the rows that several tables have.
#include "rules/rule_table.h"

#include <fmt/format.h>

#include <cmath>

#include "text/text.h"

namespace qarv::definition {

using fmt::format;
using enum Severity;

Findings Broken(const std::vector<Rule>& table) {
  Findings findings;
  for (const Severity severity : {Fails, Warns}) {
    for (const Rule& rule : table) {
      if (!rule.broken || rule.severity != severity) continue;
      Finding& finding = findings.emplace_back(Finding{severity, rule.text, rule.remedies});
      std::erase_if(finding.remedies, [](const Remedy& r) { return !std::isfinite(r.value); });
    }
  }
  return findings;
}

namespace {

/// v in units of its sixth digit, rounded by `round`; what is whole but for rounding errors stays.
template <class Round>
double ToSixDigits(double v, double slack, Round round) {
  const double unit = std::pow(10.0, std::floor(std::log10(v)) - 5.0);
  double rounded = v;
  text::ParseNumber(format("{:.6g}", round(v / unit * (1.0 + slack)) * unit), &rounded);
  return rounded;
}

}  // namespace

double RoundedUp(double v) {
  return ToSixDigits(v, -1e-12, [](double x) { return std::ceil(x); });
}

double RoundedDown(double v) {
  return ToSixDigits(v, 1e-12, [](double x) { return std::floor(x); });
}

Rule TooCoarse(const std::string& what, double samples, const std::string& key, double value) {
  const bool broken = samples > 0.0 && samples < kLeastSamples && value > 0.0;
  Rule rule{Warns, broken,
            format("{} has {:.3g} samples, fewer than {:g}", what, samples, kLeastSamples)};
  if (broken) rule.remedies = {{key, RoundedUp(value * kLeastSamples / samples)}};
  return rule;
}

Rule NoRate(double fsamp) { return {Fails, fsamp == 0.0, "Fsamp is 0"}; }

Rule OddRate(double fsamp) {
  return {Warns, !(fsamp > 0.0 && std::isfinite(fsamp)) && fsamp != 0.0,
          format("Fsamp is {:g}, which is no sampling frequency", text::Plain(fsamp))};
}

Rule NoPeriod(double period) {
  return {Warns, period == 0.0, "Period is 0, so that the samples are no numbers"};
}

Rule NoLevel(const char* key, double level) {
  return {Warns, level == 0.0, format("{} is 0, and so is the waveform", key)};
}

}  // namespace qarv::definition
