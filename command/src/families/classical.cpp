// The key "Classical".
#include "com_def/com_def_system_const.h"
#include "definition.h"
#include "families/pulse_shapes.h"

namespace qarv::command {

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

ParameterSet Read(const Json& json, const Place& at, bool /*hasFsamp*/) {
  return ReadSet(kFields, json, at);
}

double OwnFsamp(const ParameterSet& set) {
  return com_def::comdefsystemconst::ConvFmaxToFsampByVal(std::get<Set>(set).GetFmax());
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefClassical());
}

}  // namespace

const Family kClassicalFamily{
    .key = "Classical",
    .title = "classical shock pulse",
    .type = CWaveDef::WAVE_TYPE_CLASSICAL,
    .read = Read,
    .ownFsamp = OwnFsamp,
    .write = Write,
};

}  // namespace qarv::command
