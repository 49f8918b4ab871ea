// Constants that the controller's libraries share.
#pragma once

#include <cstdint>

namespace qarv::com_def::comdefconst {

/// How the components of a damped-sine definition are summed.
enum SYNC_WAVE_TYPE : std::int32_t {
  SYNC_WAVE_NONE = 0,                  ///< not set
  SYNC_WAVE_DAMPED_SINE = 1,           ///< damped sines and one compensating damped sine
  SYNC_WAVE_DAMPED_SINE_MODIFIED = 2,  ///< damped sines in the phase-shifted form
  SYNC_WAVE_WAVELET = 3,               ///< half-sine-windowed sines of an odd number of half cycles
};

}  // namespace qarv::com_def::comdefconst
