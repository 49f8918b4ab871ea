// The main pulse of a classical waveform: where it lies, and what its area nominally is.
#pragma once

#include <cstddef>

#include "wave_def/wave_def.h"

namespace qarv::definition {

/// Whether a defined waveform is a classical pulse, which alone has a main pulse.
bool IsClassical(const wave_def::CWaveDef& def);

/// Whether the waveform is made to leave the table where it was: a compensated classical pulse.
bool IsCompensated(const wave_def::CWaveDef& def);

struct MainPulse {
  std::size_t first, last;  // [sample] the pulse with a sample to each side, so that it is whole
  double velocityChange;    // [amplitude unit x s] nominal area
};

/// @param[in] def  a defined classical waveform
MainPulse MainPulseOf(const wave_def::CWaveDef& def);

}  // namespace qarv::definition
