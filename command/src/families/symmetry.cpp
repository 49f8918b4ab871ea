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

std::string Define(const Json& json, const Place& at, bool /*hasFsamp*/, CWaveDef& def) {
  Set set;
  ReadFields(kFields, json, at, set);
  using namespace wave_def::wave_def_sub;
  const WAVE_KIND kind = set.GetWaveKind();
  return DefineSet(def, set, &CWaveDef::SetDefSymmetry,
                   {{def.GetFsamp() == 0.0, "Fsamp is 0"},
                    {kind != HALF_SINE && kind != TRIANGLE && kind != HAVERSINE,
                     "WaveKind is not HALF_SINE, TRIANGLE or HAVERSINE"},
                    {set.GetPeak() == 0.0, "Peak is 0"},
                    {set.GetWidth() == 0.0, "Width is 0"},
                    {set.GetWidth() * def.GetFsamp() < 0.5, "Width is shorter than half a sample"},
                    {kind == TRIANGLE && set.GetPeakPos() > 1.0, "PeakPos is above 1"},
                    {true, "a pulse does not fit between the silences"}});
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefSymmetry());
}

}  // namespace

const Family kSymmetryFamily{
    .key = "Symmetry",
    .title = "symmetry wave",
    .type = CWaveDef::WAVE_TYPE_SYMMETRY,
    .define = Define,
    .write = Write,
    .needsFsamp = true,
};

}  // namespace qarv::command
