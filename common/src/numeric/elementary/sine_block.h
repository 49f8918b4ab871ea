// Sine and cosine as the functions of a block.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

#include "numeric/elementary/block.h"
#include "numeric/elementary/sine_core.h"

namespace qarv::common::elementary {

/// What tells the sine from the cosine: the row, and the value at 0.
struct SineKind {
  static QARV_LANES_INLINE uint64 Row(uint64 row) { return row; }
  static double AtZero(double x) { return x; }
};
struct CosineKind {
  static QARV_LANES_INLINE uint64 Row(uint64 row) { return CosineRow(row); }
  static double AtZero(double) { return 1.0; }
};

template <class Kind>
struct Angle {
  double high[kBlock];
  double low[kBlock];
  uint64 row[kBlock];

  /// @return not 0 if x is rare: huge, not finite, 0, or so close to a multiple of pi / 128 that
  /// the short reduction leaves too few bits.
  QARV_LANES_INLINE uint64 Reduce(std::size_t i, double x) {
    double k = 0.0;
    const ReducedAngle angle = ReduceAngle(x, &k);
    high[i] = angle.r.high;
    low[i] = angle.r.low;
    row[i] = angle.row;
    return ZeroIfPositive(kLargestSineArgument - std::fabs(x),
                          std::fabs(angle.r.high) - std::fabs(k) * 0x1p-70);
  }
  QARV_LANES_INLINE double Evaluate(std::size_t i) const {
    const TwoDouble y = SineOfReduced(Kind::Row(row[i]), {high[i], low[i]});
    return y.high + y.low;
  }
  static double Rare(double x) {
    if (x == 0.0) return Kind::AtZero(x);
    if (!std::isfinite(x)) return std::numeric_limits<double>::quiet_NaN();
    const ReducedAngle angle = ReduceAnyAngle(x);
    const TwoDouble y = SineOfReduced(Kind::Row(angle.row), angle.r);
    return y.high + y.low;
  }
};

}  // namespace qarv::common::elementary
