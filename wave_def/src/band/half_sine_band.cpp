// Half-sine tolerance bands: the fixed tables, the standard's levels, and their one drawing.
#include "band/half_sine_band.h"

#include <optional>

#include "band/band_front.h"
#include "band/user_band.h"
#include "common/numeric/index_conv.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using common::uint64;
using Def = CWaveDefClassical;
using Std = CWaveDefTolSpecify;

namespace {

struct HalfSineRow {
  double left, front, main, rightUpper, rightLower;
};

// Levels in ratios to the peak, the front region in widths.
// clang-format off
constexpr std::array<HalfSineRow, 10> kHalfSineRows{{
  // left   front  main   right, upper  right, lower     kind
  {  0.0,   0.0,   0.0,   0.0,           0.0          }, // 0: not a kind
  {  0.0,   0.0,   0.0,   0.0,           0.0          }, // 1
  {  0.0,   0.0,   0.0,   0.0,           0.0          }, // 2
  {  0.05,  0.3,   0.15,  0.2,          -0.3          }, // 3
  {  0.05,  0.3,   0.15,  0.2,          -0.2          }, // 4
  {  0.2,   0.4,   0.2,   0.2,          -0.2          }, // 5
  {  0.05,  0.4,   0.15,  0.2,          -0.2          }, // 6
  {  0.2,   0.4,   0.2,   0.2,          -0.2          }, // 7
  {  0.05,  0.4,   0.15,  0.2,          -0.2          }, // 8
  {  0.05,  0.4,   0.15,  0.2,          -0.2          }, // 9: with its own front line and cap
}};
// clang-format on

/// A half-sine band in signed ratios to the peak: what every tolerance kind fills in.
struct HalfSineBand {
  double left;                // level up to the front line
  double frontFrom;           // first value of the front line ...
  double edge;                // ... and its last, at the pulse's start
  double main;                // margin at the peak
  double right;               // level from the pulse's end on
  std::optional<double> cap;  // a triangle capped at this in the place of the blend
};

HalfSineBand TableBand(int kind, bool upper) {
  const HalfSineRow row = RowOf(kHalfSineRows, kind);
  const double s = upper ? 1.0 : -1.0;
  HalfSineBand band{.left = s * row.left,
                    .frontFrom = s * row.left,
                    // Deliberate: of kinds 1 and 2 too, which have no other level.
                    .edge = s * 0.2,
                    .main = s * row.main,
                    .right = upper ? row.rightUpper : row.rightLower,
                    .cap = {}};
  if (!upper && (kind == Def::TOL_FIXED_7 || kind == Def::TOL_FIXED_8)) band.cap = 1.0 + band.main;
  return band;
}

HalfSineBand Kind9Band(bool upper) {
  HalfSineBand band = TableBand(Def::TOL_FIXED_9, upper);
  band.frontFrom = 0.0;  // Deliberate: not from the left level
  if (!upper) band.cap = 0.85;
  return band;
}

/// The band of a standard; nothing if the standard is not for this pulse or, for the lower band, of
/// no known family.
std::optional<HalfSineBand> SpecBand(const Std& tol, const BandTask& task) {
  if (tol.GetWaveKind() != wave_def_sub::HALF_SINE) return std::nullopt;
  const double left = task.Signed(tol.GetTolBeginHi(), tol.GetTolBeginLo());
  HalfSineBand band{.left = left,
                    .frontFrom = left,
                    .edge = task.Signed(tol.GetPulseBeforeHi(), tol.GetPulseBeforeLo()),
                    .main = (task.upper ? tol.GetMainPulseHi() : tol.GetMainPulseLo()) - 1,
                    .right = task.Signed(tol.GetTolEndHi(), tol.GetTolEndLo()),
                    .cap = {}};
  if (task.upper) return band;
  switch (tol.GetBaseStandard()) {
    case Std::BASE_STD_1:
    case Std::BASE_STD_5:
      return band;
    case Std::BASE_STD_2:
    case Std::BASE_STD_3:
    case Std::BASE_STD_4:
      band.cap = tol.GetMainPulseLo();
      return band;
    case Std::BASE_STD_NONE:
      break;
  }
  return std::nullopt;
}

bool DrawHalfSineBand(const HalfSineBand& b, const PulseSpan& p, const BandTask& task) {
  const BandPen pen(task.out, task.upper);
  const double A = p.A;
  const uint64 frontN = HalfSineFront(task.def, p);
  const auto mainPulse = [&] {
    if (!b.cap) {
      return ApplyMainPulseBand(p.start, p.end, p.centre, A, b.edge, b.main, b.right, task.wave,
                                task.out);
    }
    return pen.Level(p.start, p.end, b.edge * A, Merge::Lower) &&
           pen.CappedTriangle({p.start, b.edge * A}, {p.centre, A}, {p.end, b.right * A},
                              *b.cap * A);
  };
  return pen.Level(0, p.start, b.left * A) &&                                     // left
         pen.Line({p.start - frontN, b.frontFrom * A}, {p.start, b.edge * A}) &&  // front
         mainPulse() &&                                                           // main
         pen.Level(p.end, p.N - 1, b.right * A);                                  // right
}

}  // namespace

uint64 HalfSineFront(const Def& def, const PulseSpan& p) {
  switch (def.GetTolKind()) {
    case Def::TOL_FIXED_9:
      return common::TruncToIndex(p.W * 0.4 / p.dt + 0.5);  // Deliberate: rounded half up
    case Def::TOL_SPECIFY:
      return p.Samples(def.GetDefTolSpecify().GetPulseBeforeWidth());
    default:
      return p.Samples(FrontFraction(def.GetTolKind()));
  }
}

double FrontFraction(int kind) { return RowOf(kHalfSineRows, kind).front; }

bool BuildHalfSineStdBand(const BandTask& task) {
  if (!task.IsComplete()) return false;
  const Def::TOL_KIND kind = task.def.GetTolKind();
  if (kind == Def::TOL_USER_DEF) return BuildUserTolBand(task);
  const auto p = SpanOf(task.def, task.centre, task.dt);
  if (!p) return false;
  if (kind == Def::TOL_FIXED_9) return DrawHalfSineBand(Kind9Band(task.upper), *p, task);
  if (kind == Def::TOL_SPECIFY) {
    const auto band = SpecBand(task.def.GetDefTolSpecify(), task);
    return band && DrawHalfSineBand(*band, *p, task);
  }
  return DrawHalfSineBand(TableBand(kind, task.upper), *p, task);
}

}  // namespace qarv::wave_def
