// CMatBasic: arithmetic on stretches of doubles.
#pragma once

#include "common/int_types.h"

namespace qarv::common {

/// Array arithmetic on raw buffers of doubles.
///
/// @code
/// double p[3] = {1.0, -2.0, 4.0};
/// CMatBasic::MulArr(p, 0.5, 3);
/// double least = 0.0, most = 0.0;
/// const bool found = CMatBasic::GetMinMax(3, p, 0, &least, &most);  // true
/// const double top = most;                                          // 2
/// @endcode
class CMatBasic {
 public:
  /// Sets n doubles to 0; does nothing if p is null.
  static void ClrDouble(double* p, uint64 n);

  /// Sets n doubles to 0.
  /// @return false if p is null or n is 0
  static bool ZeroArr(double* p, uint64 n);

  /// Copies n doubles; the two stretches may overlap.
  /// @return false, with nothing copied, if a pointer is null or n is 0
  static bool CopyArr(double* dst, const double* src, uint64 n);

  /// Multiplies n doubles by k in place.
  /// @return false if p is null or n is 0
  static bool MulArr(double* p, double k, uint64 n);

  /// The extremes of the samples p[start] .. p[n - 1].  A NaN is passed over.
  ///
  /// @param[in]  n      exclusive end of the range: callers pass the end index plus one [sample]
  /// @param[in]  start  first sample [sample]
  /// @param[out] first  minimum, or null
  /// @param[out] second maximum, or null
  /// @return false, with nothing written, if p is null or there is no number to examine
  static bool GetMinMax(uint64 n, const double* p, uint64 start, double* first, double* second);
};

}  // namespace qarv::common
