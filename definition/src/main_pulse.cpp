// The main pulse of a classical waveform.
#include "definition/main_pulse.h"

#include <algorithm>
#include <cmath>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "definition/definition.h"

namespace qarv::definition {

using wave_def::CWaveDef;
using wave_def::CWaveDefClassical;

namespace {

/// The share of peak times width that the area of a classical pulse nominally is; 0 for no shape.
double NominalArea(const CWaveDefClassical& set) {
  using namespace wave_def::wave_def_sub;
  const bool standard = set.GetTolKind() == CWaveDefClassical::TOL_SPECIFY;
  const auto& tol = set.GetDefTolSpecify();
  switch (set.GetWaveKind()) {
    case HALF_SINE:
      return 2.0 / common::kPi;
    case HAVERSINE:
    case TERMINAL_PEAK_SAWTOOTH:
    case TRIANGLE:
      return 0.5;
    case TRAPEZOID:
      return standard ? 1.0 - (tol.GetPulseRiseWidth() + tol.GetPulseFallWidth()) / 2.0 : 0.9;
    case USER_TRAPEZOID:
      return 1.0 - (set.GetMainRise() + set.GetMainFall()) / 2.0;
  }
  return 0.0;
}

}  // namespace

bool IsClassical(const CWaveDef& def) { return def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL; }

bool IsCompensated(const CWaveDef& def) {
  return IsClassical(def) && def.GetDefClassical().GetAddCmp();
}

MainPulse MainPulseOf(const CWaveDef& def) {
  const CWaveDefClassical& set = def.GetDefClassical();
  const double frame = set.GetNsamp();
  // A classical definition has its pulse in its frame, unless a compensation has shifted it.
  const double shift = set.GetAddCmp() ? std::round(set.GetWaveShift() * frame) : 0.0;
  const double centre = std::floor((0.5 + set.GetMainShift()) * frame + 0.001) + shift;
  const double half = std::floor(set.GetMainWidth() * SampleRateOf(def) / 2.0 + 0.01);
  const auto sample = [&](double i) {
    return static_cast<std::size_t>(common::TruncToIndex(std::clamp(i, 0.0, frame - 1.0)));
  };
  return {sample(centre - half - 1.0), sample(centre + half + 1.0),
          NominalArea(set) * set.GetMainAmpl() * set.GetMainWidth()};
}

}  // namespace qarv::definition
