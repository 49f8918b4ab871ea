// WAVE_KIND: the shapes of shock pulses, shared by the parameter sets that name one.
#pragma once

#include <cstdint>

namespace qarv::wave_def::wave_def_sub {

/// The shape of a shock pulse.  0 is no shape.
enum WAVE_KIND : std::int32_t {
  HALF_SINE = 1,               ///< symmetric about its peak
  TERMINAL_PEAK_SAWTOOTH = 2,  ///< rises linearly to the peak at the end of the width
  TRAPEZOID = 3,               ///< rise and fall fixed by the tolerance kind or the standard
  TRIANGLE = 4,                ///< symmetric
  USER_TRAPEZOID = 5,          ///< rise and fall as the caller gives them
  HAVERSINE = 6,               ///< (1 - cos) / 2
};

}  // namespace qarv::wave_def::wave_def_sub
