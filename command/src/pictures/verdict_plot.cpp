// A judged shock between its bands, with what lies outside.
#include "pictures/verdict_plot.h"

#include <cmath>
#include <utility>
#include <vector>

#include "analysis/judge.h"
#include "definition/definition.h"
#include "pictures/plot.h"

namespace qarv::command {

using definition::SampleRateOf;
using Samples = common::CDataArrayFloatT<double>;

namespace {

Samples Turned(const Samples& samples) {
  Samples out(samples.GetSize());
  for (std::size_t i = 0; i < samples.GetSize(); ++i) out[i] = -samples[i];
  return out;
}

}  // namespace

void PlotVerdict(const wave_def::CWaveDef& def, const assess::Overlay& overlay, bool mirrored,
                 const Samples& before, const std::string& title, PlotFormat format,
                 const std::string& file) {
  const std::size_t N = overlay.wave.GetSize();
  const double sign = mirrored ? -1.0 : 1.0;
  Samples measured(N);
  Samples violations(N);
  for (std::size_t i = 0; i < N; ++i) {
    const bool covered = i >= overlay.first && i <= overlay.last;
    const bool outside =
        analysis::Beyond(overlay.wave[i], def.GetTolU()[i], def.GetTolL()[i]) > 0.0;
    measured[i] = covered ? sign * overlay.wave[i] : std::nan("");
    violations[i] = covered && outside ? sign * overlay.wave[i] : std::nan("");
  }
  const Samples upper = mirrored ? Turned(def.GetTolL()) : def.GetTolU();
  const Samples lower = mirrored ? Turned(def.GetTolU()) : def.GetTolL();
  const Samples reference = mirrored ? Turned(def.GetWave()) : def.GetWave();
  std::vector<Curve> curves{{"upper band", Role::Upper, &upper},
                            {"reference", Role::Reference, &reference},
                            {"measured", Role::Wave, &measured},
                            {"lower band", Role::Lower, &lower},
                            {"outside", Role::Violation, &violations}};
  if (before.GetSize() == N)
    curves.insert(curves.begin(), {"before the steps", Role::Before, &before});
  Plot({title, SampleRateOf(def), ZoomOf(def), {{AmplitudeLabel(def), std::move(curves)}}}, format,
       file);
}

}  // namespace qarv::command
