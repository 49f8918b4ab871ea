// The generator of the single wave: a sine of one frequency with linear edges.
#pragma once

#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def_single.h"

namespace qarv::wave_def {

/// Generates a sine whose amplitude rises linearly from 0 at the first sample, stays at the peak
/// level, and falls linearly again.
///
///   wave[k] = envelope(k) sin(k / Ps 2 pi),   Ps = Period / dt,   dt = 1 / fsamp
///   envelope = k s | PeakLevel | (N - k) s,   s = PeakLevel / E,   E = EdgeTime / dt (truncated)
///
/// @param[in]  def    the parameters
/// @param[in]  fsamp  sampling frequency [Hz]
/// @param[out] wave   def.GetNsamp() samples [amplitude unit]; what it held is replaced
/// @return false, with `wave` unchanged, if fsamp is 0, wave is null or Nsamp is 0
///
/// Nothing else is checked: a Period of 0 or a NaN anywhere gives the samples that the arithmetic
/// gives.
[[nodiscard]] bool SingleGenerate(const CWaveDefSingle& def, double fsamp,
                                  common::CDataArrayFloatT<double>* wave);

}  // namespace qarv::wave_def
