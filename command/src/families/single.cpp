// The key "Single".
#include "definition.h"

namespace qarv::command {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefSingle;

namespace {

const FieldTable<Set> kFields{
    Value("Period", &Set::GetPeriod, &Set::SetPeriod, Need::Required),
    Value("PeakLevel", &Set::GetPeakLevel, &Set::SetPeakLevel, Need::Required),
    Enumeration("LengthType", {}, &Set::GetLengthType, &Set::SetLengthType),
    Value("WaveTime", &Set::GetWaveTime, &Set::SetWaveTime),
    Value("WavePeriod", &Set::GetWavePeriod, &Set::SetWavePeriod),
    Value("EdgeTime", &Set::GetEdgeTime, &Set::SetEdgeTime),
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp, Need::Required),
};

std::string Define(const Json& json, const Place& at, bool /*hasFsamp*/, CWaveDef& def) {
  Set set;
  ReadFields(kFields, json, at, set);
  return DefineSet(def, set, &CWaveDef::SetDefSingle,
                   {{def.GetFsamp() == 0.0, "Fsamp is 0"}, {set.GetNsamp() == 0, "Nsamp is 0"}});
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefSingle());
}

}  // namespace

const Family kSingleFamily{
    .key = "Single",
    .title = "single sine wave",
    .type = CWaveDef::WAVE_TYPE_SINGLE,
    .define = Define,
    .write = Write,
    .needsFsamp = true,
};

}  // namespace qarv::command
