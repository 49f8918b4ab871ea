// The generator of the single wave.
//
//   N   length of the wave [sample]
//   P   peak level [amplitude unit]
//   E   length of each edge [sample]
//   s   slope of the edges [amplitude unit / sample]
//   Ps  period of the sine, not rounded [sample]
#include "family/single.h"

#include <algorithm>

#include "common/numeric/index_conv.h"
#include "family/sine_section.h"

namespace qarv::wave_def {

using common::uint64;

bool SingleGenerate(const CWaveDefSingle& def, double fsamp,
                    common::CDataArrayFloatT<double>* wave) {
  const uint64 N = def.GetNsamp();
  if (fsamp == 0.0 || wave == nullptr || N == 0) return false;

  const double dt = 1.0 / fsamp;
  const double P = def.GetPeakLevel();
  const uint64 E = common::TruncToIndex(def.GetEdgeTime() / dt);  // Deliberate: truncated, no 0.5
  const double s = E != 0 ? P / static_cast<double>(E) : 0.0;
  const double Ps = def.GetPeriod() / dt;

  wave->ResizeToWrite(N);
  double* const x = wave->GetData();
  // Deliberate: the rising edge starts at 0, the falling one ends at s.  Where E is above N, N - E
  // wraps, every sample lies on the rising edge and the peak level is not reached.
  const uint64 riseEnd = std::min(E, N);
  const uint64 fallStart = std::clamp(N - E, riseEnd, N);
  DrawSineSection(x, 0, riseEnd, Ps, [=](double k) QARV_LANES { return k * s; });
  DrawSineSection(x, riseEnd, fallStart, Ps, [=](double) QARV_LANES { return P; });
  DrawSineSection(x, fallStart, N, Ps,
                  [=](double k) QARV_LANES { return (static_cast<double>(N) - k) * s; });
  return true;
}

}  // namespace qarv::wave_def
