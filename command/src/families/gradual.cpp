// The key "Gradual".
#include "definition.h"

namespace qarv::command {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefGradual;

namespace {

const FieldTable<Set> kFields{
    Value("Period", &Set::GetPeriod, &Set::SetPeriod, Need::Required),
    Value("LevelBeg", &Set::GetLevelBeg, &Set::SetLevelBeg, Need::Required),
    Value("LevelEnd", &Set::GetLevelEnd, &Set::SetLevelEnd, Need::Required),
    Enumeration("LengthType",
                {{Set::LENGTH_TYPE_NONE, "LENGTH_TYPE_NONE"},
                 {Set::LENGTH_BY_TIME, "LENGTH_BY_TIME"},
                 {Set::LENGTH_BY_SLOPE, "LENGTH_BY_SLOPE"}},
                &Set::GetLengthType, &Set::SetLengthType, Need::Required),
    Value("WaveTime", &Set::GetWaveTime, &Set::SetWaveTime),
    Value("WaveSlope", &Set::GetWaveSlope, &Set::SetWaveSlope),
    Value("PreTime", &Set::GetPreTime, &Set::SetPreTime),
    Value("EdgeTime", &Set::GetEdgeTime, &Set::SetEdgeTime),
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp, Need::Required),
};

ParameterSet Read(const Json& json, const Place& at, bool /*hasFsamp*/) {
  return ReadSet(kFields, json, at);
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefGradual());
}

}  // namespace

const Family kGradualFamily{
    .key = "Gradual",
    .title = "gradual sine wave",
    .type = CWaveDef::WAVE_TYPE_GRADUAL,
    .read = Read,
    .ownFsamp = nullptr,
    .write = Write,
};

}  // namespace qarv::command
