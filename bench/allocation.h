// Counts what a benchmark allocates, through a replaced operator new.
#pragma once

#include <benchmark/benchmark.h>

namespace qarv::bench {

/// Reports the memory allocated per iteration since it was made: `alloc_bytes`, `alloc_calls`.
class AllocationCounter {
 public:
  AllocationCounter();
  /// Adds the two counters to the benchmark's line.
  void Report(benchmark::State& state) const;

 private:
  unsigned long long bytes_;
  unsigned long long calls_;
};

}  // namespace qarv::bench
