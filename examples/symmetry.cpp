// A half-sine shock of 11 ms between the halves of its compensation: no velocity is left behind.
#include "print_peak.h"
#include "wave_def/wave_def.h"

int main() {
  using namespace qarv::wave_def;
  CWaveDefSymmetry pulse;
  pulse.SetWaveKind(wave_def_sub::HALF_SINE);
  pulse.SetPeak(50.0);
  pulse.SetWidth(0.011);  // s
  pulse.SetPreZero(0.02);
  pulse.SetMidZero(0.001);
  pulse.SetMidZeroBackward(0.001);
  pulse.SetPostZero(0.02);
  pulse.SetDevideComp(true);

  CWaveDef def;
  def.SetFsamp(20000.0);  // Hz
  def.SetTolUpperRat(0.2);
  def.SetTolLowerRat(-0.2);
  if (!def.SetDefSymmetry(pulse)) return 1;
  PrintPeak(def);
}
