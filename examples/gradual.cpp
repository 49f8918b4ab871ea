// A 25 Hz sine that grows from 1 to 5 at 2 per second.
#include "print_peak.h"
#include "wave_def/wave_def.h"

int main() {
  using namespace qarv::wave_def;
  CWaveDefGradual gradual;
  gradual.SetPeriod(0.04);  // s
  gradual.SetPreTime(0.5);  // s, from 0 to the level at the beginning
  gradual.SetLevelBeg(1.0);
  gradual.SetLevelEnd(5.0);
  gradual.SetLengthType(CWaveDefGradual::LENGTH_BY_SLOPE);
  gradual.SetWaveSlope(2.0);  // per second
  gradual.SetNsamp(3072);

  CWaveDef def;
  def.SetFsamp(1024.0);  // Hz
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  if (!def.SetDefGradual(gradual)) return 1;
  PrintPeak(def);
}
