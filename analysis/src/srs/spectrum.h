// The lines of a shock response spectrum, in banks of oscillators.
#pragma once

#include <span>
#include <vector>

#include "analysis/srs.h"
#include "numeric/instruction_set.h"

namespace qarv::analysis {

/// CalcSrs by one instruction set; the arguments are those that it accepts.
std::vector<SrsPoint> CalcSrsWith(common::InstructionSet set, std::span<const double> shock,
                                  double fsamp, std::span<const double> frequencies, double zeta,
                                  SrsResponse response);

}  // namespace qarv::analysis
