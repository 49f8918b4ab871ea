// The tolerance band that the user defines.
//
//   lv, mv, rv   signed levels before, on and after the pulse [ratio]
//   begin, end   signed levels at the pulse's two ends, where they are in force [ratio]
#include "band/user_band.h"

#include <optional>

#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using common::uint64;

namespace {

/// The largest positive sample of a pulse, the first of equal ones; 0 at sample 0 if there is none.
Knot PeakOf(const PulseSpan& p, ConstSampleSpan wave) {
  Knot peak{0, 0.0};
  for (uint64 i = p.start; i <= p.end; ++i) {
    const double v = wave[static_cast<std::size_t>(i)];
    if (v > peak.value) peak = {i, v};
  }
  return peak;
}

/// The band over the pulse itself, with the margins a, m, b at its start, peak and end.
bool DrawMainPulse(const BandTask& task, const PulseSpan& p, double a, double m, double b) {
  switch (task.def.GetWaveKind()) {
    case wave_def_sub::HALF_SINE:
    case wave_def_sub::HAVERSINE:
      return ApplyMainPulseBand(p.start, p.end, p.centre, p.A, a, m, b, task.wave, task.out);
    case wave_def_sub::TERMINAL_PEAK_SAWTOOTH:
    case wave_def_sub::TRAPEZOID:
    case wave_def_sub::TRIANGLE:
    case wave_def_sub::USER_TRAPEZOID: {
      if (p.start == p.end || p.start >= p.N || p.end >= p.N) return false;
      const Knot peak = PeakOf(p, task.wave);
      return ApplyMainPulseBand(p.start, p.end, peak.index, peak.value, a, m, b, task.wave,
                                task.out);
    }
  }
  return false;
}

}  // namespace

bool BuildUserTolBand(const BandTask& task) {
  if (!task.IsComplete() || task.def.GetTolKind() != CWaveDefClassical::TOL_USER_DEF) return false;
  const auto span = SpanOf(task.def, task.centre, task.dt);
  if (!span) return false;
  const PulseSpan& p = *span;
  const CWaveDefTolUserDef& tol = task.def.GetDefTolUserDef();
  const double lv = task.Signed(tol.GetTolLeftU(), tol.GetTolLeftL());
  const double mv = task.Signed(tol.GetTolMainU(), tol.GetTolMainL());
  const double rv = task.Signed(tol.GetTolRightU(), tol.GetTolRightL());
  // Deliberate: the upper value switches the level of the lower band too.
  const bool hasBegin = tol.GetTolPulsSet() && tol.GetTolPulsBegU() != 0.0;
  const bool hasEnd = tol.GetTolPulsSet() && tol.GetTolPulsEndU() != 0.0;
  const double begin = hasBegin ? task.Signed(tol.GetTolPulsBegU(), tol.GetTolPulsBegL()) : mv;
  const double end = hasEnd ? task.Signed(tol.GetTolPulsEndU(), tol.GetTolPulsEndL()) : mv;
  const bool front = tol.GetTolFrontA() != 0.0;
  const bool rear = tol.GetTolRearA() != 0.0;
  const uint64 frontStart = p.start - p.Samples(tol.GetTolFrontA());
  const uint64 rearEnd = p.end + p.Samples(tol.GetTolRearA());
  const double A = p.A;

  const BandPen pen(task.out, task.upper);
  const auto drawFront = [&] {  // merges along its own slope, whichever band it is in
    const Merge merge = lv <= begin ? Merge::Raise : Merge::Lower;
    return pen.Line({frontStart, lv * A}, {p.start, begin * A}, merge);
  };
  return pen.Level(0, p.start, lv * A) &&                                    // left
         (!front || drawFront()) &&                                          // front
         DrawMainPulse(task, p, front ? begin : lv, mv, rear ? end : rv) &&  // main pulse
         (!rear || pen.Line({p.end, end * A}, {rearEnd, rv * A})) &&         // rear
         pen.Level(rearEnd, p.N - 1, rv * A);                                // right
}

}  // namespace qarv::wave_def
