// The generation of a classical shock pulse: from its parameters to the waveform and its bands.
#pragma once

#include "common/data_array/data_array_float_t.h"
#include "compensation/refusal.h"
#include "compensation/stage.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def {

/// Generates a classical pulse with its bands, and compensates it where AddCmp is set.
///
///   dt = 1 / ConvFmaxToFsampByVal(Fmax),   T = Nsamp dt
///   centre = floor((MainShift T + T 0.5) / dt + 0.001)
///   start = centre - floor(MainWidth 0.5 / dt),   end = centre + floor(MainWidth 0.5 / dt)
///
/// @param[in,out] params  the definition; the results of a compensation are written into it
/// @param[in]     fsamp   sampling frequency of the caller [Hz], for the compensation only
/// @param[out]    wave,tolU,tolL  the waveform and its bands, Nsamp samples each [amplitude unit];
///                        what they held is replaced
/// @param[in]     autoFsamp  kept for the caller; changes nothing
/// @param[out]    refusal    why a compensation failed; may be null
/// @return false if an array is missing, TolKind, WaveKind or with AddCmp CmpType is none,
///         MainAmpl, Fmax or Nsamp is 0, the sample interval or the number of lines comes out as 0,
///         the pulse begins before the frame, the pulse or a band does not fit it, or the shape
///         does not offer the tolerance kind; the arrays are as they were then.  Also if the
///         compensation finds no room or does not keep within the bands; the arrays hold what it
///         has come to then.
[[nodiscard]] bool GenerateClassical(CWaveDefClassical& params, double fsamp,
                                     common::CDataArrayFloatT<double>* wave,
                                     common::CDataArrayFloatT<double>* tolU,
                                     common::CDataArrayFloatT<double>* tolL, bool autoFsamp,
                                     compensation::Refusal* refusal = nullptr);

}  // namespace qarv::wave_def
