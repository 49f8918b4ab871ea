// The key "SineBeatBurst".
#include "definition.h"

namespace qarv::command {

using wave_def::CWaveDef;
using Set = wave_def::CWaveDefSineBeatBurst;

namespace {

// The set takes the edges together: each key changes one of them, and has nothing to change while
// there are no edges.
const char* SetEdges(Set& set, unsigned int rise, unsigned int fall, Set::WINDOW_TYPE window) {
  set.SetEdging(set.GetEdging(), rise, fall, window);
  const bool taken =
      set.GetEdgeRise() == rise && set.GetEdgeFall() == fall && set.GetEdgeWindow() == window;
  return taken ? nullptr : "Edging";
}
const char* SetEdgeRise(Set& set, unsigned int v) {
  return SetEdges(set, v, set.GetEdgeFall(), set.GetEdgeWindow());
}
const char* SetEdgeFall(Set& set, unsigned int v) {
  return SetEdges(set, set.GetEdgeRise(), v, set.GetEdgeWindow());
}
const char* SetEdgeWindow(Set& set, Set::WINDOW_TYPE v) {
  return SetEdges(set, set.GetEdgeRise(), set.GetEdgeFall(), v);
}
void SetEdging(Set& set, bool v) {
  set.SetEdging(v, set.GetEdgeRise(), set.GetEdgeFall(), set.GetEdgeWindow());
}

const FieldTable<Set> kFields{
    Enumeration("WaveKind",
                {{Set::WAVE_KIND_NONE, "WAVE_KIND_NONE"},
                 {Set::SINE_BEAT, "SINE_BEAT"},
                 {Set::SINE_BURST, "SINE_BURST"}},
                &Set::GetWaveKind, &Set::SetWaveKind, Need::Required),
    Value("Ampl", &Set::GetAmpl, &Set::SetAmpl, Need::Required),
    Value("Freq", &Set::GetFreq, &Set::SetFreq, Need::Required),
    Value("Cycle", &Set::GetCycle, &Set::SetCycle, Need::Required),
    Value("Frame", &Set::GetFrame, &Set::SetFrame, Need::Required),
    Value("RestTime", &Set::GetRestTime, &Set::SetRestTime),
    Value("Edging", &Set::GetEdging, SetEdging),
    Value("EdgeRise", &Set::GetEdgeRise, SetEdgeRise),
    Value("EdgeFall", &Set::GetEdgeFall, SetEdgeFall),
    Enumeration("EdgeWindow",
                {{Set::WINDOW_NONE, "WINDOW_NONE"},
                 {Set::WINDOW_HALF_HANNING, "WINDOW_HALF_HANNING"},
                 {Set::WINDOW_RAMP, "WINDOW_RAMP"}},
                &Set::GetEdgeWindow, SetEdgeWindow),
};

ParameterSet Read(const Json& json, const Place& at, bool /*hasFsamp*/) {
  return ReadSet(kFields, json, at);
}

Json Write(const CWaveDef& def, const std::string& /*samplesFile*/) {
  return WriteFields(kFields, def.GetDefSineBeatBurst());
}

}  // namespace

const Family kSineBeatBurstFamily{
    .key = "SineBeatBurst",
    .title = "sine beat or burst",
    .type = CWaveDef::WAVE_TYPE_SINE_BEAT_BURST,
    .read = Read,
    .ownFsamp = nullptr,
    .write = Write,
};

}  // namespace qarv::command
