// The generator of the gradual wave.
//
//   N   length of the wave [sample]
//   B,E amplitude at the start and at the end of the ramp [amplitude unit]
//   P0  end of the rise, start of the ramp [sample]
//   Nr  length of the ramp [sample]
//   Ne  end of the ramp, start of the fall [sample]
//   Ps  period of the sine, not rounded [sample]
#include "family/gradual.h"

#include <algorithm>
#include <optional>

#include "common/numeric/index_conv.h"
#include "family/sine_section.h"

namespace qarv::wave_def {

using common::uint64;

namespace {

/// The duration of the ramp [s]; none if the parameters do not give one.
std::optional<double> RampTime(const CWaveDefGradual& def) {
  switch (def.GetLengthType()) {
    case CWaveDefGradual::LENGTH_BY_TIME:
      return def.GetWaveTime();
    case CWaveDefGradual::LENGTH_BY_SLOPE:
      if (def.GetWaveSlope() == 0.0) return std::nullopt;
      return (def.GetLevelEnd() - def.GetLevelBeg()) / def.GetWaveSlope();
    case CWaveDefGradual::LENGTH_TYPE_NONE:
      break;
  }
  return std::nullopt;
}

}  // namespace

bool GradualGenerate(const CWaveDefGradual& def, double fsamp,
                     common::CDataArrayFloatT<double>* wave) {
  const uint64 N = def.GetNsamp();
  const std::optional<double> rampTime = RampTime(def);
  if (fsamp == 0.0 || wave == nullptr || N == 0 || !rampTime) return false;

  const double dt = 1.0 / fsamp;
  const double B = def.GetLevelBeg();
  const double E = def.GetLevelEnd();
  const uint64 P0 = common::TruncToIndex(def.GetPreTime() / dt);  // truncated
  const uint64 Nr = common::TruncToIndex(*rampTime / dt);         // truncated
  const uint64 Ne = Nr + P0;
  const double a = P0 != 0 ? B / static_cast<double>(P0) : 0.0;
  // Deliberate: where the ramp ends beyond the frame, N - Ne wraps and the fall has no slope left.
  const double b = N != Ne ? E / static_cast<double>(N - Ne) * -1.0 : 0.0;
  const double r = Nr != 0 ? (E - B) / static_cast<double>(Nr) : 0.0;
  const double Ps = def.GetPeriod() / dt;

  wave->ResizeToWrite(N);
  double* const x = wave->GetData();
  const auto offset = static_cast<double>(P0);
  const auto length = static_cast<double>(N);
  const uint64 riseEnd = std::min(P0, N);
  const uint64 rampEnd = std::clamp(Ne, riseEnd, N);
  DrawSineSection(x, 0, riseEnd, Ps, [=](double k) QARV_LANES { return k * a; });
  DrawSineSection(x, riseEnd, rampEnd, Ps,
                  [=](double k) QARV_LANES { return (k - offset) * r + B; });
  // Deliberate: the fall ends at LevelEnd / (N - Ne) in the last sample, not at 0.
  DrawSineSection(x, rampEnd, N, Ps, [=](double k) QARV_LANES { return (k - length) * b; });
  return true;
}

}  // namespace qarv::wave_def
