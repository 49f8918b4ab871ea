// Definitions from end to end, bands included, beside the bare loop of their formula.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "allocation.h"
#include "common/numeric/constants.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using common::kTwoPi;

void CountSamples(benchmark::State& state, double samples) {
  state.counters["samples"] =
      benchmark::Counter(samples, benchmark::Counter::kIsIterationInvariantRate);
}

// ---- References --------------------------------------------------------------------------------

/// One sine per sample: what a single or gradual wave cannot do without.
void BM_Ref_ScalarSine(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  std::vector<double> x(n);
  for (auto _ : state) {
    for (std::size_t k = 0; k < n; ++k) x[k] = std::sin(static_cast<double>(k) / 10.0 * kTwoPi);
    benchmark::DoNotOptimize(x.data());
  }
  CountSamples(state, static_cast<double>(n));
}
BENCHMARK(BM_Ref_ScalarSine)->Arg(10000)->Arg(1000000);

/// Two sines per sample: carrier and envelope of a beat.
void BM_Ref_ScalarBeat(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  std::vector<double> y(n);
  for (auto _ : state) {
    for (std::size_t k = 0; k < n; ++k) {
      const double x = static_cast<double>(k) * 1e-4 * 100.0 * kTwoPi;
      y[k] = std::sin(x) * std::sin(x / 1000.0 * 0.5);
    }
    benchmark::DoNotOptimize(y.data());
  }
  CountSamples(state, static_cast<double>(n));
}
BENCHMARK(BM_Ref_ScalarBeat)->Arg(100000);

/// A sine and an exponential per sample and component.
void BM_Ref_ScalarDamped(benchmark::State& state) {
  const auto components = static_cast<std::size_t>(state.range(0));
  const auto n = static_cast<std::size_t>(state.range(1));
  std::vector<double> sum(n);
  for (auto _ : state) {
    for (std::size_t i = 0; i < components; ++i) {
      const double omega = 20.0 * static_cast<double>(i + 1) * kTwoPi;
      for (std::size_t k = 0; k < n; ++k) {
        const double x = static_cast<double>(k) * 1e-4 * omega;
        sum[k] += std::sin(x) / std::exp(x * 0.05);
      }
    }
    benchmark::DoNotOptimize(sum.data());
  }
  CountSamples(state, static_cast<double>(n * components));
}
BENCHMARK(BM_Ref_ScalarDamped)->Args({40, 16384})->Args({12, 1000000});

/// Two sines per sample of a wavelet, as long as it lasts.
void BM_Ref_ScalarWavelets(benchmark::State& state) {
  const auto components = static_cast<std::size_t>(state.range(0));
  const auto n = static_cast<std::size_t>(state.range(1));
  std::vector<double> sum(n);
  for (auto _ : state) {
    for (std::size_t i = 0; i < components; ++i) {
      const double freq = 20.0 * static_cast<double>(i + 1);
      const double omega = freq * kTwoPi;
      const std::size_t length = std::min(n, static_cast<std::size_t>(10.5 * 10000.0 / freq));
      for (std::size_t k = 0; k < length; ++k) {
        const double t = static_cast<double>(k) * 1e-4;
        sum[k] += std::sin(t * omega) * std::sin(t * (omega / 21.0));
      }
    }
    benchmark::DoNotOptimize(sum.data());
  }
}
BENCHMARK(BM_Ref_ScalarWavelets)->Args({40, 16384});

/// The copies that a measured waveform or a burst comes down to.
void BM_Ref_Memcpy(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  std::vector<double> from(n, 1.0);
  std::vector<double> to(n);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), n * sizeof(double));
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
  }
  CountSamples(state, static_cast<double>(n));
}
BENCHMARK(BM_Ref_Memcpy)->Arg(1000000)->Arg(3000000);

// ---- Definitions -------------------------------------------------------------------------------

CWaveDef Settings() {
  CWaveDef def;
  def.SetFsamp(10000.0);
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  return def;
}

/// Defines again and again on one object, so that its storage is there.
template <class Set>
void RunWarm(benchmark::State& state, bool (CWaveDef::*define)(const Set&), const Set& set) {
  CWaveDef def = Settings();
  if (!(def.*define)(set)) {
    state.SkipWithError("not defined");
    return;
  }
  const bench::AllocationCounter allocations;
  for (auto _ : state) {
    (def.*define)(set);
    benchmark::DoNotOptimize(def.GetWave().GetData());
  }
  allocations.Report(state);
  CountSamples(state, static_cast<double>(def.GetNsamp()));
}

