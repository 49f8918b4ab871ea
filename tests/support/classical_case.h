// Classical definitions of round numbers for tests, and what comes of them.
#pragma once

#include <optional>

#include "classical/classical_pipeline.h"
#include "expect_wave.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::test {

/// A pulse of 40 samples and amplitude 10 in the middle of a frame of 128, taken at 1 ms: samples
/// 44 to 84.
inline wave_def::CWaveDefClassical ClassicalSet(wave_def::wave_def_sub::WAVE_KIND shape,
                                                wave_def::CWaveDefClassical::TOL_KIND kind) {
  wave_def::CWaveDefClassical set;
  set.SetWaveKind(shape);
  set.SetMainAmpl(10);
  set.SetMainWidth(0.04);
  set.SetFmax(1000 / 2.56);
  set.SetNsamp(128);
  set.SetTolKind(kind);
  return set;
}
constexpr std::size_t kStart = 44;
constexpr std::size_t kCentre = 64;
constexpr std::size_t kEnd = 84;

struct ClassicalWave {
  Wave wave, upper, lower;
};

/// The generated waveform and bands; nothing if the definition is refused.
inline std::optional<ClassicalWave> Generate(const wave_def::CWaveDefClassical& set) {
  wave_def::CWaveDefClassical params(set);
  Samples wave;
  Samples upper;
  Samples lower;
  if (!wave_def::GenerateClassical(params, 0.0, &wave, &upper, &lower, false)) return std::nullopt;
  return ClassicalWave{
      {wave.begin(), wave.end()}, {upper.begin(), upper.end()}, {lower.begin(), lower.end()}};
}

/// Expects first .. last to be a constant.
inline void ExpectLevel(const Wave& band, std::size_t first, std::size_t last, double level) {
  for (std::size_t i = first; i <= last; ++i) EXPECT_NEAR(band[i], level, 1e-12) << i;
}

/// Expects first .. last to be a straight line.
inline void ExpectLine(const Wave& band, std::size_t first, double from, std::size_t last,
                       double to) {
  for (std::size_t i = first; i <= last; ++i) {
    const double part = static_cast<double>(i - first) / static_cast<double>(last - first);
    EXPECT_NEAR(band[i], from + part * (to - from), 1e-12) << i;
  }
}

/// Expects lower <= wave <= upper everywhere.
inline void ExpectEnclosed(const ClassicalWave& g) {
  for (std::size_t i = 0; i < g.wave.size(); ++i) {
    EXPECT_LE(g.wave[i], g.upper[i]) << i;
    EXPECT_GE(g.wave[i], g.lower[i]) << i;
  }
}

}  // namespace qarv::test
