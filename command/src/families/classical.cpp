// The key "Classical".
#include <fmt/format.h>

#include <algorithm>

#include "classical/classical_pipeline.h"
#include "com_def/com_def_system_const.h"
#include "definition.h"
#include "families/pulse_shapes.h"

namespace qarv::command {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefClassical;
using User = wave_def::CWaveDefTolUserDef;
using Std = wave_def::CWaveDefTolSpecify;
using wave_def::GenerateClassical;
using wave_def::compensation::Refusal;
using wave_def::compensation::Room;

namespace {

// ---- The user's levels -------------------------------------------------------------------------

// The set takes the four levels at the pulse's ends together with their switch.
template <double (User::*changed)() const>
const char* SetPulseLevel(User& set, double v) {
  const auto level = [&](double (User::*get)() const) { return get == changed ? v : (set.*get)(); };
  set.SetTolPulsParam(set.GetTolPulsSet(), level(&User::GetTolPulsBegU),
                      level(&User::GetTolPulsBegL), level(&User::GetTolPulsEndU),
                      level(&User::GetTolPulsEndL));
  return set.GetTolPulsSet() || v == 0.0 ? nullptr : "TolPulsSet";
}
void SetTolPulsSet(User& set, bool v) {
  set.SetTolPulsParam(v, set.GetTolPulsBegU(), set.GetTolPulsBegL(), set.GetTolPulsEndU(),
                      set.GetTolPulsEndL());
}

const FieldTable<User> kUserFields{
    Value("TolLeftU", &User::GetTolLeftU, &User::SetTolLeftU),
    Value("TolLeftL", &User::GetTolLeftL, &User::SetTolLeftL),
    Value("TolFrontA", &User::GetTolFrontA, &User::SetTolFrontA),
    Value("TolMainU", &User::GetTolMainU, &User::SetTolMainU),
    Value("TolMainL", &User::GetTolMainL, &User::SetTolMainL),
    Value("TolRightU", &User::GetTolRightU, &User::SetTolRightU),
    Value("TolRightL", &User::GetTolRightL, &User::SetTolRightL),
    Value("TolRearA", &User::GetTolRearA, &User::SetTolRearA),
    Value("TolPulsSet", &User::GetTolPulsSet, SetTolPulsSet),
    Value("TolPulsBegU", &User::GetTolPulsBegU, SetPulseLevel<&User::GetTolPulsBegU>),
    Value("TolPulsBegL", &User::GetTolPulsBegL, SetPulseLevel<&User::GetTolPulsBegL>),
    Value("TolPulsEndU", &User::GetTolPulsEndU, SetPulseLevel<&User::GetTolPulsEndU>),
    Value("TolPulsEndL", &User::GetTolPulsEndL, SetPulseLevel<&User::GetTolPulsEndL>),
};

// ---- A standard's levels -----------------------------------------------------------------------

const FieldTable<Std> kStdFields{
    Value("StdName", &Std::GetStdName, &Std::SetStdName),
    Enumeration("WaveKind", kPulseShapes, &Std::GetWaveKind, &Std::SetWaveKind, Need::Required),
    Enumeration("BaseStandard",
                {{Std::BASE_STD_NONE, "BASE_STD_NONE"},
                 {Std::BASE_STD_1, "BASE_STD_1"},
                 {Std::BASE_STD_2, "BASE_STD_2"},
                 {Std::BASE_STD_3, "BASE_STD_3"},
                 {Std::BASE_STD_4, "BASE_STD_4"},
                 {Std::BASE_STD_5, "BASE_STD_5"}},
                &Std::GetBaseStandard, &Std::SetBaseStandard, Need::Required),
    Value("TolBeginHi", &Std::GetTolBeginHi, &Std::SetTolBeginHi),
    Value("TolBeginLo", &Std::GetTolBeginLo, &Std::SetTolBeginLo),
    Value("PulseBeforeHi", &Std::GetPulseBeforeHi, &Std::SetPulseBeforeHi),
    Value("PulseBeforeLo", &Std::GetPulseBeforeLo, &Std::SetPulseBeforeLo),
    Value("PulseSlopeHi", &Std::GetPulseSlopeHi, &Std::SetPulseSlopeHi),
    Value("PulseSlopeLo", &Std::GetPulseSlopeLo, &Std::SetPulseSlopeLo),
    Value("MainPulseHi", &Std::GetMainPulseHi, &Std::SetMainPulseHi),
    Value("MainPulseLo", &Std::GetMainPulseLo, &Std::SetMainPulseLo),
    Value("TolEndHi", &Std::GetTolEndHi, &Std::SetTolEndHi),
    Value("TolEndLo", &Std::GetTolEndLo, &Std::SetTolEndLo),
    Value("PulseBeforeWidth", &Std::GetPulseBeforeWidth, &Std::SetPulseBeforeWidth),
    Value("PulseAfterWidth", &Std::GetPulseAfterWidth, &Std::SetPulseAfterWidth),
    Value("PulseRiseWidth", &Std::GetPulseRiseWidth, &Std::SetPulseRiseWidth),
    Value("PulseFallWidth", &Std::GetPulseFallWidth, &Std::SetPulseFallWidth),
};

// ---- The pulse ---------------------------------------------------------------------------------

/// A nested set.  A pulse may carry levels that its tolerance kind leaves out of force; the setter
/// asks for the kind, which therefore stands for the moment of the call.
template <class Nested>
Field<Set> NestedField(const char* key, const FieldTable<Nested>& table, Set::TOL_KIND kind,
                       const Nested& (Set::*get)() const, bool (Set::*setter)(const Nested&)) {
  return {key, false,
          [=, &table](const Json& json, const Place& at, Set& set) {
            Nested nested;
            ReadFields(table, json, at, nested);
            const auto own = set.GetTolKind();
            set.SetTolKind(kind);
            (set.*setter)(nested);
            set.SetTolKind(own);
          },
          [=, &table](const Set& set) {
            const Nested& nested = (set.*get)();
            return nested == Nested() ? Json() : WriteFields(table, nested);
          }};
}

const EnumNames kTolKinds{
    {Set::TOL_NONE, "TOL_NONE"},         {Set::TOL_FIXED_1, "TOL_FIXED_1"},
    {Set::TOL_FIXED_2, "TOL_FIXED_2"},   {Set::TOL_FIXED_3, "TOL_FIXED_3"},
    {Set::TOL_FIXED_4, "TOL_FIXED_4"},   {Set::TOL_FIXED_5, "TOL_FIXED_5"},
    {Set::TOL_FIXED_6, "TOL_FIXED_6"},   {Set::TOL_FIXED_7, "TOL_FIXED_7"},
    {Set::TOL_FIXED_8, "TOL_FIXED_8"},   {Set::TOL_FIXED_9, "TOL_FIXED_9"},
    {Set::TOL_USER_DEF, "TOL_USER_DEF"}, {Set::TOL_SPECIFY, "TOL_SPECIFY"},
};

const FieldTable<Set> kFields{
    Enumeration("WaveKind", kPulseShapes, &Set::GetWaveKind, &Set::SetWaveKind, Need::Required),
    Value("MainAmpl", &Set::GetMainAmpl, &Set::SetMainAmpl, Need::Required),
    Value("MainWidth", &Set::GetMainWidth, &Set::SetMainWidth, Need::Required),
    Value("MainRise", &Set::GetMainRise, &Set::SetMainRise),
    Value("MainFall", &Set::GetMainFall, &Set::SetMainFall),
    Value("MainShift", &Set::GetMainShift, &Set::SetMainShift),
    Value("RestPre", &Set::GetRestPre, &Set::SetRestPre),
    Value("RestPost", &Set::GetRestPost, &Set::SetRestPost),
    Value("Fmax", &Set::GetFmax, &Set::SetFmax, Need::Required),
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp, Need::Required),
    Value("WaveShift", &Set::GetWaveShift, &Set::SetWaveShift),
    Enumeration("TolKind", kTolKinds, &Set::GetTolKind, &Set::SetTolKind, Need::Required),
    NestedField("TolUserDef", kUserFields, Set::TOL_USER_DEF, &Set::GetDefTolUserDef,
                &Set::SetDefTolUserDef),
    NestedField("TolSpecify", kStdFields, Set::TOL_SPECIFY, &Set::GetDefTolSpecify,
                &Set::SetDefTolSpecify),
    Value("AddCmp", &Set::GetAddCmp, &Set::SetAddCmp),
    Value("CmpNonSym", &Set::GetCmpNonSym, &Set::SetCmpNonSym),
    Enumeration("CmpType",
                {{Set::CMP_NONE, "CMP_NONE"},
                 {Set::CMP_RAMP, "CMP_RAMP"},
                 {Set::CMP_COSINE, "CMP_COSINE"},
                 {Set::CMP_FLAT_COSINE, "CMP_FLAT_COSINE"},
                 {Set::CMP_OPTIMIZED, "CMP_OPTIMIZED"}},
                &Set::GetCmpType, &Set::SetCmpType),
    Value("CmpPre", &Set::GetCmpPre, &Set::SetCmpPre),
    Value("CmpPost", &Set::GetCmpPost, &Set::SetCmpPost),
    Value("CmpPcal", &Set::GetCmpPcal, &Set::SetCmpPcal),
    Value("CmpU1", &Set::GetCmpU1, &Set::SetCmpU1),
    Value("CmpU2", &Set::GetCmpU2, &Set::SetCmpU2),
    Value("CmpRgm1", &Set::GetCmpRgm1, &Set::SetCmpRgm1),
    Value("CmpRgm2", &Set::GetCmpRgm2, &Set::SetCmpRgm2),
    Value("CmpCparam", &Set::GetCmpCparam, &Set::SetCmpCparam),
    Value("CmpErr", &Set::GetCmpErr, &Set::SetCmpErr),
    Value("OptRatLevel", &Set::GetOptRatLevel, &Set::SetOptRatLevel),
};

/// Whether the shape offers the tolerance kind, whatever the numbers are.
bool IsOffered(const Set& set) {
  using namespace wave_def::wave_def_sub;
  const auto kind = set.GetTolKind();
  switch (set.GetWaveKind()) {
    case TRIANGLE:
    case USER_TRAPEZOID:
      return kind == Set::TOL_USER_DEF;
    case TERMINAL_PEAK_SAWTOOTH:
      return kind != Set::TOL_FIXED_2 && kind != Set::TOL_FIXED_3;
    default:
      return true;
  }
}

bool HasCompensationType(const Set& set) {
  return set.GetCmpType() >= Set::CMP_RAMP && set.GetCmpType() <= Set::CMP_OPTIMIZED;
}

/// One side of a frame that is too short.
std::string RoomText(const char* side, const Room& room, double level) {
  std::string text = fmt::format("{} the pulse {} samples are needed and {} available", side,
                                 room.needed, std::max<common::int64>(room.available, 0));
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
      return fmt::format("AddCmp: no room for the compensation: {}, {}",
                         RoomText("before", pre, levelPre), RoomText("after", post, levelPost));
    case Refusal::OutOfTolerance:
      return fmt::format(
          "AddCmp: the compensated pulse leaves its band at gain 1, first at sample {} by "
          "{:.3g} % of the peak",
          refusal.worst, 100.0 * refusal.excess);
    case Refusal::None:
      break;
  }
  return {};
}

