// The velocity change of a compensated pulse, beside the nominal one that a standard asks for.
#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "analysis/shock.h"
#include "definition/main_pulse.h"
#include "rules/level_search.h"
#include "rules/rule_table.h"

namespace qarv::definition {

using fmt::format;
using wave_def::CWaveDef;
using Set = wave_def::CWaveDefClassical;

namespace {

constexpr double kUsual = 10.0;  // [%] that the standards allow

/// Of the velocity change from the nominal one.  [%]
double DeviationOf(const CWaveDef& def) {
  const MainPulse pulse = MainPulseOf(def);
  const double change =
      analysis::VelocityChange(SpanOf(def.GetWave()), SampleRateOf(def), pulse.first, pulse.last);
  return 100.0 * (change / pulse.velocityChange - 1.0);
}

bool Keeps(double deviation) { return std::fabs(deviation) <= kUsual; }

/// The largest OptRatLevel, in hundredths, that is found to keep the velocity change where `level`
/// does not.
std::optional<double> LargestLevel(const Definition& definition, double level) {
  const auto keeps = [&](double triedLevel) {
    Definition tried = definition;
    std::get<Set>(tried.set).SetOptRatLevel(triedLevel);
    CWaveDef def;
    return TryToGenerate(tried, &def) && Keeps(DeviationOf(def));
  };
  const auto up = [](double steps) { return std::ceil(steps); };
  return LevelNextTo(InHundredths(level, up), {0.0}, keeps);
}

}  // namespace

Findings VelocityFindings(const Definition& definition, const CWaveDef& def) {
  if (!IsCompensated(def)) return {};
  const double deviation = DeviationOf(def);
  if (!std::isfinite(deviation) || Keeps(deviation)) return {};
  const Set& set = std::get<Set>(definition.set);
  Finding finding{Severity::Warns,
                  format("the velocity change of the pulse is {:.3g} % {} nominal, beyond the "
                         "usual {:g} %",
                         std::fabs(deviation), deviation < 0.0 ? "below" : "above", kUsual),
                  {}};
  if (set.GetCmpType() == Set::CMP_OPTIMIZED) {
    if (const auto level = LargestLevel(definition, set.GetOptRatLevel())) {
      finding.remedies = {{"OptRatLevel", *level}};
    } else {
      finding.text += "; not even OptRatLevel 0 keeps it";
    }
  }
  return {finding};
}

}  // namespace qarv::definition
