// The key "Symmetry".
#include "families/pulse_shapes.h"
#include "family.h"

namespace qarv::definition {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefSymmetry;

namespace {

const FieldTable<Set> kFields{
    Enumeration("WaveKind", kPulseShapes, &Set::GetWaveKind, &Set::SetWaveKind,
                {"", "shape of the pulses: HALF_SINE, TRIANGLE or HAVERSINE"}, Need::Required),
    Value("Peak", &Set::GetPeak, &Set::SetPeak, {"amplitude unit", "peak of the main pulse; not 0"},
          Need::Required),
    Value("Width", &Set::GetWidth, &Set::SetWidth, {"s", "width of every pulse", kPositive},
          Need::Required),
    Value("PeakPos", &Set::GetPeakPos, &Set::SetPeakPos,
          {"widths", "place of the peak of a triangle", kShare}),
    Value("PreZero", &Set::GetPreZero, &Set::SetPreZero,
          {"s", "silence before the first pulse", kFromZero}),
    Value("MidZero", &Set::GetMidZero, &Set::SetMidZero,
          {"s", "silence between pulse and compensation, or before the divided pulse", kFromZero}),
    Value("PostZero", &Set::GetPostZero, &Set::SetPostZero,
          {"s", "silence after the last pulse", kFromZero}),
    Value("DevideComp", &Set::GetDevideComp, &Set::SetDevideComp,
          {"", "whether the compensation is divided into halves before and after the pulse"}),
    Value("CompForward", &Set::GetCompForward, &Set::SetCompForward,
          {"", "whether the compensation comes first, where it is not divided"}),
    Value("MidBackward", &Set::GetMidBackward, &Set::SetMidBackward,
          {"", "kept for the controller"}),
    Value("MidZeroBackward", &Set::GetMidZeroBackward, &Set::SetMidZeroBackward,
          {"s", "silence between the pulse and the second half, where it is divided", kFromZero}),
};

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}

const FamilyTable kSymmetryFamily = OneSetFamily<kFields, &CWaveDef::GetDefSymmetry>(
    {"Symmetry", "symmetry wave", CWaveDef::WAVE_TYPE_SYMMETRY});

}  // namespace qarv::definition
