// Two damped sines and the component that brings the table back to rest.
#include "print_peak.h"
#include "wave_def/wave_def.h"

int main() {
  using namespace qarv::wave_def;
  CWaveDefDamping sum;
  sum.SetSyncWaveType(qarv::com_def::comdefconst::SYNC_WAVE_DAMPED_SINE);
  sum.SetNsamp(4096);
  sum.SetFreq(8.0);  // Hz, of the compensating component
  sum.SetZeta(0.9);
  for (const double freq : {40.0, 120.0}) {
    CWaveDefDampingElm component;
    component.SetFreq(freq);  // Hz
    component.SetAmpl(5.0);
    component.SetZeta(0.05);
    component.SetDelay(0.05);  // s
    sum.Add(component);
  }

  CWaveDef def;
  def.SetFsamp(4096.0);  // Hz
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  if (!def.SetDefDamping(sum)) return 1;
  PrintPeak(def);
}
