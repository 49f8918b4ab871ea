// The strokes of which pulses and tolerance bands are drawn.
#include "band/band_pen.h"

#include <algorithm>

#include "numeric/sample_blocks.h"

namespace qarv::wave_def {

using common::uint64;

namespace {

/// x[i] = merged(value(i), x[i]) for i = 0 .. n, in blocks whose index is an int: only those become
/// doubles in lanes.
template <class Value, class Merged>
void MergeLine(double* x, uint64 n, Value value, Merged merged) {
  for (uint64 at = 0; at <= n; at += common::kSampleBlock) {
    const auto base = static_cast<double>(at);
    const auto count = static_cast<int>(std::min<uint64>(common::kSampleBlock, n - at + 1));
    double* const block = x + at;
    for (int i = 0; i < count; ++i) block[i] = merged(value(base + i), block[i]);
  }
}

}  // namespace

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
  double* const first = out_.data() + std::min(from.index, to.index);
  const auto draw = [&](auto value) {
    if (merge == Merge::Raise || (merge == Merge::ByBand && upper_)) {
      MergeLine(first, n, value, [](double v, double stored) { return v > stored ? v : stored; });
    } else {
      MergeLine(first, n, value, [](double v, double stored) { return v < stored ? v : stored; });
    }
  };
  if (n == 0 || from.value == to.value) {  // before the difference: inf - inf is NaN
    draw([v = from.value](double) { return v; });
    return;
  }
  const double rise = to.value - from.value;
  const auto length = static_cast<double>(n);
  const double begin = up ? 0.0 : length;  // of the knot's distance from `from`, and its direction
  const double step = up ? 1.0 : -1.0;
  const auto value = [=](double i) { return from.value + (begin + step * i) * rise / length; };
  if (!last) return draw(value);
  const double end = up ? length : 0.0;
  draw([=](double i) { return i == end ? *last : value(i); });
}

bool BandPen::Level(uint64 first, uint64 last, double value, Merge merge) const {
  return Line({first, value}, {last, value}, merge);
}

bool BandPen::CappedTriangle(Knot from, Knot apex, Knot to, double cap) const {
  return Line(from, apex, Merge::Raise) && Line(apex, to, Merge::Raise) &&
         Level(from.index, to.index, cap, Merge::Lower);
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
