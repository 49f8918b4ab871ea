// The polyline through a shock's samples and its integrals.
#include "srs/base_motion.h"

#include <algorithm>
#include <cmath>

namespace qarv::analysis {

namespace {

/// A sum without a rounding error that matters: two doubles, of which `rest` is what `sum` cannot
/// hold.
struct LongSum {
  double sum = 0.0;
  double rest = 0.0;

  void Add(double v) {
    const double total = sum + v;
    const double part = total - sum;
    rest += (sum - (total - part)) + (v - part);
    sum = total;
  }
  /// Moves what fits from the rest into the sum.
  void Settle() {
    const double total = sum + rest;
    rest -= total - sum;
    sum = total;
  }
};

/// A power of two, so that a division by it is exact; the largest sample becomes 1 to 2.
double PowerBelowPeak(std::span<const double> shock) {
  double peak = 0.0;
  for (const double v : shock) peak = std::max(peak, std::fabs(v));
  if (peak == 0.0) return 1.0;
  int exponent = 0;
  std::frexp(peak, &exponent);
  return std::ldexp(1.0, exponent - 1);
}

}  // namespace

BaseMotion::BaseMotion(std::span<const double> shock) : unit(PowerBelowPeak(shock)) {
  while (!shock.empty() && shock.front() == 0.0) shock = shock.subspan(1);
  end = shock.size() + 1;
  acceleration.resize(end + 2);
  change.resize(end + 2);
  for (std::size_t k = 0; k < shock.size(); ++k) acceleration[k + 1] = shock[k] / unit;
  for (std::size_t i = 0; i < end; ++i) change[i + 1] = acceleration[i + 1] - acceleration[i];
}

BaseMotion::Travel BaseMotion::Integrate() const {
  Travel out{std::vector<double>(end + 2), std::vector<double>(end + 2), 0.0, 0.0};
  // Twice the velocity and six times the displacement: whole multiples of the samples.
  LongSum velocity;
  LongSum displacement;
  for (std::size_t i = 0; i < end; ++i) {
    const double here = acceleration[i];
    const double next = acceleration[i + 1];
    for (const double v : {2.0 * velocity.sum, velocity.sum, 2.0 * here, next}) displacement.Add(v);
    displacement.rest += 3.0 * velocity.rest;
    velocity.Add(here);
    velocity.Add(next);
    displacement.Settle();
    velocity.Settle();
    out.velocity[i + 1] = velocity.sum / 2.0;
    out.displacement[i + 1] = displacement.sum / 6.0;
  }
  out.velocity[end + 1] = out.velocity[end];  // the base coasts
  out.displacement[end + 1] = out.displacement[end] + out.velocity[end];
  out.velocityRest = velocity.rest / 2.0;
  const double last = out.displacement[end];  // its multiples are subtracted without rounding
  out.displacementRest = (displacement.sum - 4.0 * last - 2.0 * last + displacement.rest) / 6.0;
  return out;
}

}  // namespace qarv::analysis
