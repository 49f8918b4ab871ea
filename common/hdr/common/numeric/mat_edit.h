// CMatEdit: tapers applied in place to a stretch of samples.
#pragma once

#include <cstdint>

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"

namespace qarv::common {

/// Tapers of a wave's ends.
///
/// A taper lies on the samples first .. last, both included, and multiplies them by a weight that
/// is 0 at its outer end (`first` where it rises, `last` where it falls) and `level` at its inner
/// one. An end outside the array keeps the taper's shape; only samples that exist are touched.
///
/// @code
/// CDataArrayFloatT<double> wave{1.0, 1.0, 1.0};
/// const bool done = CMatEdit::RampFunction(1000.0, &wave, true, 1.0, 0, 2);  // true
/// const double middle = wave[1];                                             // 0.5
/// @endcode
class CMatEdit {
 public:
  /// Which end of a wave a half Hanning taper is for.
  enum HALFHANNING_DIRECT : std::int32_t {
    HALFHANNING_START = 1,  ///< rising, at the start of a wave
    HALFHANNING_END = 2,    ///< falling, at the end of a wave
  };

  /// Multiplies by half a Hanning window: level (0.5 - 0.5 cos(pi k / n)) at k samples from the
  /// outer end, n = last - first.
  ///
  /// @param[in]     fsamp  sampling frequency [Hz]; the taper is given in samples and does not use
  ///                       it
  /// @param[in,out] wave   the samples
  /// @param[in]     dir    which end
  /// @param[in]     level  weight at the inner end [ratio]
  /// @param[in]     first,last  ends of the taper, last > first [sample]
  /// @return false, with nothing changed, if wave is null, last <= first or dir names no end
  static bool HalfHanning(double fsamp, CDataArrayFloatT<double>* wave, HALFHANNING_DIRECT dir,
                          double level, int64 first, int64 last);

  /// Multiplies by a straight line: level k / n at k samples from the outer end.
  /// @param[in] rising  true at the start of a wave, false at its end; the rest as in HalfHanning
  /// @return false, with nothing changed, if wave is null or last <= first
  static bool RampFunction(double fsamp, CDataArrayFloatT<double>* wave, bool rising, double level,
                           int64 first, int64 last);
};

}  // namespace qarv::common
