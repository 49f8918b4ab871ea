#include <cstdio>

#include "wave_def/wave_def.h"

int main() {
  qarv::wave_def::CWaveDefSingle sine;
  sine.SetPeriod(0.01);    // s
  sine.SetPeakLevel(2.0);  // in the amplitude unit
  sine.SetEdgeTime(0.05);  // s
  sine.SetNsamp(1000);
  qarv::wave_def::CWaveDef def;
  def.SetFsamp(1000.0);      // Hz
  def.SetTolUpperRat(0.1);   // of the peak
  def.SetTolLowerRat(-0.1);  // a lower band has a negative ratio
  if (!def.SetDefSingle(sine)) return 1;
  for (unsigned k = 0; k < def.GetNsamp(); ++k) {
    std::printf("%g s: %g < %g < %g\n", k / def.GetFsamp(), def.GetTolL()[k], def.GetWave()[k],
                def.GetTolU()[k]);
  }
}
