// Where a classical pulse lies in its frame, and how its times become samples.
#include "pulse/pulse_span.h"

#include "common/numeric/index_conv.h"

namespace qarv::wave_def {

using common::uint64;

std::optional<PulseHalfWidth> CalcPulseHalfWidth(double width, double dt, uint64 N) {
  if (width == 0.0 || dt == 0.0 || N < 2) return std::nullopt;
  const double h = width * 0.5 / dt;
  const uint64 n = common::FloorToIndex(h + 0.01);  // floor, with a guard
  if (n < N / 2) return PulseHalfWidth{h, n};
  // Deliberate: the clamped h is a time and not a count, which changes the clamped half-sine and
  // haversine.
  const uint64 clamped = N / 2 - 1;
  return PulseHalfWidth{static_cast<double>(clamped) * dt, clamped};
}

uint64 PulseSpan::Samples(double fraction) const {
  return common::TruncToIndex(fraction * W / dt);  // truncated
}

uint64 CentreOf(const CWaveDefClassical& def, double dt) {
  const double T = static_cast<double>(def.GetNsamp()) * dt;
  return common::FloorToIndex((def.GetMainShift() * T + T * 0.5) / dt + 0.001);
}

uint64 PlacedHalfWidth(const CWaveDefClassical& def, double dt) {
  // Deliberate: the half width is rounded down without the centre's guard of 0.001.
  return common::FloorToIndex(def.GetMainWidth() * 0.5 / dt);
}

std::optional<PulseSpan> SpanOf(const CWaveDefClassical& def, uint64 centre, double dt) {
  const uint64 N = def.GetNsamp();
  const auto half = CalcPulseHalfWidth(def.GetMainWidth(), dt, N);
  if (!half) return std::nullopt;
  return PulseSpan{.N = N,
                   .start = centre - half->n,
                   .centre = centre,
                   .end = centre + half->n,
                   .A = def.GetMainAmpl(),
                   .W = def.GetMainWidth(),
                   .dt = dt};
}

}  // namespace qarv::wave_def
