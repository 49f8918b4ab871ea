// The shock that the records of the tests hold.
#pragma once

#include <cmath>

namespace qarv::test {

/// A half-sine of 11 ms about t = 0.
inline double HalfSine(double t, double peak) {
  return std::fabs(t) < 0.0055 ? peak * std::cos(std::acos(-1.0) * t / 0.011) : 0.0;
}

}  // namespace qarv::test
