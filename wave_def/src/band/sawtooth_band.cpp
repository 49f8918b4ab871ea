// Terminal-peak sawtooth tolerance bands.
//
// A band has two forms.  Where the nominal pulse falls at once, the top reaches a fall region
// beyond the pulse (upper band) and the knee lies as much before its end (lower band).  Where the
// nominal pulse has a fall of its own, the knee is its peak and the top ends with the pulse.
#include "band/sawtooth_band.h"

#include <algorithm>
#include <optional>

#include "band/band_front.h"
#include "band/user_band.h"
#include "common/numeric/index_conv.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using common::FloorToIndex;
using common::TruncToIndex;
using common::uint64;
using Def = CWaveDefClassical;
using Std = CWaveDefTolSpecify;

namespace {

struct SawtoothRow {
  double left, front, main, rightUpper, rightLower, begin, fall;
};

// Levels in ratios to the peak, the front region and the fall in widths.
// clang-format off
constexpr std::array<SawtoothRow, 9> kSawtoothRows{{
  // left   front  main   right, upper  right, lower  begin  fall      kind
  {  0.0,   0.0,   0.0,   0.0,           0.0,         0.0,   0.0  }, // 0: not a kind
  {  0.05,  0.3,   0.15,  0.2,          -0.3,         0.15,  0.07 }, // 1
  {  0.0,   0.0,   0.0,   0.0,           0.0,         0.0,   0.0  }, // 2
  {  0.0,   0.0,   0.0,   0.0,           0.0,         0.0,   0.0  }, // 3
  {  0.05,  0.3,   0.15,  0.2,          -0.2,         0.15,  0.07 }, // 4
  {  0.2,   0.4,   0.2,   0.2,          -0.2,         0.2,   0.1  }, // 5
  {  0.05,  0.4,   0.15,  0.2,          -0.2,         0.15,  0.07 }, // 6
  {  0.2,   0.4,   0.2,   0.2,          -0.2,         0.2,   0.1  }, // 7
  {  0.05,  0.4,   0.15,  0.2,          -0.2,         0.2,   0.1  }, // 8
}};
// clang-format on

/// A sawtooth band in values and samples: what every tolerance kind fills in.
struct SawtoothBand {
  double left;     // level up to the end of the front line
  Knot frontFrom;  // the front line ...
  Knot frontTo;    // ... and its end
  double begin;    // value of the rise at the pulse's start
  double right;    // level behind the pulse, and in the lower band below it
  Knot knee;       // end of the rise
  uint64 flatEnd;  // [sample] end of the flat top, the knee in a lower band, which has none
  uint64 dropEnd;  // [sample] end of the drop from there
};

bool DrawSawtoothBand(const SawtoothBand& b, const PulseSpan& p, const BandTask& task) {
  const BandPen pen(task.out, task.upper);
  const auto floor = [&] { return pen.Level(p.start, p.end, b.right, Merge::Lower); };
  const auto flatTop = [&] {
    return pen.Level(b.knee.index, b.flatEnd, b.knee.value, Merge::Raise);
  };
  return pen.Level(0, b.frontTo.index, b.left) &&                                    // left
         pen.Line(b.frontFrom, b.frontTo) &&                                         // front
         (task.upper || floor()) &&                                                  // floor
         pen.Line({p.start, b.begin}, b.knee, Merge::Raise) &&                       // rise
         (!task.upper || flatTop()) &&                                               // flat top
         pen.Line({b.flatEnd, b.knee.value}, {b.dropEnd, b.right}, Merge::Raise) &&  // drop
         pen.Level(b.dropEnd, p.N - 1, b.right);                                     // right
}

/// Sets the knee and the top of a pulse that falls at once, from the length of the fall region.
/// @param[in] multiple,margin  top as a multiple of the peak, and as a margin to the nominal
/// [ratio]
/// @return false if the knee lies outside the frame
bool SetInstantFall(uint64 fall, double multiple, double margin, const PulseSpan& p,
                    const BandTask& task, SawtoothBand* b) {
  b->knee.index = task.upper ? p.end : p.end - fall;
  if (b->knee.index >= p.N) return false;
  const double nominal = task.wave[static_cast<std::size_t>(b->knee.index)];
  b->knee.value = task.upper ? multiple * p.A : margin * p.A + nominal;
  b->flatEnd = task.upper ? p.end + fall : b->knee.index;
  b->dropEnd = b->flatEnd + 1;
  return true;
}

/// Sets the knee and the top of a pulse that has a fall of its own.
void SetOwnFall(uint64 peak, double multiple, const PulseSpan& p, const BandTask& task,
                SawtoothBand* b) {
  b->knee = {peak, multiple * p.A};
  // The index before the end wraps for an end of 0, and the stroke refuses it.
  b->flatEnd = task.upper ? std::max(p.end - 1, peak) : peak;
  b->dropEnd = b->flatEnd + 1;
}

std::optional<SawtoothBand> TableBand(Def::TOL_KIND kind, uint64 peak, const PulseSpan& p,
                                      const BandTask& task) {
  const SawtoothRow row = RowOf(kSawtoothRows, kind);
  const double s = task.upper ? 1.0 : -1.0;
  const double left = s * row.left * p.A;
  SawtoothBand b{};
  b.left = left;
  b.frontFrom = {p.start - SawtoothFront(task.def, p), left};
  b.begin = s * row.begin * p.A;
  b.frontTo = {p.start, b.begin};
  b.right = (task.upper ? row.rightUpper : row.rightLower) * p.A;
  const double main = s * row.main;
  if (const auto fall = SawtoothFall(task.def, p)) {
    if (!SetInstantFall(*fall, 1 + main, main, p, task, &b)) return std::nullopt;
    return b;
  }
  SetOwnFall(peak, 1 + main, p, task, &b);
  // Deliberate: the lower band of kind 8 drops down to the pulse's end, all others in one sample.
  if (!task.upper && kind == Def::TOL_FIXED_8) b.dropEnd = std::max(p.end, b.dropEnd);
  return b;
}

std::optional<SawtoothBand> Kind9Band(const PulseSpan& p, const BandTask& task) {
  const bool upper = task.upper;
  const double main = upper ? 0.15 : -0.15;
  // Deliberate: the upper band's left level reaches into the pulse.
  const uint64 leftEnd = upper ? p.start + SawtoothLeft(task.def, p) : p.start;
  SawtoothBand b{};
  b.left = (upper ? 0.05 : -0.05) * p.A;
  b.frontFrom = {p.start - SawtoothFront(task.def, p), 0.0};  // Deliberate: not from the left level
  b.frontTo = {leftEnd, (upper ? 0.2 : -0.15) * p.A};
  b.begin = main * p.A;
  b.right = (upper ? 0.2 : -0.3) * p.A;
  if (!SetInstantFall(*SawtoothFall(task.def, p), 1.15, main, p, task, &b)) return std::nullopt;
  return b;
}

std::optional<SawtoothBand> SpecBand(const Std& tol, uint64 peak, const PulseSpan& p,
                                     const BandTask& task) {
  if (tol.GetWaveKind() != wave_def_sub::TERMINAL_PEAK_SAWTOOTH) return std::nullopt;
  const double left = task.Signed(tol.GetTolBeginHi(), tol.GetTolBeginLo()) * p.A;
  const double multiple = task.upper ? tol.GetMainPulseHi() : tol.GetMainPulseLo();
  SawtoothBand b{};
  b.left = left;
  b.frontFrom = {p.start - SawtoothFront(task.def, p), left};
  b.begin = task.Signed(tol.GetPulseBeforeHi(), tol.GetPulseBeforeLo()) * p.A;
  b.frontTo = {p.start, b.begin};
  b.right = task.Signed(tol.GetTolEndHi(), tol.GetTolEndLo()) * p.A;
  switch (tol.GetBaseStandard()) {
    case Std::BASE_STD_1:
    case Std::BASE_STD_4: {
      if (!SetInstantFall(*SawtoothFall(task.def, p), multiple, multiple - 1, p, task, &b))
        return std::nullopt;
      // Deliberate: the lower band drops down to the pulse's end.
      if (!task.upper) b.dropEnd = std::max(p.end, b.dropEnd);
      return b;
    }
    case Std::BASE_STD_2:
    case Std::BASE_STD_3:
    case Std::BASE_STD_5:
      SetOwnFall(peak, multiple, p, task, &b);
      return b;
    case Std::BASE_STD_NONE:
      break;
  }
  return std::nullopt;
}

}  // namespace

