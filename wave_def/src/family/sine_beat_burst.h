// The generator of sine beats and bursts: one packet, repeated with a rest in between.
#pragma once

#include "common/data_array/data_array_float_t.h"
#include "family/packet_layout.h"
#include "wave_def/wave_def_sine_beat_burst.h"

namespace qarv::wave_def {

/// Generates `Frame` packets of `Cycle` cycles each, with silence in between and none at the end.
///
///   x = ((k dt) Freq) 2 pi,   dt = 1 / fsamp
///   beat:  sin(x) Ampl sin(x / Cycle 0.5)
///   burst: sin(x) Ampl, its ends tapered if Edging is set
///
/// A packet has Cycle (1 / Freq) fsamp samples and a rest RestTime fsamp, both rounded half up.
/// @param[in]  def    the parameters
/// @param[in]  fsamp  sampling frequency [Hz]
/// @param[out] wave   all packets and rests [amplitude unit]; what it held is replaced
/// @return false, with `wave` unchanged, if fsamp, Ampl, Freq, Cycle or Frame is 0, wave is null,
///         WaveKind is no kind, or the packet or the whole has no samples
///
/// A negative rest makes packets overlap, the later one on top.  Where it makes the whole shorter
/// than a packet, no packet is copied: the array's error line appears for each and the wave is 0.
[[nodiscard]] bool SineBeatBurstGenerate(const CWaveDefSineBeatBurst& def, double fsamp,
                                         common::CDataArrayFloatT<double>* wave);

}  // namespace qarv::wave_def
