// Haversine tolerance bands.
//
//   L, M, R   signed levels before, on and after the pulse [ratio]
#include "band/haversine_band.h"

#include "band/band_front.h"
#include "band/half_sine_band.h"
#include "band/user_band.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using common::uint64;
using Def = CWaveDefClassical;

namespace {

/// A line of the front or the rear merges away from the main level, whichever band it is in.
Merge AwayFrom(double level, double main) { return level <= main ? Merge::Raise : Merge::Lower; }

bool HasCap(Def::TOL_KIND kind) {
  return kind == Def::TOL_FIXED_5 || kind == Def::TOL_FIXED_7 || kind == Def::TOL_FIXED_8;
}

}  // namespace

uint64 HaversineFront(const Def& def, const PulseSpan& p) {
  if (def.GetDefTolUserDef().GetTolFrontA() == 0.0) return 0;
  return p.Samples(FrontFraction(def.GetTolKind()));
}

bool BuildHaversineBand(const BandTask& task) {
  if (!task.IsComplete()) return false;
  const Def::TOL_KIND kind = task.def.GetTolKind();
  if (kind == Def::TOL_USER_DEF) return BuildUserTolBand(task);
  const auto span = SpanOf(task.def, task.centre, task.dt);
  if (!span) return false;
  const PulseSpan& p = *span;
  const CWaveDefTolUserDef& tol = task.def.GetDefTolUserDef();
  const double L = task.Signed(tol.GetTolLeftU(), tol.GetTolLeftL());
  const double M = task.Signed(tol.GetTolMainU(), tol.GetTolMainL());
  const double R = task.Signed(tol.GetTolRightU(), tol.GetTolRightL());
  // Deliberate: the two lengths are switches here; the kind has the length of the front region, and
  // the rear runs to the last sample.
  const bool front = tol.GetTolFrontA() != 0.0;
  const bool rear = tol.GetTolRearA() != 0.0;
  const double a = front ? M : L;
  const double A = p.A;
  const uint64 frontStart = p.start - HaversineFront(task.def, p);

  const BandPen pen(task.out, task.upper);
  const auto mainPulse = [&] {
    if (!task.upper && HasCap(kind)) {
      return pen.CappedTriangle({p.start, a * A}, {p.centre, A}, {p.end, R * A}, (1 + M) * A);
    }
    return ApplyMainPulseBand(p.start, p.end, p.centre, A, a, M, R, task.wave, task.out);
  };
  return pen.Level(0, p.start, L * A) &&                                                 // left
         (!front || pen.Line({frontStart, L * A}, {p.start, M * A}, AwayFrom(L, M))) &&  // front
         mainPulse() &&                                                          // main pulse
         pen.Level(p.end, p.N - 1, R * A) &&                                     // right
         (!rear || pen.Line({p.end, M * A}, {p.N - 1, R * A}, AwayFrom(R, M)));  // rear
}

}  // namespace qarv::wave_def
