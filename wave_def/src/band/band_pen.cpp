// The strokes of which pulses and tolerance bands are drawn.
#include "band/band_pen.h"

namespace qarv::wave_def {

using common::uint64;

bool BandPen::Line(Knot from, Knot to, Merge merge) const {
  if (!Holds(from, to)) return false;
  if (from.index <= to.index) Stroke(from, to, std::nullopt, merge);
  return true;
}

bool BandPen::LineToward(Knot from, Knot to, Merge merge) const {
  if (!Holds(from, to)) return false;
  Stroke(from, to, std::nullopt, merge);
  return true;
}

bool BandPen::Fall(Knot from, Knot to) const {
  if (!Holds(from, to)) return false;
  if (from.index <= to.index) Stroke(from, to, to.value, Merge::ByBand);
  return true;
}

void BandPen::Stroke(Knot from, Knot to, std::optional<double> last, Merge merge) const {
  const bool up = from.index <= to.index;
  const uint64 n = up ? to.index - from.index : from.index - to.index;
  const auto at = [&](uint64 k) { return up ? from.index + k : from.index - k; };
  if (n == 0 || from.value == to.value) {  // before the difference: inf - inf is NaN
    for (uint64 k = 0; k <= n; ++k) Put(at(k), from.value, merge);
    return;
  }
  const double rise = to.value - from.value;
  const auto value = [&](uint64 k) {
    return from.value + static_cast<double>(k) * rise / static_cast<double>(n);
  };
  for (uint64 k = 0; k < n; ++k) Put(at(k), value(k), merge);
  Put(to.index, last.value_or(value(n)), merge);
}

bool BandPen::Level(uint64 first, uint64 last, double value, Merge merge) const {
  return Line({first, value}, {last, value}, merge);
}

bool BandPen::CappedTriangle(Knot from, Knot apex, Knot to, double cap) const {
  return Line(from, apex, Merge::Raise) && Line(apex, to, Merge::Raise) &&
         Level(from.index, to.index, cap, Merge::Lower);
}

void BandPen::Put(uint64 i, double v, Merge merge) const {
  double& stored = out_[static_cast<std::size_t>(i)];
  const bool raise = merge == Merge::Raise || (merge == Merge::ByBand && upper_);
  if (raise ? v > stored : v < stored) stored = v;
}

bool ApplyMainPulseBand(uint64 start, uint64 end, uint64 peak, double P, double a, double m,
                        double b, ConstSampleSpan wave, SampleSpan out) {
  if (start == end || P == 0.0) return false;
  if (start >= out.size() || peak >= out.size() || end >= out.size()) return false;
  const auto blend = [&](uint64 first, uint64 last, double edge) {
    for (uint64 i = first; i <= last; ++i) {
      const double nominal = wave[static_cast<std::size_t>(i)];
      const double x = nominal / P;
      out[static_cast<std::size_t>(i)] = ((1 - x) * edge + x * m) * P + nominal;
    }
  };
  blend(start, peak, a);
  blend(peak, end, b);  // the peak once more: the second value stands
  return true;
}

}  // namespace qarv::wave_def
