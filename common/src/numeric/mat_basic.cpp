// CMatBasic: arithmetic on stretches of doubles.
#include "common/numeric/mat_basic.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qarv::common {

void CMatBasic::ClrDouble(double* p, uint64 n) {
  if (p != nullptr) std::fill_n(p, n, 0.0);
}

bool CMatBasic::ZeroArr(double* p, uint64 n) {
  ClrDouble(p, n);
  return p != nullptr && n != 0;
}

bool CMatBasic::CopyArr(double* dst, const double* src, uint64 n) {
  if (dst == nullptr || src == nullptr || n == 0) return false;
  std::memmove(dst, src, static_cast<std::size_t>(n) * sizeof(double));
  return true;
}

bool CMatBasic::MulArr(double* p, double k, uint64 n) {
  if (p == nullptr || n == 0) return false;
  for (uint64 i = 0; i < n; ++i) p[i] *= k;
  return true;
}

bool CMatBasic::GetMinMax(uint64 n, const double* p, uint64 start, double* first, double* second) {
  if (p == nullptr) return false;
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (uint64 i = start; i < n; ++i) {
    low = p[i] < low ? p[i] : low;
    high = p[i] > high ? p[i] : high;
  }
  if (low > high) return false;  // crossed as long as no number has been met
  if (first != nullptr) *first = low;
  if (second != nullptr) *second = high;
  return true;
}

}  // namespace qarv::common
