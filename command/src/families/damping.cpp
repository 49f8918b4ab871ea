// The key "Damping".
#include "definition.h"

namespace qarv::command {

using com_def::comdefconst::SYNC_WAVE_DAMPED_SINE;
using com_def::comdefconst::SYNC_WAVE_DAMPED_SINE_MODIFIED;
using com_def::comdefconst::SYNC_WAVE_NONE;
using com_def::comdefconst::SYNC_WAVE_WAVELET;
using wave_def::CWaveDef;
using Set = wave_def::CWaveDefDamping;
using Elm = wave_def::CWaveDefDampingElm;

namespace {

const FieldTable<Elm> kElementFields{
    Value("Freq", &Elm::GetFreq, &Elm::SetFreq, Need::Required),
    Value("Ampl", &Elm::GetAmpl, &Elm::SetAmpl, Need::Required),
    Value("Zeta", &Elm::GetZeta, &Elm::SetZeta),
    Value("NumHalf", &Elm::GetNumHalf, &Elm::SetNumHalf),
    Value("Delay", &Elm::GetDelay, &Elm::SetDelay),
};

const FieldTable<Set> kFields{
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp, Need::Required),
    Enumeration("SyncWaveType",
                {{SYNC_WAVE_NONE, "SYNC_WAVE_NONE"},
                 {SYNC_WAVE_DAMPED_SINE, "SYNC_WAVE_DAMPED_SINE"},
                 {SYNC_WAVE_DAMPED_SINE_MODIFIED, "SYNC_WAVE_DAMPED_SINE_MODIFIED"},
                 {SYNC_WAVE_WAVELET, "SYNC_WAVE_WAVELET"}},
                &Set::GetSyncWaveType, &Set::SetSyncWaveType, Need::Required),
    Value("Freq", &Set::GetFreq, &Set::SetFreq),
    Value("Zeta", &Set::GetZeta, &Set::SetZeta),
    {"Elements", true,
     [](const Json& json, const Place& at, Set& set) {
       for (const Elm& elm : ReadList(kElementFields, json, at)) set.Add(elm);
     },
     [](const Set& set) { return WriteList(kElementFields, set.GetDefDampingElmList()); }},
};

ParameterSet Read(const Json& json, const Place& at, bool /*hasFsamp*/) {
  const Set set = ReadSet(kFields, json, at);
  // The compensating component of this method cannot do without its frequency.
  if (set.GetSyncWaveType() == SYNC_WAVE_DAMPED_SINE && !json.contains("Freq")) {
    at.Key("Freq").Fail("missing");
  }
  return set;
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefDamping());
}

}  // namespace

const Family kDampingFamily{
    .key = "Damping",
    .title = "damped-sine synthesis",
    .type = CWaveDef::WAVE_TYPE_DAMPING,
    .read = Read,
    .ownFsamp = nullptr,
    .write = Write,
};

}  // namespace qarv::command
