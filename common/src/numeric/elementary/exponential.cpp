// The exponential and the logarithm.
#include <cmath>
#include <cstddef>
#include <limits>

#include "numeric/elementary.h"
#include "numeric/elementary/block.h"
#include "numeric/elementary/exponential_core.h"

namespace qarv::common::elementary {
namespace {

/// e^x, |x| < 1000, as two doubles, of which the first is their sum rounded; scaled by 2^-n.
TwoDouble PowerOf(double x, int* n) {
  const ReducedPower power = ReducePower(x);
  const auto k = static_cast<int>(static_cast<int64>(power.biased) - 256 * 1023);
  *n = (k - (k & 255)) / 256;
  const TwoDouble y = PowerOfReduced(power.biased & 255, power.r);
  return FastTwoSum(y.high, y.low);
}

/// y 2^n, rounded once, where that is subnormal or close to it; y as PowerOf gives it.
double ScaleDown(TwoDouble y, int n) {
  const double quantum = std::ldexp(1.0, -1074 - n);  // of the result, before it is scaled
  const double shift = quantum * 0x1.8p52;
  if (quantum < 0x1p-52) return std::ldexp(y.high, n);  // every bit stays
  double rounded = (y.high + shift) - shift;
  const double error = y.high - rounded;  // exact, at most half a quantum
  if (error >= 0.5 * quantum && (error - 0.5 * quantum) + y.low > 0.0) rounded += quantum;
  if (error <= -0.5 * quantum && (error + 0.5 * quantum) + y.low < 0.0) rounded -= quantum;
  return std::ldexp(rounded, n);
}

struct Power {
  double high[kBlock];
  double low[kBlock];
  uint64 row[kBlock];
  double scale[kBlock];

  /// @return not 0 if x is rare: no number, or its power not safely a normal number.
  QARV_LANES_INLINE uint64 Reduce(std::size_t i, double x) {
    const ReducedPower power = ReducePower(x);
    high[i] = power.r.high;
    low[i] = power.r.low;
    row[i] = power.biased & 255;
    scale[i] = __builtin_bit_cast(double, (power.biased >> 8) << 52);
    constexpr double kMiddle = 0.5 * (kLargestExpArgument + kSmallestExpArgument);
    return ZeroIf(std::fabs(x - kMiddle) < kLargestExpArgument - kMiddle);
  }
  QARV_LANES_INLINE double Evaluate(std::size_t i) const {
    const TwoDouble y = PowerOfReduced(row[i], {high[i], low[i]});
    return (y.high + y.low) * scale[i];
  }
  static double Rare(double x) {
    if (std::isnan(x)) return std::numeric_limits<double>::quiet_NaN();
    if (x > 710.0) return std::numeric_limits<double>::infinity();
    if (x < -746.0) return 0.0;
    int n = 0;
    const TwoDouble y = PowerOf(x, &n);
    return x > 0.0 ? std::ldexp(y.high, n) : ScaleDown(y, n);
  }
};

/// log(1 + f) for |f| < 2^-6: its series, the first two terms with their remainders.
double LogNearOne(double f) {
  const TwoDouble square = TwoProduct(f, f);
  double series = 0.0;
  for (int k = 12; k >= 3; --k) series = (k % 2 != 0 ? 1.0 : -1.0) / k + f * series;
  const TwoDouble sum = FastTwoSum(f, -0.5 * square.high);
  return sum.high + (sum.low + (f * square.high * series - 0.5 * square.low));
}

/// About log m for sqrt(1/2) <= m < sqrt 2, to 2^-20: 2 atanh((m - 1) / (m + 1)).
double RoughLog(double m) {
  const double s = (m - 1.0) / (m + 1.0);
  const double q = s * s;
  return 2.0 * s * (1.0 + q * (1.0 / 3 + q * (1.0 / 5 + q * (1.0 / 7 + q * (1.0 / 9)))));
}

}  // namespace

double Exp(double x) { return OneValue<Power>(x); }

void Exp(std::span<const double> x, std::span<double> y, InstructionSet set) {
  AllValues<Power>(x, y, set);
}

// One Newton step on the exponential: with y0 near log x and q = x e^-y0 - 1,
// log x = y0 + q - q^2 / 2 + q^3 / 3.
double Log(double x) {
  if (std::isnan(x) || x < 0.0) return std::numeric_limits<double>::quiet_NaN();
  if (x == 0.0) return -std::numeric_limits<double>::infinity();
  if (std::isinf(x)) return x;
  if (std::fabs(x - 1.0) < 0x1p-6) return LogNearOne(x - 1.0);
  int e = 0;
  double m = std::frexp(x, &e);
  if (m < 0.7071067811865476) {
    m *= 2.0;
    --e;
  }
  const double y0 = RoughLog(m) + e * kLn2;
  int n = 0;
  const TwoDouble power = PowerOf(y0, &n);
  const double scaled = std::ldexp(m, e - n);
  const double q = ((scaled - power.high) - power.low) / power.high;
  return y0 + (q + q * q * (-0.5 + q * (1.0 / 3)));
}

}  // namespace qarv::common::elementary
