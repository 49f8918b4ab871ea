// The rules of the classical pulses.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "band/tol_kind.h"
#include "com_def/com_def_system_const.h"
#include "common/numeric/index_conv.h"
#include "compensation/refusal.h"
#include "families/pulse_shapes.h"
#include "pulse/pulse_corners.h"
#include "pulse/pulse_span.h"
#include "rules/classical_fit.h"
#include "rules/level_search.h"
#include "rules/rule_table.h"
#include "rules/rules.h"

namespace qarv::definition {

using com_def::comdefsystemconst::ConvFmaxToFsampByVal;
using common::int64;
using common::uint64;
using fmt::format;
using wave_def::compensation::Refusal;
using wave_def::compensation::Room;
using wave_def::compensation::WhyNotCompensated;
using Set = wave_def::CWaveDefClassical;
using Std = wave_def::CWaveDefTolSpecify;
using namespace wave_def::wave_def_sub;
using enum Severity;

namespace {

// ---- Tolerance kinds ---------------------------------------------------------------------------

struct Offer {
  bool offered;
  const char* offers;  // what the shape offers, for people
};

/// Whether the shape offers the tolerance kind, whatever the numbers are.
Offer OfferOf(const Set& set) {
  const auto kind = set.GetTolKind();
  switch (set.GetWaveKind()) {
    case TRIANGLE:
    case USER_TRAPEZOID:
      return {kind == Set::TOL_USER_DEF, "TOL_USER_DEF"};
    case TERMINAL_PEAK_SAWTOOTH:
      return {kind != Set::TOL_FIXED_2 && kind != Set::TOL_FIXED_3, "all but TOL_FIXED_2 and 3"};
    default:
      return {true, "all"};
  }
}

/// Whether the pulse has a shape: one that has a name.
bool HasShape(const Set& set) {
  return std::any_of(kPulseShapes.begin(), kPulseShapes.end(),
                     [&](const auto& shape) { return shape.first == set.GetWaveKind(); });
}

/// Whether it is drawn by a formula, and not by straight lines: then it is drawn for a negative
/// amplitude too, and its band needs no sample to be scaled to.
bool IsRounded(const Set& set) {
  return set.GetWaveKind() == HALF_SINE || set.GetWaveKind() == HAVERSINE;
}

const char* ShapeName(const Set& set) {
  for (const auto& [value, name] : kPulseShapes) {
    if (value == set.GetWaveKind()) return name;
  }
  return "pulse";
}

/// A level of the bands with its key.
struct Level {
  const char* key;
  double value;
};

/// The levels that are in force and have to be entered positive.
std::vector<Level> LevelsOf(const Set& set) {
  const auto& user = set.GetDefTolUserDef();
  const auto& std = set.GetDefTolSpecify();
  const bool standard = set.GetTolKind() == Set::TOL_SPECIFY && set.GetWaveKind() != HAVERSINE;
  if (standard) {
    return {{"TolBeginHi", std.GetTolBeginHi()},       {"TolBeginLo", std.GetTolBeginLo()},
            {"PulseBeforeHi", std.GetPulseBeforeHi()}, {"PulseBeforeLo", std.GetPulseBeforeLo()},
            {"PulseSlopeHi", std.GetPulseSlopeHi()},   {"PulseSlopeLo", std.GetPulseSlopeLo()},
            {"TolEndHi", std.GetTolEndHi()},           {"TolEndLo", std.GetTolEndLo()}};
  }
  if (set.GetTolKind() != Set::TOL_USER_DEF && set.GetWaveKind() != HAVERSINE) return {};
  return {{"TolLeftU", user.GetTolLeftU()},   {"TolLeftL", user.GetTolLeftL()},
          {"TolMainU", user.GetTolMainU()},   {"TolMainL", user.GetTolMainL()},
          {"TolRightU", user.GetTolRightU()}, {"TolRightL", user.GetTolRightL()}};
}

Rule NegativeLevel(const Set& set) {
  const std::vector<Level> levels = LevelsOf(set);
  const auto found = std::find_if(levels.begin(), levels.end(),
                                  [](const Level& level) { return level.value < 0.0; });
  if (found == levels.end()) return {Warns, false, ""};
  return {Warns,
          true,
          format("{} is {:g}; levels of both bands are entered positive", found->key, found->value),
          {{found->key, -found->value}}};
}

// ---- The pulse in its frame --------------------------------------------------------------------

/// What the rules need to know of a pulse that can be placed.
struct Placing {
  double dt = 0.0;         // [s]
  double samples = 0.0;    // width [sample]
  bool placed = false;     // has a frame, a width and a tolerance kind: the rest is a matter of fit
  bool fits = false;       // pulse and bands lie in the frame
  bool clamped = false;    // the width is cut to the frame
  bool pointLike = false;  // first and last sample are one
  bool flat = false;       // no positive sample where one is needed
};

Placing PlacingOf(const Set& set, bool complete) {
  Placing out;
  out.dt = 1.0 / ConvFmaxToFsampByVal(set.GetFmax());
  out.samples = set.GetMainWidth() / out.dt;
  const auto span = wave_def::SpanOf(set, wave_def::CentreOf(set, out.dt), out.dt);
  out.placed = complete && span.has_value();
  if (!out.placed) return out;
  const uint64 half = common::FloorToIndex(set.GetMainWidth() * 0.5 / out.dt + 0.01);
  const bool user = set.GetTolKind() == Set::TOL_USER_DEF;
  const bool rounded = IsRounded(set);
  out.fits = FitsFrame(set);
  out.clamped = half >= span->N / 2;
  out.pointLike = span->start == span->end && (rounded || user);
  out.flat = out.fits && user && !rounded && !out.pointLike && !HasPositiveSample(set, *span);
  return out;
}

/// The width of two samples, where that fits.
std::vector<Remedy> LeastWidth(Set set, const Placing& at) {
  const double width = RoundedUp(2.0 * at.dt);
  set.SetMainWidth(width);
  if (set.GetNsamp() < 4 || !FitsFrame(set)) return {};
  return {{"MainWidth", width}};
}

std::vector<Remedy> UnclampedWidths(const Set& set, const Placing& at) {
  std::vector<Remedy> remedies;
  const uint64 N = set.GetNsamp();
  if (N >= 4)
    remedies.push_back({"MainWidth", RoundedDown(static_cast<double>(N - N % 2 - 2) * at.dt)});
  const double frame = 2.0 * (std::floor(at.samples * 0.5 + 0.01) + 1.0);
  if (at.samples > 0.0 && frame < 4e9) remedies.push_back({"Nsamp", frame});
  return remedies;
}

// ---- Compensation ------------------------------------------------------------------------------

/// One side of a frame that is too short.
std::string RoomText(const char* side, const Room& room, double level) {
  std::string text = format("{} the pulse {} samples are needed and {} available", side,
                            room.needed, std::max<int64>(room.available, 0));
  if (room.needed != 0 && level <= 0.01) {
    text += " (the level is at its floor of 1 %, as the lower band there is 0)";
  }
  return text;
}

std::string RefusalText(const Refusal& refusal, const Set& set) {
  const auto& [levelPre, levelPost, pre, post] = refusal.shortage;
  switch (refusal.reason) {
    case Refusal::NotAPulse:
      return "AddCmp: the rests leave no place for a compensation, or the pulse has no area";
    case Refusal::NoRoom:
      if (set.GetCmpType() == Set::CMP_OPTIMIZED) {
        return "AddCmp: no room: no compensation within the bands brings the table home in this "
               "frame";
      }
      return format("AddCmp: no room for the compensation: {}, {}",
                    RoomText("before", pre, levelPre), RoomText("after", post, levelPost));
    case Refusal::OutOfTolerance:
      return format(
          "AddCmp: the compensated pulse leaves its band at gain 1, first at sample {} by "
          "{:.3g} % of the peak",
          refusal.worst, 100.0 * refusal.excess);
    case Refusal::None:
      break;
  }
  return {};
}

/// Without scales there is nothing to draw; what is optimised is drawn all the same.
Rule NoScales(const Set& set) {
  const bool optimised = set.GetCmpType() == Set::CMP_OPTIMIZED;
  const bool broken = set.GetAddCmp() && HasCompensationType(set) && set.GetCmpPre() == 0.0 &&
                      set.GetCmpPost() == 0.0;
  return {optimised ? Warns : Fails, broken,
          format("AddCmp: CmpPre and CmpPost are both 0, so that {}; set both, usually to 1",
                 optimised ? "the bands before and after the pulse are the least, 1 % of the peak"
                           : "neither side may be compensated")};
}

}  // namespace

namespace {

/// The least OptRatLevel, in hundredths, that is found to give a compensation where that of the
/// definition does not.
std::vector<Remedy> LeastLevel(const Set& set, double fsamp) {
  if (set.GetCmpType() != Set::CMP_OPTIMIZED) return {};
  const auto compensates = [&](double level) {
    Set tried = set;
    tried.SetOptRatLevel(level);
    return WhyNotCompensated(tried, fsamp).reason == Refusal::None;
  };
  const auto down = [](double steps) { return std::floor(steps); };
  const auto level = LevelNextTo(InHundredths(set.GetOptRatLevel(), down), {100.0}, compensates);
  return level ? std::vector<Remedy>{{"OptRatLevel", *level}} : std::vector<Remedy>{};
}

}  // namespace

Findings CompensationFindings(const Set& set, double fsamp) {
  if (!set.GetAddCmp()) return {};
  const std::string reason = RefusalText(WhyNotCompensated(set, fsamp), set);
  if (reason.empty()) return {};
  return Broken({{Fails, true, reason, LeastLevel(set, fsamp)}});
}

// ---- The table ---------------------------------------------------------------------------------

Findings BrokenRules(const Set& set, double fsamp) {
  const auto shape = set.GetWaveKind();
  const auto kind = set.GetTolKind();
  const Std& std = set.GetDefTolSpecify();
  const bool hasShape = HasShape(set);
  const bool hasKind = wave_def::IsTolKind(kind);
  const Offer offer = OfferOf(set);
  const bool standard = kind == Set::TOL_SPECIFY && shape != HAVERSINE && offer.offered;
  const bool hasBase =
      std.GetBaseStandard() >= Std::BASE_STD_1 && std.GetBaseStandard() <= Std::BASE_STD_5;
  const bool forShape = std.GetWaveKind() == shape;
  const bool complete = hasShape && hasKind && offer.offered && set.GetMainAmpl() != 0.0 &&
                        (!standard || (hasBase && forShape));
  const Placing at = PlacingOf(set, complete);
  const bool misfit = at.placed && !at.fits;
  const bool negative = set.GetMainAmpl() < 0.0;
  const bool rounded = IsRounded(set);
  const double implied = ConvFmaxToFsampByVal(set.GetFmax());
  return Broken({
      {Fails, !hasShape, "WaveKind is not set"},
      {Fails, !hasKind, "TolKind is not set"},
      {Fails, set.GetMainAmpl() == 0.0, "MainAmpl is 0"},
      {Fails, set.GetMainWidth() == 0.0, "MainWidth is 0"},
      {Fails, at.dt == 0.0 || set.GetFmax() == 0.0,
       format("Fmax is {:g}, which gives no sample interval", set.GetFmax())},
      {Fails, set.GetNsamp() < 2, format("Nsamp is {}, below 2", set.GetNsamp())},
      {Fails, hasShape && hasKind && !offer.offered,
       format("{} does not offer this TolKind; it offers {}", ShapeName(set), offer.offers)},
      {Fails, standard && !forShape, "TolSpecify.WaveKind is not the shape of the pulse"},
      {Fails, standard && !hasBase, "TolSpecify.BaseStandard is not set"},
      {Fails, misfit, misfit ? MisfitText(set) : "",
       misfit ? FittingFrames(set) : std::vector<Remedy>{}},
      {Fails, at.placed && at.pointLike,
       format("MainWidth is {:.3g} samples, fewer than 2", at.samples),
       at.pointLike ? LeastWidth(set, at) : std::vector<Remedy>{}},
      {Fails, at.flat, "the pulse has no positive sample, to which its band could be scaled",
       negative ? std::vector<Remedy>{{"MainAmpl", -set.GetMainAmpl()}} : std::vector<Remedy>{}},
      {Fails, set.GetAddCmp() && !HasCompensationType(set), "CmpType is not set"},
      NoScales(set),

      {Warns,
       set.GetFmax() < 0.0,
       format("Fmax is {:g}, which is no frequency", set.GetFmax()),
       {{"Fmax", -set.GetFmax()}}},
      {Warns, at.placed && at.clamped,
       format("MainWidth is {:.6g} samples, and is cut to the frame of {}", at.samples,
              set.GetNsamp()),
       UnclampedWidths(set, at)},
      {Warns,
       negative && rounded,
       format("MainAmpl is {:g}, so that its bands cross", set.GetMainAmpl()),
       {{"MainAmpl", -set.GetMainAmpl()}}},
      {Warns,
       negative && !rounded && !at.flat,
       format("MainAmpl is {:g}, and a {} that is negative is not drawn: the waveform is 0",
              set.GetMainAmpl(), ShapeName(set)),
       {{"MainAmpl", -set.GetMainAmpl()}}},
      NegativeLevel(set),
      TooCoarse("the pulse", at.samples, "Fmax", set.GetFmax()),
      {Warns,
       !(std::fabs(fsamp - implied) <= 1e-6 * std::fabs(implied)),
       format("Fsamp is {:g} Hz, but the samples are taken at {:g} Hz, 2.56 Fmax", fsamp, implied),
       {{"Fsamp", implied}}},
  });
}

}  // namespace qarv::definition
