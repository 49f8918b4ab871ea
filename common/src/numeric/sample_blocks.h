// A formula of the sample index, drawn in blocks that stay in the cache, and searches for extremes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "common/int_types.h"
#include "numeric/elementary.h"
#include "numeric/instruction_set.h"

namespace qarv::common {

inline constexpr std::size_t kSampleBlock = 256;
using SampleBlock = std::array<double, kSampleBlock>;

/// block[i] = f(first + i) for n samples.  The index reaches f as a double: exact below 2^53, and
/// the lanes of SSE2 and AVX2 convert no 64-bit integers.
template <class F>
QARV_LANES_INLINE void FillBlock(double* block, uint64 first, std::size_t n, F f) {
  const auto base = static_cast<double>(first);
  const int count = static_cast<int>(n);
  for (int i = 0; i < count; ++i) block[i] = f(base + i);
}

/// How many running extremes a search keeps side by side: one alone waits for itself at every
/// sample.  In an array of so many, GCC takes the loop over them to lanes; of 16 and fewer it makes
/// single values.
inline constexpr std::size_t kRunning = 32;
using Running = std::array<double, kRunning>;

/// Calls take(lane, i) for 0 <= i < n, neighbours with different lanes below kRunning.
template <class Take>
QARV_LANES_INLINE void ForSideBySide(std::size_t n, Take take) {
  std::size_t i = 0;
  for (; n - i >= kRunning; i += kRunning) {
    QARV_INDEPENDENT
    for (std::size_t lane = 0; lane < kRunning; ++lane) take(lane, i + lane);
  }
  for (; i < n; ++i) take(0, i);
}

/// Calls draw(first, n) for the samples first <= k < end in blocks, compiled for @p set.
template <class Draw>
void ForBlocks(InstructionSet set, uint64 first, uint64 end, const Draw& draw) {
  RunWith(set, [&]() QARV_LANES {
    for (uint64 k = first; k < end; k += kSampleBlock) {
      draw(k, static_cast<std::size_t>(std::min<uint64>(kSampleBlock, end - k)));
    }
  });
}

}  // namespace qarv::common
