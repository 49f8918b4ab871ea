// Where the pulses of a symmetry wave lie.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "common/int_types.h"
#include "family/total_length.h"
#include "wave_def/wave_def_symmetry.h"

namespace qarv::wave_def {

/// Where the pulses of a symmetry wave begin, and how long the whole is.  [sample]
struct SymmetryLayout {
  common::uint64 n;                    // width of every pulse
  common::uint64 main;                 // first sample of the main pulse
  std::array<common::uint64, 2> comp;  // of its compensation: the second one only if it is divided
  std::size_t compCount;
  TotalLength total;

  std::span<const common::uint64> Compensations() const { return {comp.data(), compCount}; }
};
SymmetryLayout LayOut(const CWaveDefSymmetry& def, double fsamp);

/// Whether every sample of a pulse of n samples that begins at `at` lies in an array of `size`, and
/// its shape is one of the three.
bool PulseFits(const CWaveDefSymmetry& def, common::uint64 n, common::uint64 at,
               common::uint64 size);

}  // namespace qarv::wave_def
