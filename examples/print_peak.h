// What the example programs print of a definition.
#pragma once

#include <cmath>
#include <cstdio>

#include "wave_def/wave_def.h"

/// Prints the length of the waveform and its largest sample with the band there.
inline void PrintPeak(const qarv::wave_def::CWaveDef& def) {
  qarv::common::uint64 at = 0;
  for (qarv::common::uint64 k = 0; k < def.GetNsamp(); ++k) {
    if (std::fabs(def.GetWave()[k]) > std::fabs(def.GetWave()[at])) at = k;
  }
  std::printf("%llu samples, peak %g at %g s, band %g .. %g\n", def.GetNsamp(), def.GetWave()[at],
              static_cast<double>(at) / def.GetFsamp(), def.GetTolL()[at], def.GetTolU()[at]);
}
