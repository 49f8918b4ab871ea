// The key "Classical".
#include "com_def/com_def_system_const.h"
#include "families/pulse_shapes.h"
#include "family.h"

namespace qarv::definition {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefClassical;
using User = wave_def::CWaveDefTolUserDef;
using Std = wave_def::CWaveDefTolSpecify;

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
    Value("TolLeftU", &User::GetTolLeftU, &User::SetTolLeftU,
          {"ratio to the peak", "upper level before the pulse", kFromZero}),
    Value("TolLeftL", &User::GetTolLeftL, &User::SetTolLeftL,
          {"ratio to the peak", "lower level before the pulse, entered positive", kFromZero}),
    Value("TolFrontA", &User::GetTolFrontA, &User::SetTolFrontA,
          {"widths", "length of the transition before the pulse", kFromZero}),
    Value("TolMainU", &User::GetTolMainU, &User::SetTolMainU,
          {"ratio to the peak", "upper margin at the peak of the pulse", kFromZero}),
    Value("TolMainL", &User::GetTolMainL, &User::SetTolMainL,
          {"ratio to the peak", "lower margin at the peak of the pulse, entered positive",
           kFromZero}),
    Value("TolRightU", &User::GetTolRightU, &User::SetTolRightU,
          {"ratio to the peak", "upper level after the pulse", kFromZero}),
    Value("TolRightL", &User::GetTolRightL, &User::SetTolRightL,
          {"ratio to the peak", "lower level after the pulse, entered positive", kFromZero}),
    Value("TolRearA", &User::GetTolRearA, &User::SetTolRearA,
          {"widths", "length of the transition after the pulse", kFromZero}),
    Value("TolPulsSet", &User::GetTolPulsSet, SetTolPulsSet,
          {"", "whether the levels at the ends of the pulse are given"}),
    Value("TolPulsBegU", &User::GetTolPulsBegU, SetPulseLevel<&User::GetTolPulsBegU>,
          {"ratio to the peak", "upper level at the beginning of the pulse, with TolPulsSet"}),
    Value("TolPulsBegL", &User::GetTolPulsBegL, SetPulseLevel<&User::GetTolPulsBegL>,
          {"ratio to the peak", "lower level at the beginning of the pulse, with TolPulsSet"}),
    Value("TolPulsEndU", &User::GetTolPulsEndU, SetPulseLevel<&User::GetTolPulsEndU>,
          {"ratio to the peak", "upper level at the end of the pulse, with TolPulsSet"}),
    Value("TolPulsEndL", &User::GetTolPulsEndL, SetPulseLevel<&User::GetTolPulsEndL>,
          {"ratio to the peak", "lower level at the end of the pulse, with TolPulsSet"}),
};

// ---- A standard's levels -----------------------------------------------------------------------

