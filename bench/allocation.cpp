// Counts what a benchmark allocates, through a replaced operator new.
#include "allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<unsigned long long> totalBytes{0};
std::atomic<unsigned long long> totalCalls{0};

}  // namespace

void* operator new(std::size_t n) {
  totalBytes += n;
  ++totalCalls;
  if (void* const p = std::malloc(n != 0 ? n : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace qarv::bench {

AllocationCounter::AllocationCounter() : bytes_(totalBytes), calls_(totalCalls) {}

void AllocationCounter::Report(benchmark::State& state) const {
  const auto perIteration = [&](unsigned long long n) {
    return benchmark::Counter(static_cast<double>(n), benchmark::Counter::kAvgIterations);
  };
  state.counters["alloc_bytes"] = perIteration(totalBytes - bytes_);
  state.counters["alloc_calls"] = perIteration(totalCalls - calls_);
}

}  // namespace qarv::bench
