// The shock response spectrum of a long record.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "analysis/srs.h"

namespace {

using namespace qarv::analysis;

void BM_CalcSrs(benchmark::State& state) {
  std::vector<double> shock(65536);
  for (std::size_t k = 0; k < shock.size(); ++k) {
    const double t = static_cast<double>(k) / 50000;
    shock[k] = std::exp(-20 * t) * std::sin(900 * t);
  }
  std::vector<double> frequencies(200);
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    frequencies[i] = 10 * std::pow(300.0, static_cast<double>(i) / 199);
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        CalcSrs(shock, 50000, frequencies, 0.05, SrsResponse::AbsoluteAcceleration));
  }
}
BENCHMARK(BM_CalcSrs)->Unit(benchmark::kMillisecond);

}  // namespace
