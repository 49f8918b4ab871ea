// Three tapered bursts of a 50 Hz sine with half a second of silence between them.
#include "print_peak.h"
#include "wave_def/wave_def.h"

int main() {
  using namespace qarv::wave_def;
  CWaveDefSineBeatBurst burst;
  burst.SetWaveKind(CWaveDefSineBeatBurst::SINE_BURST);
  burst.SetAmpl(10.0);
  burst.SetFreq(50.0);  // Hz
  burst.SetCycle(20);
  burst.SetFrame(3);
  burst.SetRestTime(0.5);                                           // s
  burst.SetEdging(true, 3, 3, CWaveDefSineBeatBurst::WINDOW_RAMP);  // three cycles at either end

  CWaveDef def;
  def.SetFsamp(2048.0);  // Hz
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  if (!def.SetDefSineBeatBurst(burst)) return 1;
  PrintPeak(def);
}