/// Defines on an object that is new each time.
template <class Set>
void RunFresh(benchmark::State& state, bool (CWaveDef::*define)(const Set&), const Set& set) {
  const bench::AllocationCounter allocations;
  double samples = 0.0;
  for (auto _ : state) {
    CWaveDef def = Settings();
    (def.*define)(set);
    benchmark::DoNotOptimize(def.GetWave().GetData());
    samples = static_cast<double>(def.GetNsamp());
  }
  allocations.Report(state);
  CountSamples(state, samples);
}

CWaveDefSingle Single(unsigned int n) {
  CWaveDefSingle set;
  set.SetPeriod(0.001);
  set.SetPeakLevel(2.0);
  set.SetEdgeTime(0.01);
  set.SetNsamp(n);
  return set;
}

void BM_SetDefSingle(benchmark::State& state) {
  RunWarm(state, &CWaveDef::SetDefSingle, Single(static_cast<unsigned int>(state.range(0))));
}
BENCHMARK(BM_SetDefSingle)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(10000000);

void BM_SetDefSingleFresh(benchmark::State& state) {
  RunFresh(state, &CWaveDef::SetDefSingle, Single(static_cast<unsigned int>(state.range(0))));
}
BENCHMARK(BM_SetDefSingleFresh)->Arg(10000)->Arg(1000000);

/// What a definition costs besides its samples; bench/python_overhead.py does the same.
void BM_DefineSmall(benchmark::State& state) {
  for (auto _ : state) {
    CWaveDef def = Settings();
    def.SetDefSingle(Single(16));
    benchmark::DoNotOptimize(def.GetWave().GetData());
  }
}
BENCHMARK(BM_DefineSmall);

void BM_SetDefGradual(benchmark::State& state) {
  CWaveDefGradual set;
  set.SetPeriod(0.001);
  set.SetLevelBeg(1.0);
  set.SetLevelEnd(2.0);
  set.SetLengthType(CWaveDefGradual::LENGTH_BY_TIME);
  set.SetWaveTime(0.5);
  set.SetPreTime(0.01);
  set.SetNsamp(static_cast<unsigned int>(state.range(0)));
  RunWarm(state, &CWaveDef::SetDefGradual, set);
}
BENCHMARK(BM_SetDefGradual)->Arg(10000)->Arg(1000000);

void BM_SetDefSineBeat(benchmark::State& state) {
  CWaveDefSineBeatBurst set;
  set.SetWaveKind(CWaveDefSineBeatBurst::SINE_BEAT);
  set.SetAmpl(2.0);
  set.SetFreq(100.0);
  set.SetCycle(static_cast<unsigned int>(state.range(0) / 100));
  set.SetFrame(1);
  RunWarm(state, &CWaveDef::SetDefSineBeatBurst, set);
}
BENCHMARK(BM_SetDefSineBeat)->Arg(100000);

void BM_SetDefSineBurst1000Frames(benchmark::State& state) {
  CWaveDefSineBeatBurst set;
  set.SetWaveKind(CWaveDefSineBeatBurst::SINE_BURST);
  set.SetAmpl(2.0);
  set.SetFreq(100.0);
  set.SetCycle(5);
  set.SetFrame(1000);
  set.SetRestTime(0.05);
  RunWarm(state, &CWaveDef::SetDefSineBeatBurst, set);
}
BENCHMARK(BM_SetDefSineBurst1000Frames);

void BM_SetDefSymmetry(benchmark::State& state) {
  CWaveDefSymmetry set;
  set.SetWaveKind(wave_def_sub::HALF_SINE);
  set.SetPeak(2.0);
  set.SetWidth(5.0);
  RunWarm(state, &CWaveDef::SetDefSymmetry, set);
}
BENCHMARK(BM_SetDefSymmetry);

