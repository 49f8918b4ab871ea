// What a waveform is, in the few words that stand above its picture.
#pragma once

#include <string>

#include "wave_def/wave_def.h"

namespace qarv::definition {

/// The title of a defined waveform: what it is, its level and its time or frequency, such as
/// "half-sine 50 g, 11 ms" or "sine beat 10 m/s^2, 20 Hz, 3 x 10 cycles".
std::string TitleOf(const wave_def::CWaveDef& def);

}  // namespace qarv::definition
