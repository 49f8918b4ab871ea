// The instruction sets that the numeric loops are compiled for, and the choice among them.
//
// A loop is written once, as an always-inline body of exactly rounded operations, and compiled once
// per instruction set; the compiler turns it into lanes.  Lanes of any width round alike, so every
// path gives the same bits, and a test may ask for each of them.
//
//   void Scale(InstructionSet set, double a, std::span<double> x) {
//     RunWith(set, [&]() QARV_LANES { for (double& v : x) v *= a; });
//   }
//
// Every function that the body calls has to be always-inline too: one that is not would be compiled
// for the baseline, and the loop around it with it.
#pragma once

#include <span>

#define QARV_LANES __attribute__((always_inline))
#define QARV_LANES_INLINE inline __attribute__((always_inline))

// Stands before a loop whose arrays do not overlap.  Inlining hides from the compilers what
// __restrict told them of that, and they would ask about every pair of arrays before the loop, or
// leave it as it is where there are many.
#ifdef __clang__
#define QARV_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#else
#define QARV_INDEPENDENT _Pragma("GCC ivdep")
#endif

namespace qarv::common {

/// The instruction sets, each containing those before it.  Baseline is what the compiler takes for
/// granted: SSE2 on x86-64, NEON on AArch64.
enum class InstructionSet { Baseline, Avx2, Avx512 };

/// Those that this build has and this processor runs, Baseline first.
std::span<const InstructionSet> UsableInstructionSets();

/// The last of them: asked anew by each call, so that nothing global has to be kept.
inline InstructionSet BestInstructionSet() { return UsableInstructionSets().back(); }

// Windows aligns the stack to 16 bytes and GCC spills wider registers as if it were aligned to
// more.
#if defined(__x86_64__) && !defined(_WIN32)
#define QARV_HAS_WIDE_LANES 1
#else
#define QARV_HAS_WIDE_LANES 0
#endif

#if QARV_HAS_WIDE_LANES
template <class Body>
__attribute__((target("avx2"), noinline)) void RunWithAvx2(const Body& body) {
  body();
}

template <class Body>
__attribute__((target("avx2,avx512f,avx512dq,avx512vl,avx512bw"), noinline)) void RunWithAvx512(
    const Body& body) {
  body();
}
#endif

/// Runs @p body as it was compiled for @p set, which must be usable.
template <class Body>
inline void RunWith(InstructionSet set, const Body& body) {
#if QARV_HAS_WIDE_LANES
  if (set == InstructionSet::Avx512) return RunWithAvx512(body);
  if (set == InstructionSet::Avx2) return RunWithAvx2(body);
#endif
  static_cast<void>(set);
  body();
}

}  // namespace qarv::common
