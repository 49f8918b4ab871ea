// Whether a classical pulse and its bands fit their frame, and what frame they would fit.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "definition/check.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::definition {

/// A sample that has to lie in the frame.
struct Extent {
  const char* what;
  common::uint64 index;  // [sample] wrapped below 0
};

/// The samples that a pulse and its bands reach; none where the shape, the tolerance kind or the
/// frame leave them open.
std::vector<Extent> ExtentsOf(const wave_def::CWaveDefClassical& set);

/// Whether all of them lie in the frame.
bool FitsFrame(const wave_def::CWaveDefClassical& set);

/// Which of them does not, with its numbers.
std::string MisfitText(const wave_def::CWaveDefClassical& set);

/// The nearest shift of the pulse and the shortest frame that hold it, where there are such.
std::vector<Remedy> FittingFrames(const wave_def::CWaveDefClassical& set);

}  // namespace qarv::definition
