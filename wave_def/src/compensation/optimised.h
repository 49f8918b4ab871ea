// The optimised compensation: the pulse itself gives up what its tolerance allows, and the
// compensation follows the bands.
//
// The stroke grows with the square of the pulse's velocity change, and the lower band lets that
// fall.  So the main pulse is lowered towards its lower limit, as far as OptRatLevel asks for, its
// peak and its rise and fall kept;
// the pulses before and after it follow the profile of their limits; their lengths share the
// velocity so that both sides of the stroke are equal; and moves of the table centre it.
#pragma once

#include <functional>
#include <optional>

#include "compensation/problem.h"

namespace qarv::wave_def::compensation {

/// Builds optimised attempts one by one, from what is asked for to the one with the shortest
/// pulses, and hands each to `accept` until that says stop.  None lowers the main pulse further
/// than is asked for.
/// @param[in]     accept  whether to go no further
/// @param[in,out] work    what it took is added
void TryOptimised(const Pulse& pulse, const Settings& settings,
                  const std::function<bool(Attempt)>& accept, Work* work);

}  // namespace qarv::wave_def::compensation