const FieldTable<Std> kStdFields{
    Value("StdName", &Std::GetStdName, &Std::SetStdName, {"", "name of the standard"}),
    Enumeration("WaveKind", kPulseShapes, &Std::GetWaveKind, &Std::SetWaveKind,
                {"", "shape that the levels are written for; that of the pulse"}, Need::Required),
    Enumeration("BaseStandard",
                {{Std::BASE_STD_NONE, "BASE_STD_NONE"},
                 {Std::BASE_STD_1, "BASE_STD_1"},
                 {Std::BASE_STD_2, "BASE_STD_2"},
                 {Std::BASE_STD_3, "BASE_STD_3"},
                 {Std::BASE_STD_4, "BASE_STD_4"},
                 {Std::BASE_STD_5, "BASE_STD_5"}},
                &Std::GetBaseStandard, &Std::SetBaseStandard,
                {"", "family of standards that shapes the band"}, Need::Required),
    Value("TolBeginHi", &Std::GetTolBeginHi, &Std::SetTolBeginHi,
          {"ratio to the peak", "upper level at the beginning of the frame", kFromZero}),
    Value("TolBeginLo", &Std::GetTolBeginLo, &Std::SetTolBeginLo,
          {"ratio to the peak", "lower level at the beginning of the frame, entered positive",
           kFromZero}),
    Value("PulseBeforeHi", &Std::GetPulseBeforeHi, &Std::SetPulseBeforeHi,
          {"ratio to the peak", "upper level just before the pulse", kFromZero}),
    Value("PulseBeforeLo", &Std::GetPulseBeforeLo, &Std::SetPulseBeforeLo,
          {"ratio to the peak", "lower level just before the pulse, entered positive", kFromZero}),
    Value("PulseSlopeHi", &Std::GetPulseSlopeHi, &Std::SetPulseSlopeHi,
          {"ratio to the peak", "upper level along the slopes of the pulse", kFromZero}),
    Value("PulseSlopeLo", &Std::GetPulseSlopeLo, &Std::SetPulseSlopeLo,
          {"ratio to the peak", "lower level along the slopes of the pulse, entered positive",
           kFromZero}),
    Value(
        "MainPulseHi", &Std::GetMainPulseHi, &Std::SetMainPulseHi,
        {"multiples of the pulse", "upper limit over the top of the pulse; 1 or more", kFromZero}),
    Value("MainPulseLo", &Std::GetMainPulseLo, &Std::SetMainPulseLo,
          {"multiples of the pulse", "lower limit over the top of the pulse; up to 1", kFromZero}),
    Value("TolEndHi", &Std::GetTolEndHi, &Std::SetTolEndHi,
          {"ratio to the peak", "upper level after the pulse", kFromZero}),
    Value("TolEndLo", &Std::GetTolEndLo, &Std::SetTolEndLo,
          {"ratio to the peak", "lower level after the pulse, entered positive", kFromZero}),
    Value("PulseBeforeWidth", &Std::GetPulseBeforeWidth, &Std::SetPulseBeforeWidth,
          {"widths", "length of the region before the pulse", kFromZero}),
    Value("PulseAfterWidth", &Std::GetPulseAfterWidth, &Std::SetPulseAfterWidth,
          {"widths", "length of the region after the pulse", kFromZero}),
    Value("PulseRiseWidth", &Std::GetPulseRiseWidth, &Std::SetPulseRiseWidth,
          {"widths", "rise of the pulse that the standard asks for", kShare}),
    Value("PulseFallWidth", &Std::GetPulseFallWidth, &Std::SetPulseFallWidth,
          {"widths", "fall of the pulse that the standard asks for", kShare}),
};

constexpr Range kHalves{.low = -0.5, .high = 0.5};
constexpr Range kFrame{.low = 2.0};

// ---- The pulse ---------------------------------------------------------------------------------

