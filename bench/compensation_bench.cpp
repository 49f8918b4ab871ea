// The compensation: its gain search alone, and the reference case that takes it longest.
#include <benchmark/benchmark.h>

#include <cmath>
#include <optional>

#include "common/numeric/constants.h"
#include "compensation/gain_search.h"
#include "compensation/preparation.h"
#include "compensation_cases.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv::wave_def;
using namespace qarv::wave_def::compensation;

constexpr double kPeak = 50.0;

/// A half-sine of a sixteenth of the frame in its middle, within 15 % of the peak.
Pulse HalfSine(int64 N) {
  const int64 width = N / 16;
  const int64 first = (N - width) / 2;
  const auto size = static_cast<std::size_t>(N);
  Pulse pulse{.at = {first, first + width, first, first + width},
              .A = kPeak,
              .wave = Wave(size),
              .upper = Wave(size),
              .lower = Wave(size)};
  for (int64 i = 0; i < N; ++i) {
    const auto k = static_cast<std::size_t>(i);
    if (i >= first && i <= first + width) {
      pulse.wave[k] = kPeak * std::sin(qarv::common::kPi * static_cast<double>(i - first) /
                                       static_cast<double>(width));
    }
    pulse.upper[k] = pulse.wave[k] + 0.15 * kPeak;
    pulse.lower[k] = pulse.wave[k] - 0.15 * kPeak;
  }
  return pulse;
}

void BM_GainSearch(benchmark::State& state) {
  Settings settings{};
  settings.type = CWaveDefClassical::CMP_COSINE;
  settings.pre = settings.post = 1.0;
  settings.shape = wave_def_sub::HALF_SINE;
  settings.kind = CWaveDefClassical::TOL_FIXED_4;
  settings.fsamp = 1000.0;
  Pulse pulse = HalfSine(state.range(0));
  Work work;
  const std::optional<Attempt> attempt = PrepareDrawn(&pulse, settings, nullptr, &work);
  if (!attempt) {
    state.SkipWithError("no room");
    return;
  }
  Reshaper reshaper(attempt->pulse.wave.size());
  for (auto _ : state) {
    Candidates candidates(&reshaper, *attempt, settings);
    const GainFound found = SearchGain(&candidates, settings);
    if (!found.passed) state.SkipWithError("not within the bands");
    benchmark::DoNotOptimize(found.best.data());
  }
}
BENCHMARK(BM_GainSearch)->Arg(4096)->Arg(65536);

/// Of the reference cases with the optimised type, that which takes longest in transforms of its
/// length of 512: pulses that differ, the main one nominal.
void BM_SlowestReferenceCase(benchmark::State& state) {
  const auto cases =
      qarv::test::ReadCompensationCases(QARV_TEST_DATA_DIR "/compensation_cases.csv");
  const auto definition = cases.at(1).Definition(CWaveDefClassical::CMP_OPTIMIZED, true, 0.0);
  CWaveDef def;
  for (auto _ : state) benchmark::DoNotOptimize(def.SetDefClassical(definition));
}
BENCHMARK(BM_SlowestReferenceCase)->Unit(benchmark::kMillisecond);

}  // namespace
