// Smaller peaks, and peaks within limits, at the cost of the match.
#pragma once

#include "search.h"

namespace qarv::synthesis {

/// Presses the largest of a quantity down, step by step, as long as the spectrum stays within its
/// tolerance (or within settings.within of the required one).
Outcome Squeeze(const Task& task, const Outcome& start, SrsQuantity quantity, Run* run);

/// Keeps to all limits, with as much of the tolerance as that takes.
Outcome KeepWithinLimits(const Task& task, const Outcome& start, Run* run);

}  // namespace qarv::synthesis
