// The arc tangent.
#include <cmath>
#include <limits>

#include "numeric/elementary.h"
#include "numeric/elementary/sine_core.h"

namespace qarv::common::elementary {
namespace {

/// About atan x for 0 <= x, to 2^-14.
double RoughAtan(double x) {
  const bool steep = x > 1.0;
  const double u = steep ? 1.0 / x : x;
  // Twice halved, tan(a / 2) = tan a / (1 + sqrt(1 + tan^2 a)), five terms of the series are
  // enough.
  double t = u / (1.0 + std::sqrt(1.0 + u * u));
  t = t / (1.0 + std::sqrt(1.0 + t * t));
  const double q = t * t;
  const double a = 4.0 * t * (1.0 - q * (1.0 / 3 - q * (1.0 / 5 - q * (1.0 / 7 - q * (1.0 / 9)))));
  return steep ? kHalfPi - a : a;
}

TwoDouble Normal(TwoDouble y) { return FastTwoSum(y.high, y.low); }

}  // namespace

// One Newton step on sine and cosine, known to two doubles: with y0 near atan x, s = sin y0 and
// c = cos y0, atan x = y0 + d - d^3 / 3,  d = (x c - s) / (c + x s).
double Atan(double x) {
  if (std::isnan(x)) return std::numeric_limits<double>::quiet_NaN();
  const double a = std::fabs(x);
  if (a >= 0x1p56) return std::copysign(kHalfPi, x);
  if (a < 0x1p-27) return std::copysign(a - a * a * a * (1.0 / 3), x);
  const double y0 = RoughAtan(a);
  double k = 0.0;
  const ReducedAngle angle = ReduceAngle(y0, &k);
  const TwoDouble s = Normal(SineOfReduced(angle.row, angle.r));
  const TwoDouble c = Normal(SineOfReduced(CosineRow(angle.row), angle.r));
  const TwoDouble xc = TwoProduct(a, c.high);
  const double numerator = ((xc.high - s.high) + xc.low) + (a * c.low - s.low);
  const double d = numerator / (c.high + a * s.high);
  return std::copysign(y0 + (d - d * d * d * (1.0 / 3)), x);
}

double Atan2(double y, double x) {
  if (std::isnan(x) || std::isnan(y)) return std::numeric_limits<double>::quiet_NaN();
  if (y == 0.0) return std::copysign(std::signbit(x) ? 2.0 * kHalfPi : 0.0, y);
  if (std::isinf(x) && std::isinf(y)) {
    return std::copysign(x > 0.0 ? 0.5 * kHalfPi : 1.5 * kHalfPi, y);
  }
  if (std::fabs(y) <= std::fabs(x)) {
    const double a = Atan(y / x);
    return x > 0.0 ? a : a + std::copysign(2.0 * kHalfPi, y);
  }
  return std::copysign(kHalfPi, y) - Atan(x / y);
}

}  // namespace qarv::common::elementary
