// What this processor runs.
#include "numeric/instruction_set.h"

#include <algorithm>
#include <array>

// A program that brings this file itself can leave the wider sets out: so they are compared.
#ifndef QARV_INSTRUCTION_SETS
#define QARV_INSTRUCTION_SETS 3
#endif

namespace qarv::common {

std::span<const InstructionSet> UsableInstructionSets() {
  static constexpr std::array kSets{InstructionSet::Baseline, InstructionSet::Avx2,
                                    InstructionSet::Avx512};
  std::size_t n = 1;
#if QARV_HAS_WIDE_LANES
  if (__builtin_cpu_supports("avx2")) {
    n = 2;
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw")) {
      n = 3;
    }
  }
#endif
  return std::span(kSets).first(std::min<std::size_t>(n, QARV_INSTRUCTION_SETS));
}

}  // namespace qarv::common
