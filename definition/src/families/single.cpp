// The key "Single".
#include "family.h"

namespace qarv::definition {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefSingle;

namespace {

const FieldTable<Set> kFields{
    Value("Period", &Set::GetPeriod, &Set::SetPeriod, {"s", "period of the sine", kPositive},
          Need::Required),
    Value("PeakLevel", &Set::GetPeakLevel, &Set::SetPeakLevel,
          {"amplitude unit", "amplitude of the sine"}, Need::Required),
    Enumeration("LengthType", {}, &Set::GetLengthType, &Set::SetLengthType,
                {"", "how the length was stated; kept for the controller"}),
    Value("WaveTime", &Set::GetWaveTime, &Set::SetWaveTime,
          {"s", "duration as it was stated; kept for the controller"}),
    Value("WavePeriod", &Set::GetWavePeriod, &Set::SetWavePeriod,
          {"", "length in terms of its own; kept for the controller"}),
    Value("EdgeTime", &Set::GetEdgeTime, &Set::SetEdgeTime,
          {"s", "length of each linear edge", kFromZero}),
    Value("Nsamp", &Set::GetNsamp, &Set::SetNsamp,
          {"samples", "length of the waveform", kAtLeastOne}, Need::Required),
};

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}

const FamilyTable kSingleFamily = OneSetFamily<kFields, &CWaveDef::GetDefSingle>(
    {"Single", "single sine wave", CWaveDef::WAVE_TYPE_SINGLE});

}  // namespace qarv::definition
