// The key "Symmetry".
#include "definition.h"
#include "families/pulse_shapes.h"

namespace qarv::command {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefSymmetry;

namespace {

const FieldTable<Set> kFields{
    Enumeration("WaveKind", kPulseShapes, &Set::GetWaveKind, &Set::SetWaveKind, Need::Required),
    Value("Peak", &Set::GetPeak, &Set::SetPeak, Need::Required),
    Value("Width", &Set::GetWidth, &Set::SetWidth, Need::Required),
    Value("PeakPos", &Set::GetPeakPos, &Set::SetPeakPos),
    Value("PreZero", &Set::GetPreZero, &Set::SetPreZero),
    Value("MidZero", &Set::GetMidZero, &Set::SetMidZero),
    Value("PostZero", &Set::GetPostZero, &Set::SetPostZero),
    Value("DevideComp", &Set::GetDevideComp, &Set::SetDevideComp),
    Value("CompForward", &Set::GetCompForward, &Set::SetCompForward),
    Value("MidBackward", &Set::GetMidBackward, &Set::SetMidBackward),
    Value("MidZeroBackward", &Set::GetMidZeroBackward, &Set::SetMidZeroBackward),
};

ParameterSet Read(const Json& json, const Place& at, bool /*hasFsamp*/) {
  return ReadSet(kFields, json, at);
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefSymmetry());
}

}  // namespace

const Family kSymmetryFamily{
    .key = "Symmetry",
    .title = "symmetry wave",
    .type = CWaveDef::WAVE_TYPE_SYMMETRY,
    .read = Read,
    .ownFsamp = nullptr,
    .write = Write,
};

}  // namespace qarv::command
