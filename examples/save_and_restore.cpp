// A measured waveform with its bands, saved as bytes and restored from them.
#include <vector>

#include "common/serial/serial_data.h"
#include "print_peak.h"
#include "wave_def/wave_def.h"

int main() {
  using namespace qarv::wave_def;
  CWaveDefMeasure origin;
  origin.SetMeasPath("drop_test_12.csv");

  CWaveDef def;
  def.SetFsamp(1000.0);  // Hz
  def.SetTolUpperRat(0.2);
  def.SetTolLowerRat(-0.2);
  if (!def.SetDefMeasure(origin, {0.0, 3.1, 7.4, 9.8, 7.2, 2.9, 0.1})) return 1;

  qarv::common::CSerialData out;
  if (!def.Serialize(&out)) return 1;
  const std::vector<unsigned char> stored(out.GetData(), out.GetData() + out.GetSize());

  qarv::common::CSerialData in(stored);
  CWaveDef restored;
  if (!restored.Serialize(&in) || restored != def) return 1;
  PrintPeak(restored);
}
