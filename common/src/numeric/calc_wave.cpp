// CCalcWave: calculations over a whole wave.
#include "common/numeric/calc_wave.h"

namespace qarv::common {

bool CCalcWave::IntegTime(uint64 n, double* out, const double* in, double rate) {
  if (out == nullptr || in == nullptr || !(rate > 0.0)) return false;
  if (n == 0) return true;
  const double half = 0.5 / rate;
  double before = in[0];  // kept aside, because out may be the same buffer
  double sum = 0.0;
  out[0] = sum;
  for (uint64 i = 1; i < n; ++i) {
    const double here = in[i];
    sum += (before + here) * half;
    out[i] = sum;
    before = here;
  }
  return true;
}

}  // namespace qarv::common