/// The components' frequencies rise with `descending` 0 and fall with 1.
void BM_SetDefDamping(benchmark::State& state) {
  CWaveDefDamping set;
  set.SetSyncWaveType(
      static_cast<com_def::comdefconst::SYNC_WAVE_TYPE>(static_cast<int>(state.range(0))));
  set.SetNsamp(static_cast<common::uint64>(state.range(2)));
  set.SetFreq(8.0);
  set.SetZeta(0.9);
  const auto count = static_cast<int>(state.range(1));
  for (int i = 0; i < count; ++i) {
    CWaveDefDampingElm elm;
    elm.SetFreq(20.0 * (state.range(3) != 0 ? count - i : i + 1));
    elm.SetAmpl(1.0);
    elm.SetZeta(0.05);
    elm.SetNumHalf(21);
    set.Add(elm);
  }
  RunWarm(state, &CWaveDef::SetDefDamping, set);
}
BENCHMARK(BM_SetDefDamping)
    ->ArgNames({"method", "elements", "n", "descending"})
    ->Args({1, 40, 16384, 0})
    ->Args({1, 40, 16384, 1})
    ->Args({2, 40, 16384, 0})
    ->Args({3, 40, 16384, 0})
    ->Args({1, 12, 1000000, 0})
    ->Args({1, 12, 1000000, 1})
    ->Args({1, 100000, 64, 0});

/// Half of a pulse of a tenth of the frame, and three constants: what a classical pulse cannot do
/// without.
void BM_Ref_FillAndCos(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  std::vector<double> arrays(3 * n);
  for (auto _ : state) {
    std::fill(arrays.begin(), arrays.end(), 0.2);
    for (std::size_t k = 0; k < n / 20; ++k) {
      arrays[n / 2 + k] = std::cos(static_cast<double>(k) * 1e-5) * 10.0;
    }
    benchmark::DoNotOptimize(arrays.data());
    benchmark::ClobberMemory();
  }
  CountSamples(state, static_cast<double>(n));
}
BENCHMARK(BM_Ref_FillAndCos)->Arg(1000000);

void BM_SetDefClassical(benchmark::State& state) {
  const auto n = static_cast<unsigned int>(state.range(0));
  CWaveDefClassical set;
  set.SetWaveKind(wave_def_sub::HALF_SINE);
  set.SetTolKind(CWaveDefClassical::TOL_FIXED_3);
  set.SetMainAmpl(10.0);
  set.SetFmax(1000.0);
  set.SetNsamp(n);
  set.SetMainWidth(0.1 * n / 2560.0);
  RunWarm(state, &CWaveDef::SetDefClassical, set);
}
BENCHMARK(BM_SetDefClassical)->Arg(10000)->Arg(1000000);

/// A half-sine in a frame of 128 widths, compensated.
CWaveDefClassical Compensated(int64_t type) {
  CWaveDefClassical set;
  set.SetWaveKind(wave_def_sub::HALF_SINE);
  set.SetTolKind(CWaveDefClassical::TOL_FIXED_4);
  set.SetMainAmpl(50.0);
  set.SetFmax(1000.0 / 2.56);
  set.SetNsamp(8192);
  set.SetMainWidth(0.064);
  set.SetAddCmp(true);
  set.SetCmpType(static_cast<CWaveDefClassical::COMP_TYPE>(type));
  set.SetCmpNonSym(true);
  set.SetCmpPre(1.0);
  set.SetCmpPost(1.0);
  set.SetOptRatLevel(1.0);
  return set;
}

void BM_SetDefCompensated(benchmark::State& state) {
  RunWarm(state, &CWaveDef::SetDefClassical, Compensated(state.range(0)));
}
BENCHMARK(BM_SetDefCompensated)->ArgName("type")->DenseRange(1, 4)->Unit(benchmark::kMillisecond);

void BM_SetDefCompensatedFresh(benchmark::State& state) {
  RunFresh(state, &CWaveDef::SetDefClassical, Compensated(state.range(0)));
}
BENCHMARK(BM_SetDefCompensatedFresh)
    ->ArgName("type")
    ->DenseRange(1, 4)
    ->Unit(benchmark::kMillisecond);

void BM_SetDefMeasure(benchmark::State& state) {
  const common::CDataArrayFloatT<double> samples(static_cast<common::uint64>(state.range(0)));
  CWaveDef def = Settings();
  def.SetDefMeasure({}, samples);
  const bench::AllocationCounter allocations;
  for (auto _ : state) {
    def.SetDefMeasure({}, samples);
    benchmark::DoNotOptimize(def.GetWave().GetData());
  }
  allocations.Report(state);
  CountSamples(state, static_cast<double>(state.range(0)));
}
BENCHMARK(BM_SetDefMeasure)->Arg(1000000);

}  // namespace
