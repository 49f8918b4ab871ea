// The shock response spectrum of a long record.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
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

/// Every top is as high as the others, or higher than those before: any may be the highest.
void BM_CalcSrsOfASine(benchmark::State& state) {
  Spectrum(state, [](double t) { return std::sin(3142 * t); });
}
BENCHMARK(BM_CalcSrsOfASine)->Unit(benchmark::kMillisecond);

void BM_CalcSrsOfAGrowingSine(benchmark::State& state) {
  Spectrum(state, [](double t) { return t * std::sin(31416 * t); });
}
BENCHMARK(BM_CalcSrsOfAGrowingSine)->Unit(benchmark::kMillisecond);

void BM_CalcSrsOfABurst(benchmark::State& state) {
  Spectrum(state, [](double t) { return std::min(1.0, 20 * t) * std::sin(12566 * t); });
}
BENCHMARK(BM_CalcSrsOfABurst)->Unit(benchmark::kMillisecond);

void BM_CalcSrsOfASweep(benchmark::State& state) {
  Spectrum(state, [](double t) { return std::sin((125 + 12000 * t) * t); });
}
BENCHMARK(BM_CalcSrsOfASweep)->Unit(benchmark::kMillisecond);

void BM_CalcSrsOfGrowingNoise(benchmark::State& state) {
  std::mt19937 random(1);
  Spectrum(state, [&](double t) { return t * (static_cast<double>(random()) / 0x1p31 - 1.0); });
}
BENCHMARK(BM_CalcSrsOfGrowingNoise)->Unit(benchmark::kMillisecond);

}  // namespace
