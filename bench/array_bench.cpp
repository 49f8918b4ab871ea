// The array operations that every definition runs through.
#include <benchmark/benchmark.h>

#include <cmath>

#include "common/data_array/data_array_float_t.h"

namespace {

using Samples = qarv::common::CDataArrayFloatT<double>;
using qarv::common::uint64;

Samples Ramp(uint64 n) {
  Samples x(n);
  for (uint64 i = 0; i < n; ++i) x[i] = static_cast<double>(i % 1000) - 500.0;
  return x;
}

/// One running maximum, which waits for itself at every sample.
void BM_Ref_ScalarAbsMax(benchmark::State& state) {
  const Samples x = Ramp(static_cast<uint64>(state.range(0)));
  for (auto _ : state) {
    double m = 0.0;
    for (const double v : x) m = std::fabs(v) > m ? std::fabs(v) : m;
    benchmark::DoNotOptimize(m);
  }
}
BENCHMARK(BM_Ref_ScalarAbsMax)->Arg(10000)->Arg(1000000);

void BM_GetAbsMax(benchmark::State& state) {
  const Samples x = Ramp(static_cast<uint64>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(x.GetAbsMax(0, 0));
}
BENCHMARK(BM_GetAbsMax)->Arg(10000)->Arg(1000000);

void BM_RingCopy(benchmark::State& state) {
  const Samples from = Ramp(1000);
  Samples to(1000000);
  for (auto _ : state) {
    for (uint64 at = 0; at < to.GetSize(); at += from.GetSize()) {
      Samples::RingCopy(to, from, 0, at, from.GetSize());
    }
    benchmark::DoNotOptimize(to.GetData());
  }
}
BENCHMARK(BM_RingCopy);

}  // namespace
