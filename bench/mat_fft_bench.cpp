// The planned transform beside FFTW's execute, and the single call that builds its plan.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cmath>
#include <memory>
#include <vector>

#include "common/numeric/mat_fft.h"

namespace {

using namespace qarv::common;

std::vector<double> Wave(uint64 n) {
  std::vector<double> wave(n);
  for (uint64 i = 0; i < n; ++i) wave[i] = std::sin(0.37 * static_cast<double>(i));
  return wave;
}

void Lengths(benchmark::internal::Benchmark* bench) {
  for (const int64_t n : {1 << 10, 1 << 11, 1 << 12, 1 << 13, 1 << 14, 1 << 15, 1 << 16, 1 << 20,
                          1000000, 1000, 2560, 10007, 65537}) {
    bench->Arg(n);
  }
}

void BM_FftPlanForward(benchmark::State& state) {
  const auto n = static_cast<uint64>(state.range(0));
  const FftPlan plan(n);
  const std::vector<double> wave = Wave(n);
  std::vector<double> work(plan.GetWorkSize());
  std::vector<double> re(n / 2 + 1);
  std::vector<double> im(n / 2 + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(plan.Forward(wave.data(), work.data(), re.data(), im.data()));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_FftPlanForward)->Apply(Lengths);

void BM_WaveRfft(benchmark::State& state) {
  const auto n = static_cast<uint64>(state.range(0));
  const std::vector<double> wave = Wave(n);
  std::vector<double> work(n);
  std::vector<double> re(n / 2 + 1);
  std::vector<double> im(n / 2 + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        CMatFFT::WaveRfft(wave.data(), work.data(), n, re.data(), im.data(), n / 2));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_WaveRfft)->Arg(1 << 12)->Arg(1 << 14)->Arg(1 << 16);

void BM_Ref_FftwExecute(benchmark::State& state) {
  const auto n = static_cast<uint64>(state.range(0));
  const std::unique_ptr<double, void (*)(void*)> wave(fftw_alloc_real(n), fftw_free);
  const std::unique_ptr<fftw_complex, void (*)(void*)> spectrum(fftw_alloc_complex(n / 2 + 1),
                                                                fftw_free);
  const fftw_plan plan =
      fftw_plan_dft_r2c_1d(static_cast<int>(n), wave.get(), spectrum.get(), FFTW_ESTIMATE);
  const std::vector<double> samples = Wave(n);
  std::copy(samples.begin(), samples.end(), wave.get());
  for (auto _ : state) {
    fftw_execute(plan);
    benchmark::ClobberMemory();
  }
  fftw_destroy_plan(plan);
}
BENCHMARK(BM_Ref_FftwExecute)->Apply(Lengths)->Arg(512);

}  // namespace
