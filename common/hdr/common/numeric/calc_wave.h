// CCalcWave: calculations over a whole wave.
#pragma once

#include "common/int_types.h"

namespace qarv::common {

/// Calculations over a whole wave.
///
/// @code
/// const double acceleration[3] = {0.0, 1.0, 1.0};
/// double velocity[3];
/// const bool done = CCalcWave::IntegTime(3, velocity, acceleration, 10.0);  // true
/// const double last = velocity[2];                                          // 0.15000000000000002
/// @endcode
class CCalcWave {
 public:
  /// The time integral by the trapezoidal rule, from rest.
  ///
  ///     out[0] = 0,   out[i] = out[i - 1] + (in[i - 1] + in[i]) (0.5 / rate)
  ///
  /// @param[in]  n     number of samples; 0 leaves nothing to do
  /// @param[out] out   n samples [unit of in x s]; may be `in` itself
  /// @param[in]  in    n samples
  /// @param[in]  rate  sampling frequency [Hz]
  /// @return false, with nothing written, if a pointer is null or the rate is not positive
  ///
  /// Exact for a wave of straight lines between its samples.  Cost: one pass.
  static bool IntegTime(uint64 n, double* out, const double* in, double rate);
};

}  // namespace qarv::common
