// The lines of a shock response spectrum, in banks of oscillators.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "analysis/srs.h"
#include "numeric/instruction_set.h"

namespace qarv::analysis {

/// What a search took beside the walk through all samples.
struct SearchWork {
  std::size_t looked = 0;    // intervals that a bank has looked at closely
  std::size_t examined = 0;  // tops that have been bounded
  std::size_t crests = 0;    // tops whose height has been found
};

/// CalcSrs by one instruction set; the arguments are those that it accepts.
std::vector<SrsPoint> CalcSrsWith(common::InstructionSet set, std::span<const double> shock,
                                  double fsamp, std::span<const double> frequencies, double zeta,
                                  SrsResponse response, SearchWork* work = nullptr);

}  // namespace qarv::analysis