/// A nested set.  A pulse may carry levels that its tolerance kind leaves out of force; the setter
/// asks for the kind, which therefore stands for the moment of the call.
template <class Nested>
Field<Set> NestedField(const char* key, const FieldTable<Nested>& table, Set::TOL_KIND kind,
                       const Nested& (Set::*get)() const, bool (Set::*setter)(const Nested&),
                       const Says& says) {
  return Special<Set>(
      key, ValueKind::Set, key,
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
      },
      says);
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
    Enumeration("WaveKind", kPulseShapes, &Set::GetWaveKind, &Set::SetWaveKind,
                {"", "shape of the pulse"}, Need::Required),
    Value("MainAmpl", &Set::GetMainAmpl, &Set::SetMainAmpl,
          {"amplitude unit", "peak of the pulse", kPositive}, Need::Required),
    Value("MainWidth", &Set::GetMainWidth, &Set::SetMainWidth,
          {"s", "nominal width of the pulse", kPositive}, Need::Required),
    Value("MainRise", &Set::GetMainRise, &Set::SetMainRise,
          {"widths", "rise of a user trapezoid", kShare}),
    Value("MainFall", &Set::GetMainFall, &Set::SetMainFall,
          {"widths", "fall of a user trapezoid", kShare}),
    Value("MainShift", &Set::GetMainShift, &Set::SetMainShift,
          {"frames", "shift of the centre of the pulse from the middle of the frame", kHalves}),
    Value("RestPre", &Set::GetRestPre, &Set::SetRestPre,
          {"s", "rest between the compensation and the pulse", kFromZero}),
    Value("RestPost", &Set::GetRestPost, &Set::SetRestPost,
          {"s", "rest between the pulse and the compensation", kFromZero}),
    Value("Fmax", &Set::GetFmax, &Set::SetFmax,
          {"Hz", "highest frequency of the analysis; the samples are taken at 2.56 times it",
           kPositive},
          Need::Required),
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp, {"samples", "length of the frame", kFrame},
          Need::Required),
    Value("WaveShift", &Set::GetWaveShift, &Set::SetWaveShift,
          {"frames", "result: by how much the compensation has shifted the pulse"}),
    Enumeration("TolKind", kTolKinds, &Set::GetTolKind, &Set::SetTolKind,
                {"", "kind of the tolerance bands"}, Need::Required),
    NestedField("TolUserDef", kUserFields, Set::TOL_USER_DEF, &Set::GetDefTolUserDef,
                &Set::SetDefTolUserDef,
                {"", "the user's levels, for TOL_USER_DEF and for a haversine"}),
    NestedField("TolSpecify", kStdFields, Set::TOL_SPECIFY, &Set::GetDefTolSpecify,
                &Set::SetDefTolSpecify, {"", "the levels of a standard, for TOL_SPECIFY"}),
    Value("AddCmp", &Set::GetAddCmp, &Set::SetAddCmp,
          {"", "whether compensation is added, so that the table ends at rest where it began"}),
    Value("CmpNonSym", &Set::GetCmpNonSym, &Set::SetCmpNonSym,
          {"", "whether the compensation before and after the pulse may differ"}),
    Enumeration("CmpType",
                {{Set::CMP_NONE, "CMP_NONE"},
                 {Set::CMP_RAMP, "CMP_RAMP"},
                 {Set::CMP_COSINE, "CMP_COSINE"},
                 {Set::CMP_FLAT_COSINE, "CMP_FLAT_COSINE"},
                 {Set::CMP_OPTIMIZED, "CMP_OPTIMIZED"}},
                &Set::GetCmpType, &Set::SetCmpType, {"", "shape of the compensation"}),
    Value(
        "CmpPre", &Set::GetCmpPre, &Set::SetCmpPre,
        {"", "scale of the bands before the pulse, within which the compensation keeps; usually 1",
         kFromZero}),
    Value("CmpPost", &Set::GetCmpPost, &Set::SetCmpPost,
          {"", "scale of the bands after the pulse, within which the compensation keeps; usually 1",
           kFromZero}),
    Value("CmpPcal", &Set::GetCmpPcal, &Set::SetCmpPcal, {"", "kept for the controller"}),
    Value("CmpU1", &Set::GetCmpU1, &Set::SetCmpU1,
          {"ratio to the peak", "result: level of the compensation before the pulse"}),
    Value("CmpU2", &Set::GetCmpU2, &Set::SetCmpU2,
          {"ratio to the peak", "result: level of the compensation after the pulse"}),
    Value("CmpRgm1", &Set::GetCmpRgm1, &Set::SetCmpRgm1,
          {"ratio to the area",
           "result: share of the area that the compensation before the pulse takes"}),
    Value("CmpRgm2", &Set::GetCmpRgm2, &Set::SetCmpRgm2,
          {"ratio to the area",
           "result: share of the area that the compensation after the pulse takes"}),
    Value("CmpCparam", &Set::GetCmpCparam, &Set::SetCmpCparam,
          {"", "result: gain of the reshaping"}),
    Value("CmpErr", &Set::GetCmpErr, &Set::SetCmpErr, {"", "kept for the controller"}),
    Value("OptRatLevel", &Set::GetOptRatLevel, &Set::SetOptRatLevel,
          {"",
           "of CMP_OPTIMIZED: share of the tolerance that is spent on the stroke; 0 keeps the "
           "pulse nominal",
           kShare}),
};

double OwnFsamp(const ParameterSet& set) {
  return com_def::comdefsystemconst::ConvFmaxToFsampByVal(std::get<Set>(set).GetFmax());
}

constexpr FamilyTable Table() {
  FamilyTable table = OneSetFamily<kFields, &CWaveDef::GetDefClassical>(
      {"Classical", "classical shock pulse", CWaveDef::WAVE_TYPE_CLASSICAL});
  table.ownFsamp = OwnFsamp;
  table.describe = [](const Family& family) {
    return std::vector{Describe(family.key, family.title, true, kFields),
                       Describe("TolUserDef", "the user's levels", false, kUserFields),
                       Describe("TolSpecify", "the levels of a standard", false, kStdFields)};
  };
  return table;
}

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}
template <>
const FieldTable<User>& FieldsOf<User>() {
  return kUserFields;
}
template <>
const FieldTable<Std>& FieldsOf<Std>() {
  return kStdFields;
}

const FamilyTable kClassicalFamily = Table();

}  // namespace qarv::definition
