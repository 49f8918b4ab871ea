// The key "Gradual".
#include "family.h"

namespace qarv::definition {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefGradual;

namespace {

const FieldTable<Set> kFields{
    Value("Period", &Set::GetPeriod, &Set::SetPeriod, {"s", "period of the sine", kPositive},
          Need::Required),
    Value("LevelBeg", &Set::GetLevelBeg, &Set::SetLevelBeg,
          {"amplitude unit", "amplitude at the beginning of the ramp"}, Need::Required),
    Value("LevelEnd", &Set::GetLevelEnd, &Set::SetLevelEnd,
          {"amplitude unit", "amplitude at the end of the ramp"}, Need::Required),
    Enumeration("LengthType",
                {{Set::LENGTH_TYPE_NONE, "LENGTH_TYPE_NONE"},
                 {Set::LENGTH_BY_TIME, "LENGTH_BY_TIME"},
                 {Set::LENGTH_BY_SLOPE, "LENGTH_BY_SLOPE"}},
                &Set::GetLengthType, &Set::SetLengthType, {"", "what gives the length of the ramp"},
                Need::Required),
    Value("WaveTime", &Set::GetWaveTime, &Set::SetWaveTime,
          {"s", "length of the ramp, for LENGTH_BY_TIME", kFromZero}),
    Value("WaveSlope", &Set::GetWaveSlope, &Set::SetWaveSlope,
          {"amplitude unit/s", "change of the amplitude, for LENGTH_BY_SLOPE; not 0"}),
    Value("PreTime", &Set::GetPreTime, &Set::SetPreTime,
          {"s", "length of the rise from 0 to LevelBeg", kFromZero}),
    Value("EdgeTime", &Set::GetEdgeTime, &Set::SetEdgeTime, {"s", "kept for the controller"}),
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp,
          {"samples", "length of the waveform", kAtLeastOne}, Need::Required),
};

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}

const FamilyTable kGradualFamily = OneSetFamily<kFields, &CWaveDef::GetDefGradual>(
    {"Gradual", "gradual sine wave", CWaveDef::WAVE_TYPE_GRADUAL});

}  // namespace qarv::definition
