// Trapezoid tolerance bands.
#include "band/trapezoid_band.h"

#include <algorithm>
#include <optional>

#include "band/band_front.h"
#include "band/user_band.h"
#include "pulse/pulse_shape.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using common::uint64;
using Def = CWaveDefClassical;
using Std = CWaveDefTolSpecify;

namespace {

struct TrapezoidRow {
  double left, front, begin, slope, main, rightUpper, rightLower;
};

// Levels in ratios to the peak, the front region in widths.
// clang-format off
constexpr std::array<TrapezoidRow, 10> kTrapezoidRows{{
  // left   front  begin  slope  main   right, upper  right, lower     kind
  {  0.0,   0.0,   0.0,   0.0,   0.0,   0.0,           0.0          }, // 0: not a kind
  {  0.0,   0.0,   0.0,   0.0,   0.0,   0.0,           0.0          }, // 1
  {  0.05,  0.3,   0.15,  0.15,  0.15,  0.2,          -0.3          }, // 2
  {  0.0,   0.0,   0.0,   0.0,   0.0,   0.0,           0.0          }, // 3
  {  0.0,   0.0,   0.0,   0.0,   0.0,   0.0,           0.0          }, // 4
  {  0.2,   0.4,   0.2,   0.2,   0.2,   0.2,          -0.2          }, // 5
  {  0.0,   0.0,   0.0,   0.0,   0.0,   0.0,           0.0          }, // 6
  {  0.2,   0.4,   0.2,   0.2,   0.2,   0.2,          -0.2          }, // 7
  {  0.05,  0.4,   0.2,   0.2,   0.2,   0.2,          -0.2          }, // 8
  {  0.05,  0.4,   0.15,  0.15,  0.15,  0.2,          -0.3          }, // 9
}};
// clang-format on

/// A trapezoid band in signed ratios to the peak: what every tolerance kind fills in.
struct TrapezoidBand {
  double left;     // level up to the front line
  double begin;    // level at the pulse's start
  double slope;    // margin along the slopes
  double plateau;  // level over the flat top
  double right;    // level from the pulse's end on
};

TrapezoidBand TableBand(int kind, bool upper) {
  const TrapezoidRow row = RowOf(kTrapezoidRows, kind);
  const double s = upper ? 1.0 : -1.0;
  return {.left = s * row.left,
          .begin = s * row.begin,
          .slope = s * row.slope,
          .plateau = 1 + s * row.main,
          .right = upper ? row.rightUpper : row.rightLower};
}

std::optional<TrapezoidBand> SpecBand(const Std& tol, const BandTask& task) {
  if (tol.GetWaveKind() != wave_def_sub::TRAPEZOID) return std::nullopt;
  return TrapezoidBand{.left = task.Signed(tol.GetTolBeginHi(), tol.GetTolBeginLo()),
                       .begin = task.Signed(tol.GetPulseBeforeHi(), tol.GetPulseBeforeLo()),
                       .slope = task.Signed(tol.GetPulseSlopeHi(), tol.GetPulseSlopeLo()),
                       .plateau = task.upper ? tol.GetMainPulseHi() : tol.GetMainPulseLo(),
                       .right = task.Signed(tol.GetTolEndHi(), tol.GetTolEndLo())};
}

/// A stretch of samples, first and last included; empty where they cross.
struct Stretch {
  uint64 first, last;  // [sample]
  bool Has(uint64 i) const { return i >= first && i <= last; }
};

/// The stretch one sample wider at either side (an upper band) or narrower (a lower one), in N
/// samples.
Stretch Widened(uint64 first, uint64 last, bool upper, uint64 N) {
  if (upper) return {first != 0 ? first - 1 : 0, std::min(last + 1, N - 1)};
  return last < 2 || first + 1 > last - 1 ? Stretch{1, 0} : Stretch{first + 1, last - 1};
}

/// Lays the band over the pulse: the largest (upper) or the smallest (lower) of a sample and its
/// neighbours plus the margin of the slopes, not beyond the plateau, and the plateau over the top.
bool DrawPulse(const TrapezoidBand& b, const TrapezoidCorners& c, const BandTask& task) {
  const uint64 N = task.out.size();
  if (c.start >= N || c.riseEnd >= N || c.fallStart >= N || c.end >= N) return false;
  const double A = task.def.GetMainAmpl();
  const Stretch top =
      Widened(std::min(c.riseEnd, c.fallStart), std::max(c.riseEnd, c.fallStart), task.upper, N);
  // A fraction below 0 or above 1 takes the pulse beyond its nominal ends.
  const uint64 first = std::min({c.start, c.riseEnd, c.fallStart});
  const uint64 last = std::max({c.end, c.riseEnd, c.fallStart});
  const Stretch pulse = task.upper ? Widened(first, last, true, N) : Stretch{first, last};
  const auto neighbours = [&](uint64 i) {
    const auto sample = [&](uint64 k) { return task.wave[static_cast<std::size_t>(k)]; };
    const double before = sample(i != 0 ? i - 1 : i);
    const double behind = sample(i + 1 < N ? i + 1 : i);
    return task.upper ? std::max({before, sample(i), behind})
                      : std::min({before, sample(i), behind});
  };
  const auto value = [&](uint64 i) {
    const double plateau = b.plateau * A;
    return top.Has(i) ? plateau : std::min(neighbours(i) + b.slope * A, plateau);
  };
  for (uint64 i = pulse.first; i <= pulse.last; ++i) {
    double& stored = task.out[static_cast<std::size_t>(i)];
    // Between the ends the lower band has no limit yet, and the 0 of the frame is none.
    const bool undrawn = i > c.start && i <= c.end;
    if (task.upper) {
      stored = std::max(stored, value(i));
    } else {
      stored = undrawn ? value(i) : std::min(stored, value(i));
    }
  }
  return true;
}

bool DrawTrapezoidBand(const TrapezoidBand& b, const PulseSpan& p, const TrapezoidCorners& c,
                       const BandTask& task) {
  const BandPen pen(task.out, task.upper);
  const double A = p.A;
  const uint64 frontStart = p.start - TrapezoidFront(task.def, p);
  return pen.Level(0, p.start, b.left * A) &&                           // left
         pen.Line({frontStart, b.left * A}, {p.start, b.begin * A}) &&  // front
         DrawPulse(b, c, task) &&                                       // main pulse
         pen.Level(p.end, p.N - 1, b.right * A);                        // right
}

}  // namespace

uint64 TrapezoidFront(const Def& def, const PulseSpan& p) {
  if (def.GetTolKind() == Def::TOL_SPECIFY) {
    return p.Samples(def.GetDefTolSpecify().GetPulseBeforeWidth());
  }
  return p.Samples(RowOf(kTrapezoidRows, def.GetTolKind()).front);
}

bool BuildTrapezoidBand(const BandTask& task) {
  if (!task.IsComplete()) return false;
  const Def::TOL_KIND kind = task.def.GetTolKind();
  if (kind == Def::TOL_USER_DEF) return BuildUserTolBand(task);
  const auto p = SpanOf(task.def, task.centre, task.dt);
  const auto part = FractionsOf(task.def);
  if (!p || !part) return false;
  const auto corners = CornersOf(task.def, task.centre, task.dt, part->rise, part->fall);
  const auto band = kind == Def::TOL_SPECIFY ? SpecBand(task.def.GetDefTolSpecify(), task)
                                             : TableBand(kind, task.upper);
  return corners && band && DrawTrapezoidBand(*band, *p, *corners, task);
}

}  // namespace qarv::wave_def
