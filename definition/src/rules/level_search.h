// The search for the OptRatLevel at which a compensation changes from what serves to what does not.
#pragma once

#include <cmath>
#include <optional>

namespace qarv::definition {

/// An OptRatLevel in hundredths.
struct Hundredths {
  double steps;
  double Level() const { return steps / 100.0; }
};

/// The clamped level in hundredths, rounded by `round`; a NaN is 0, as for the compensation.
template <class Round>
Hundredths InHundredths(double level, Round round) {
  return {level >= 0.0 ? round(std::fmin(level, 1.0) * 100.0) : 0.0};
}

/// The level nearest to `bad`, which does not serve, that is found to serve on the way from `good`.
/// Only trying tells: seven times at most between 0 and 1.
/// @param[in] serves  of a level; not asked of `bad`
/// @return nothing if `good` does not serve, or is no other level
template <class Serves>
std::optional<double> LevelNextTo(Hundredths bad, Hundredths good, Serves serves) {
  if (good.steps == bad.steps || !serves(good.Level())) return std::nullopt;
  while (std::fabs(good.steps - bad.steps) > 1.0) {
    const Hundredths middle{std::floor((good.steps + bad.steps) / 2.0)};
    (serves(middle.Level()) ? good : bad) = middle;
  }
  return good.Level();
}

}  // namespace qarv::definition
