// The generator of the gradual wave: a sine in three linear sections of amplitude.
#pragma once

#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def_gradual.h"

namespace qarv::wave_def {

/// Generates a sine whose amplitude rises from 0 to LevelBeg, changes over the ramp to LevelEnd,
/// and falls towards 0 over what is left of the frame.
///
///   wave[k] = envelope(k) sin(k / Ps 2 pi),   Ps = Period / dt,   dt = 1 / fsamp
///   envelope = k a              for k < P0        a = LevelBeg / P0
///              (k - P0) r + B   for k < Ne        r = (LevelEnd - LevelBeg) / Nr
///              (k - N) b        up to N - 1       b = -LevelEnd / (N - Ne)
///
/// P0, Nr: pre-time and ramp in samples (truncated); Ne = P0 + Nr.
/// @param[in]  def    the parameters
/// @param[in]  fsamp  sampling frequency [Hz]
/// @param[out] wave   def.GetNsamp() samples [amplitude unit]; what it held is replaced
/// @return false, with `wave` unchanged, if fsamp is 0, wave is null, Nsamp is 0, LengthType is
///         neither LENGTH_BY_TIME nor LENGTH_BY_SLOPE, or the slope is 0 where it gives the length
///
/// Sections that reach beyond the frame are cut.
[[nodiscard]] bool GradualGenerate(const CWaveDefGradual& def, double fsamp,
                                   common::CDataArrayFloatT<double>* wave);

}  // namespace qarv::wave_def
