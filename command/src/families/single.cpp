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

ParameterSet Read(const Json& json, const Place& at, bool /*hasFsamp*/) {
  return ReadSet(kFields, json, at);
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefSingle());
}

}  // namespace

const Family kSingleFamily{
    .key = "Single",
    .title = "single sine wave",
    .type = CWaveDef::WAVE_TYPE_SINGLE,
    .read = Read,
    .ownFsamp = nullptr,
    .write = Write,
};

}  // namespace qarv::command
