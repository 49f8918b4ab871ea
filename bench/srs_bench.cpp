// The shock response spectrum of a long record.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "analysis/srs.h"

namespace {

using namespace qarv::analysis;

template <class F>
void Spectrum(benchmark::State& state, F sample) {
  std::vector<double> shock(65536);
  for (std::size_t k = 0; k < shock.size(); ++k) {
    shock[k] = sample(static_cast<double>(k) / 50000);
  }
  std::vector<double> frequencies(200);
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    frequencies[i] = 10 * std::pow(300.0, static_cast<double>(i) / 199);
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        CalcSrs(shock, 50000, frequencies, 0.05, SrsResponse::AbsoluteAcceleration));
  }
  state.counters["s_per_sample_and_line"] = benchmark::Counter(
      static_cast<double>(shock.size() * frequencies.size()),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_CalcSrs(benchmark::State& state) {
  Spectrum(state, [](double t) { return std::exp(-20 * t) * std::sin(900 * t); });
}
BENCHMARK(BM_CalcSrs)->Unit(benchmark::kMillisecond);

/// Every top is as high as the others, and may be the highest.
void BM_CalcSrsOfASine(benchmark::State& state) {
  Spectrum(state, [](double t) { return std::sin(3142 * t); });
}
BENCHMARK(BM_CalcSrsOfASine)->Unit(benchmark::kMillisecond);

}  // namespace
