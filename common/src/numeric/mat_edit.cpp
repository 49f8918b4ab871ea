// CMatEdit: tapers applied in place to a stretch of samples.
#include "common/numeric/mat_edit.h"

#include <algorithm>

#include "common/numeric/constants.h"
#include "numeric/elementary.h"

namespace qarv::common {
namespace {

/// Multiplies the samples first .. last that exist by weight(k, n), k being the distance from the
/// taper's outer end and n its length.
template <class Weight>
bool Taper(CDataArrayFloatT<double>* wave, bool rising, int64 first, int64 last, Weight weight) {
  if (wave == nullptr || last <= first) return false;
  if (last < 0 || wave->GetSize() == 0) return true;  // no sample of the taper exists
  // Distances are unsigned: between the ends of the int64 range they do not fit a signed one.
  const auto distance = [](int64 from, int64 to) {
    return static_cast<double>(static_cast<uint64>(to) - static_cast<uint64>(from));
  };
  const double n = distance(first, last);
  const uint64 stop = std::min(static_cast<uint64>(last), wave->GetSize() - 1);
  double* const x = wave->GetData();
  for (uint64 i = static_cast<uint64>(std::max<int64>(first, 0)); i <= stop; ++i) {
    const auto at = static_cast<int64>(i);
    x[i] *= weight(rising ? distance(first, at) : distance(at, last), n);
  }
  return true;
}

}  // namespace

bool CMatEdit::HalfHanning(double /*fsamp*/, CDataArrayFloatT<double>* wave, HALFHANNING_DIRECT dir,
                           double level, int64 first, int64 last) {
  if (dir != HALFHANNING_START && dir != HALFHANNING_END) return false;
  return Taper(wave, dir == HALFHANNING_START, first, last, [level](double k, double n) {
    return level * (0.5 - 0.5 * elementary::Cos(kPi * k / n));
  });
}

bool CMatEdit::RampFunction(double /*fsamp*/, CDataArrayFloatT<double>* wave, bool rising,
                            double level, int64 first, int64 last) {
  return Taper(wave, rising, first, last, [level](double k, double n) { return level * k / n; });
}

}  // namespace qarv::common
