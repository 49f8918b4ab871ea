// The strokes of which pulses and tolerance bands are drawn.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "common/int_types.h"

namespace qarv::wave_def {

using SampleSpan = std::span<double>;
using ConstSampleSpan = std::span<const double>;

/// Which of the stored and the new value stays: the larger (Raise) or the smaller (Lower); ByBand
/// raises in the upper band and lowers in the lower band.
enum class Merge { ByBand, Raise, Lower };

/// A point that a line goes through.
struct Knot {
  common::uint64 index;  // [sample]
  double value;          // [amplitude unit]
};

/// Draws strokes on one array: a band, or a pulse, which is drawn like an upper band.
///
/// Every stroke tests its own indices: one outside the array, wrapped below 0 or not, makes it
/// false with nothing drawn.  So a builder is one chain of strokes that stops at the first that
/// does not fit.  A NaN is neither larger nor smaller and is never drawn.
class BandPen {
 public:
  BandPen(SampleSpan out, bool upper) : out_(out), upper_(upper) {}

  /// A straight line at the samples from.index .. to.index:
  ///
  ///   v = from.value + k (to.value - from.value) / n,   k = i - from.index, n = to.index -
  ///   from.index
  ///
  /// from left to right; constant where the values are equal, from.value where the indices are.
  /// @return false if a knot lies outside the array; true with nothing drawn if from lies behind to
  bool Line(Knot from, Knot to, Merge merge = Merge::ByBand) const;

  /// The same from `from` towards `to`, walking down where that comes first.
  bool LineToward(Knot from, Knot to, Merge merge = Merge::ByBand) const;

  /// A line whose last sample is exactly to.value, unless the indices are equal: the fall of a
  /// nominal pulse must not leave a rounding error standing behind the pulse.
  bool Fall(Knot from, Knot to) const;

  /// A constant from `first` to `last`.
  bool Level(common::uint64 first, common::uint64 last, double value,
             Merge merge = Merge::ByBand) const;

  /// Two lines raised to an apex, then everything lowered to a cap.
  bool CappedTriangle(Knot from, Knot apex, Knot to, double cap) const;

 private:
  bool Holds(Knot a, Knot b) const { return a.index < out_.size() && b.index < out_.size(); }
  /// The one line that all strokes are made of; `last` replaces the value that it ends with.
  void Stroke(Knot from, Knot to, std::optional<double> last, Merge merge) const;

  SampleSpan out_;
  bool upper_;
};

/// Lays a band over the pulse: the nominal value plus a margin that blends, in proportion to the
/// nominal value itself, from the edge margin to the main margin at the peak.
///
///   x = wave[i] / P,   out[i] = ((1 - x) edge + x m) P + wave[i],   edge = a up to peak, b from it
///   on
///
/// @param[in]  start,end  first and last sample of the pulse [sample]
/// @param[in]  peak       sample of the peak [sample]
/// @param[in]  P          peak value [amplitude unit], not 0
/// @param[in]  a,m,b      margin at the start, at the peak, at the end [ratio]
/// @param[in]  wave       nominal pulse, N samples [amplitude unit]
/// @param[out] out        band, N samples [amplitude unit]; assigned, not merged
/// @return false, with nothing written, if start == end, P is 0 or an index is not below N
///
/// Not clamped: x outside 0..1 extrapolates.  Cost: one pass over the pulse.
bool ApplyMainPulseBand(common::uint64 start, common::uint64 end, common::uint64 peak, double P,
                        double a, double m, double b, ConstSampleSpan wave, SampleSpan out);

}  // namespace qarv::wave_def
