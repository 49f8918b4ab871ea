// WAVE_KIND: the shapes of shock pulses, shared by the parameter sets that name one.
#pragma once

#include <cstdint>

namespace qarv::wave_def::wave_def_sub {

/// The shape of a shock pulse.  0 is no shape.
enum WAVE_KIND : std::int32_t {
  HALF_SINE = 1,               ///< A sin(pi t / W), A the peak, W the width
  TERMINAL_PEAK_SAWTOOTH = 2,  ///< rises to A, then falls at once or in the last part of W
  TRAPEZOID = 3,               ///< rise and fall fixed by the tolerance kind or the standard
  TRIANGLE = 4,                ///< up to A in the first half of W, down in the second
  USER_TRAPEZOID = 5,          ///< rise and fall as the caller gives them
  HAVERSINE = 6,               ///< A (1 - cos(2 pi t / W)) / 2
};

}  // namespace qarv::wave_def::wave_def_sub
