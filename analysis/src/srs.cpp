// The interface of the shock response spectra: what is refused, the filter, the frequencies.
#include "analysis/srs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"
#include "srs/banks.h"
#include "srs/oscillator.h"
#include "srs/spectrum.h"

namespace qarv::analysis {

using common::elementary::Exp;
using common::elementary::Log;

SrsFilter MakeSrsFilter(double frequency, double zeta, double fsamp, SrsResponse response) {
  const Oscillator o(common::kTwoPi * frequency / fsamp, zeta);
  const StepRule rule(o, DriveOf(o, response));
  const double unit = UnitOf(o, response, fsamp);
  // From differences to samples.
  return {unit * rule.newest, unit * (rule.held + rule.before - rule.newest), -unit * rule.before,
          rule.stiffness - 1.0 - rule.kept, rule.kept};
}

SrsExtremes SrsPoint::Total() const {
  return {std::max(primary.positive, residual.positive),
          std::min(primary.negative, residual.negative)};
}

std::vector<SrsPoint> CalcSrs(std::span<const double> shock, double fsamp,
                              std::span<const double> frequencies, double zeta,
                              SrsResponse response) {
  // Written so that a NaN is refused.
  if (!(fsamp > 0.0 && std::isfinite(fsamp) && zeta >= 0.0 && zeta < 1.0)) return {};
  for (const double f : frequencies) {
    if (!(f > 0.0 && f < 0.5 * fsamp)) return {};
  }
  if (!std::all_of(shock.begin(), shock.end(), [](double v) { return std::isfinite(v); }))
    return {};
  return CalcSrsWith(common::BestInstructionSet(), shock, fsamp, frequencies, zeta, response);
}

std::vector<double> SrsFrequencies(double low, double high, double perOctave) {
  constexpr double kMost = 1e6;  // lines; more is a mistake
  if (!(low > 0.0 && low <= high && std::isfinite(high) && perOctave > 0.0)) return {};
  constexpr double kLn2 = 0.6931471805599453;
  const double steps = Log(high / low) / kLn2 * perOctave + 1e-9;
  if (!(steps < kMost)) return {};
  std::vector<double> frequencies(static_cast<std::size_t>(common::FloorToIndex(steps) + 1));
  for (std::size_t k = 0; k < frequencies.size(); ++k) {
    const double octaves = static_cast<double>(k) / perOctave;
    const double whole = std::floor(octaves);  // exact, so that an octave is
    frequencies[k] = low * std::ldexp(Exp((octaves - whole) * kLn2), static_cast<int>(whole));
  }
  return frequencies;
}

}  // namespace qarv::analysis
