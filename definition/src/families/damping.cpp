// The key "Damping".
#include "family.h"

namespace qarv::definition {

using com_def::comdefconst::SYNC_WAVE_DAMPED_SINE;
using com_def::comdefconst::SYNC_WAVE_DAMPED_SINE_MODIFIED;
using com_def::comdefconst::SYNC_WAVE_NONE;
using com_def::comdefconst::SYNC_WAVE_WAVELET;
using wave_def::CWaveDef;
using Set = wave_def::CWaveDefDamping;
using Elm = wave_def::CWaveDefDampingElm;

namespace {

const FieldTable<Elm> kElementFields{
    Value("Freq", &Elm::GetFreq, &Elm::SetFreq, {"Hz", "frequency of the component", kPositive},
          Need::Required),
    Value("Ampl", &Elm::GetAmpl, &Elm::SetAmpl, {"amplitude unit", "amplitude of the component"},
          Need::Required),
    Value("Zeta", &Elm::GetZeta, &Elm::SetZeta,
          {"", "damping ratio of the component; without effect on a wavelet", kFromZero}),
    Value("NumHalf", &Elm::GetNumHalf, &Elm::SetNumHalf,
          {"half cycles", "length of a wavelet; odd, 3 or more", kFromZero}),
    Value("Delay", &Elm::GetDelay, &Elm::SetDelay, {"s", "beginning of the component", kFromZero}),
};

const FieldTable<Set> kFields{
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp,
          {"samples", "length of the waveform", kAtLeastOne}, Need::Required),
    Enumeration("SyncWaveType",
                {{SYNC_WAVE_NONE, "SYNC_WAVE_NONE"},
                 {SYNC_WAVE_DAMPED_SINE, "SYNC_WAVE_DAMPED_SINE"},
                 {SYNC_WAVE_DAMPED_SINE_MODIFIED, "SYNC_WAVE_DAMPED_SINE_MODIFIED"},
                 {SYNC_WAVE_WAVELET, "SYNC_WAVE_WAVELET"}},
                &Set::GetSyncWaveType, &Set::SetSyncWaveType, {"", "method of the synthesis"},
                Need::Required),
    Value("Freq", &Set::GetFreq, &Set::SetFreq,
          {"Hz", "frequency of the compensating component, for SYNC_WAVE_DAMPED_SINE", kFromZero}),
    Value(
        "Zeta", &Set::GetZeta, &Set::SetZeta,
        {"", "damping ratio of the compensating component, for SYNC_WAVE_DAMPED_SINE", kFromZero}),
    Special<Set>(
        "Elements", ValueKind::List, "Elements",
        [](const Json& json, const Place& at, Set& set) {
          for (const Elm& elm : ReadList(kElementFields, json, at)) set.Add(elm);
        },
        [](const Set& set) { return WriteList(kElementFields, set.GetDefDampingElmList()); },
        {"", "the components"}, Need::Required),
};

ParameterSet Read(const Json& json, const Place& at, const ReadContext& /*context*/) {
  const Set set = ReadSet(kFields, json, at);
  // The compensating component of this method cannot do without its frequency.
  if (set.GetSyncWaveType() == SYNC_WAVE_DAMPED_SINE && !json.contains("Freq")) {
    at.Key("Freq").Fail("missing");
  }
  return set;
}

constexpr FamilyTable Table() {
  FamilyTable table = OneSetFamily<kFields, &CWaveDef::GetDefDamping>(
      {"Damping", "damped-sine synthesis", CWaveDef::WAVE_TYPE_DAMPING});
  table.read = Read;
  table.describe = [](const Family& family) {
    return std::vector{
        Describe(family.key, family.title, true, kFields),
        Describe("Elements", "a component of a damped-sine synthesis", false, kElementFields)};
  };
  return table;
}

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}
template <>
const FieldTable<Elm>& FieldsOf<Elm>() {
  return kElementFields;
}

const FamilyTable kDampingFamily = Table();

}  // namespace qarv::definition
