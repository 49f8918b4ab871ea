// The key "SineBeatBurst".
#include "family.h"

namespace qarv::definition {

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
                &Set::GetWaveKind, &Set::SetWaveKind, {"", "beat or burst"}, Need::Required),
    Value("Ampl", &Set::GetAmpl, &Set::SetAmpl, {"amplitude unit", "amplitude of the sine; not 0"},
          Need::Required),
    Value("Freq", &Set::GetFreq, &Set::SetFreq, {"Hz", "frequency of the sine", kPositive},
          Need::Required),
    Value("Cycle", &Set::GetCycle, &Set::SetCycle, {"cycles", "length of a packet", kAtLeastOne},
          Need::Required),
    Value("Frame", &Set::GetFrame, &Set::SetFrame, {"packets", "number of packets", kAtLeastOne},
          Need::Required),
    Value("RestTime", &Set::GetRestTime, &Set::SetRestTime,
          {"s", "rest between packets", kFromZero}),
    Value("Edging", &Set::GetEdging, SetEdging, {"", "whether the packets of a burst are tapered"}),
    Value("EdgeRise", &Set::GetEdgeRise, SetEdgeRise,
          {"cycles", "length of the taper at the beginning, with Edging"}),
    Value("EdgeFall", &Set::GetEdgeFall, SetEdgeFall,
          {"cycles", "length of the taper at the end, with Edging"}),
    Enumeration("EdgeWindow",
                {{Set::WINDOW_NONE, "WINDOW_NONE"},
                 {Set::WINDOW_HALF_HANNING, "WINDOW_HALF_HANNING"},
                 {Set::WINDOW_RAMP, "WINDOW_RAMP"}},
                &Set::GetEdgeWindow, SetEdgeWindow, {"", "shape of the tapers, with Edging"}),
};

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}

const FamilyTable kSineBeatBurstFamily = OneSetFamily<kFields, &CWaveDef::GetDefSineBeatBurst>(
    {"SineBeatBurst", "sine beat or burst", CWaveDef::WAVE_TYPE_SINE_BEAT_BURST});

}  // namespace qarv::definition