uint64 SawtoothFront(const Def& def, const PulseSpan& p) {
  switch (def.GetTolKind()) {
    case Def::TOL_FIXED_9:
      return TruncToIndex(p.W * 0.4 / p.dt + 0.5);  // Deliberate: rounded half up
    case Def::TOL_SPECIFY:
      return p.Samples(def.GetDefTolSpecify().GetPulseBeforeWidth());
    default:
      return p.Samples(RowOf(kSawtoothRows, def.GetTolKind()).front);
  }
}

uint64 SawtoothLeft(const Def& def, const PulseSpan& p) {
  if (def.GetTolKind() != Def::TOL_FIXED_9) return 0;
  return TruncToIndex(p.W * (0.2 - 0.15) / p.dt + 0.5);
}

std::optional<uint64> SawtoothFall(const Def& def, const PulseSpan& p) {
  const auto floor = [&](double fraction) { return FloorToIndex(fraction * p.W / p.dt); };
  switch (def.GetTolKind()) {
    case Def::TOL_FIXED_1:
    case Def::TOL_FIXED_4:
    case Def::TOL_FIXED_6:
      return floor(RowOf(kSawtoothRows, def.GetTolKind()).fall);
    case Def::TOL_FIXED_9:
      return FloorToIndex(0.07 * p.W / p.dt + 0.5);  // Deliberate: rounded half up
    case Def::TOL_SPECIFY: {
      const auto base = def.GetDefTolSpecify().GetBaseStandard();
      if (base != Std::BASE_STD_1 && base != Std::BASE_STD_4) return std::nullopt;
      return floor(def.GetDefTolSpecify().GetPulseAfterWidth());
    }
    default:
      return std::nullopt;
  }
}

bool BuildSawtoothBand(const BandTask& task, uint64 peak) {
  if (!task.IsComplete()) return false;
  const Def::TOL_KIND kind = task.def.GetTolKind();
  if (kind == Def::TOL_USER_DEF) return BuildUserTolBand(task);
  const auto p = SpanOf(task.def, task.centre, task.dt);
  if (!p) return false;
  const auto band = kind == Def::TOL_FIXED_9 ? Kind9Band(*p, task)
                    : kind == Def::TOL_SPECIFY
                        ? SpecBand(task.def.GetDefTolSpecify(), peak, *p, task)
                        : TableBand(kind, peak, *p, task);
  return band && DrawSawtoothBand(*band, *p, task);
}

}  // namespace qarv::wave_def
