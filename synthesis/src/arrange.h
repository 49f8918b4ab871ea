// The places of the components, which decide how far a waveform moves.
#pragma once

#include "search.h"

namespace qarv::synthesis {

/// The least peak of velocity or displacement over other layouts, arrangements included.
/// @param[in] start  one that matches: the result is never above it
Outcome LeastByPlaces(const Task& task, const Outcome& start, SrsQuantity quantity, Run* run);

}  // namespace qarv::synthesis