/// Why a pulse that can be drawn cannot be compensated; empty if it can, or cannot be drawn.
std::string WhyNotCompensated(Set set, double fsamp) {
  common::CDataArrayFloatT<double> wave;
  common::CDataArrayFloatT<double> upper;
  common::CDataArrayFloatT<double> lower;
  Refusal refusal;
  const bool done =
      set.GetAddCmp() && GenerateClassical(set, fsamp, &wave, &upper, &lower, false, &refusal);
  return done ? std::string() : RefusalText(refusal, set);
}

std::string Define(const Json& json, const Place& at, bool hasFsamp, CWaveDef& def) {
  Set set;
  ReadFields(kFields, json, at, set);
  using namespace wave_def::wave_def_sub;
  const double fsamp = com_def::comdefsystemconst::ConvFmaxToFsampByVal(set.GetFmax());
  if (!hasFsamp) def.SetFsamp(fsamp);
  const auto shape = set.GetWaveKind();
  const auto kind = set.GetTolKind();
  const bool usesStandard = kind == Set::TOL_SPECIFY && shape != HAVERSINE;
  const double centre = (set.GetMainShift() + 0.5) * set.GetNsamp() / fsamp;  // [s]
  if (def.SetDefClassical(set)) return {};
  const std::string compensation = WhyNotCompensated(set, def.GetFsamp());
  return BrokenRule(
      {{shape < HALF_SINE || shape > HAVERSINE, "WaveKind is not set"},
       {kind < Set::TOL_FIXED_1 || kind > Set::TOL_SPECIFY, "TolKind is not set"},
       {set.GetMainAmpl() == 0.0, "MainAmpl is 0"},
       {set.GetMainWidth() == 0.0, "MainWidth is 0"},
       {set.GetFmax() == 0.0, "Fmax is 0"},
       {set.GetNsamp() < 2, "Nsamp is below 2"},
       {!IsOffered(set), "the shape does not offer this TolKind"},
       {usesStandard && set.GetDefTolSpecify().GetWaveKind() != shape,
        "TolSpecify.WaveKind is not the shape of the pulse"},
       {usesStandard && set.GetDefTolSpecify().GetBaseStandard() == Std::BASE_STD_NONE,
        "TolSpecify.BaseStandard is not set"},
       {set.GetMainShift() >= 0.5, "MainShift moves the pulse behind the frame"},
       {centre < 0.5 * set.GetMainWidth(), "the pulse begins before the frame"},
       {set.GetAddCmp() && !HasCompensationType(set), "CmpType is not set"},
       {set.GetAddCmp() && !compensation.empty(), compensation},
       {true, "the pulse or its bands do not fit the frame"}});
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefClassical());
}

}  // namespace

const Family kClassicalFamily{
    .key = "Classical",
    .title = "classical shock pulse",
    .type = CWaveDef::WAVE_TYPE_CLASSICAL,
    .define = Define,
    .write = Write,
    .needsFsamp = false,
};

}  // namespace qarv::command
