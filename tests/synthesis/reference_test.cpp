// The reference requirements: what a synthesis has to reach for them, held in one place.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "assess/requirement.h"
#include "assess/synthesis.h"
#include "temp_folder.h"

namespace qarv::synthesis {
namespace {

/// By name.
std::map<std::string, assess::Requirement> References() {
  std::map<std::string, assess::Requirement> out;
  for (const auto& entry :
       std::filesystem::directory_iterator(QARV_TEST_DATA_DIR "/data/requirements")) {
    out[entry.path().stem().string()] =
        assess::RequirementFromJson(test::ReadText(entry.path().string()));
  }
  return out;
}

/// The figures of a shape, over what has no limits and is no narrow peak [dB].
struct Figures {
  SrsShape shape;
  double medianOnGrid, worstOnGrid, medianBetween, mostBetween, worstBetween;
};
// mostBetween is that of nine in ten.
// clang-format off
constexpr Figures kFigures[] = {
  // shape           on: median  worst   between: median  most  worst
  {SrsShape::Sweep,      0.15,   0.25,            0.20,   0.30,  0.40},
  {SrsShape::Shock,      0.25,   0.60,            0.30,   0.60,  0.80},
};
// clang-format on

class EachReference : public testing::TestWithParam<Figures> {};

TEST_P(EachReference, AreAllMetAsCloselyAsTheTableSays) {
  const Figures& figures = GetParam();
  std::vector<double> onGrid, between;
  const auto references = References();
  ASSERT_EQ(references.size(), 16U);
  for (const auto& [name, requirement] : references) {
    SrsSettings settings = assess::SettingsFor(requirement);
    settings.shape = figures.shape;
    const SrsResult result = SynthesizeSrs(requirement.spectrum, settings);
    EXPECT_EQ(result.failure, SrsFailure::None)
        << name << ": " << assess::FailureText(requirement, settings, result);
    // What the figures are of: the definition as it is written.
    const auto def = definition::Generate(
        definition::FromJson(definition::ToJson(assess::DefinitionOf(requirement, result))));
    const SrsComparison found =
        CompareSrs(requirement.spectrum, definition::SpanOf(def.GetWave()), result.fsamp);
    EXPECT_EQ(found.between.worst, result.comparison.between.worst) << name;
    EXPECT_TRUE(found.Meets(requirement.spectrum)) << name;
    EXPECT_LE(std::fabs(result.motion.residualVelocity), 1e-12 * result.motion.peakVelocity);
    EXPECT_LE(std::fabs(result.motion.residualDisplacement),
              1e-10 * result.motion.peakDisplacement);
    if (settings.limits != MotionLimits{}) {
      EXPECT_LE(result.peak, settings.limits.acceleration) << name;
      EXPECT_LE(result.motion.peakVelocity, settings.limits.velocity) << name;
      EXPECT_LE(result.motion.peakDisplacement, settings.limits.displacement) << name;
    } else if (name == "narrow_peak") {
      EXPECT_LE(std::fabs(found.between.worst), 2.9);
    } else {
      onGrid.push_back(std::fabs(found.onGrid.worst));
      between.push_back(std::fabs(found.between.worst));
    }
  }
  ASSERT_EQ(between.size(), 13U);
  std::sort(onGrid.begin(), onGrid.end());
  std::sort(between.begin(), between.end());
  EXPECT_LE(onGrid[6], figures.medianOnGrid);
  EXPECT_LE(onGrid.back(), figures.worstOnGrid);
  EXPECT_LE(between[6], figures.medianBetween);
  EXPECT_LE(between[11], figures.mostBetween);
  EXPECT_LE(between.back(), figures.worstBetween);
}

INSTANTIATE_TEST_SUITE_P(Shapes, EachReference, testing::ValuesIn(kFigures));

// ---- Effective durations -----------------------------------------------------------------------

/// A requirement of a shock without limits, and durations half as long again as those of the
/// waveform that nothing is asked of.
struct Duration {
  const char* name;
  double Te, TE;  // [s]
};
// clang-format off
constexpr Duration kDurations[] = {
  {"half_sine_50g_11ms", 0.225,   0.64},
  {"sawtooth_20g_11ms",  0.445,   0.62},
  {"functional_40g",     0.116,   0.16},
  {"crash_75g_sixth",    0.116,   0.207},
  {"pyro_5000g",         0.00215, 0.0137},
  {"ship_three_slopes",  0.0465,  0.337},
  {"clamp_band",         0.00236, 0.0145},
  {"bench_handling",     0.077,   0.107},
};
// clang-format on

/// [s] from the first to the last sample of at least a third of the peak.
double DurationAboveAThird(std::span<const double> wave, double fsamp) {
  double peak = 0.0;
  for (const double v : wave) peak = std::max(peak, std::fabs(v));
  const auto above = [&](double v) { return std::fabs(v) >= peak / 3.0; };
  const auto first = std::find_if(wave.begin(), wave.end(), above);
  const auto last = std::find_if(wave.rbegin(), wave.rend(), above).base() - 1;
  return static_cast<double>(last - first) / fsamp;
}

class EachDuration : public testing::TestWithParam<Duration> {};

TEST_P(EachDuration, IsThereWithinAFifthAndSoIsTheSpectrum) {
  const Duration& required = GetParam();
  const auto references = References();
  const auto it = std::find_if(references.begin(), references.end(),
                               [&](const auto& named) { return named.first == required.name; });
  ASSERT_NE(it, references.end());
  for (const bool energy : {false, true}) {
    assess::Requirement requirement = it->second;
    (energy ? requirement.spectrum.durations.TE : requirement.spectrum.durations.Te) =
        energy ? required.TE : required.Te;
    const SrsSettings settings = assess::SettingsFor(requirement);
    const SrsResult result = SynthesizeSrs(requirement.spectrum, settings);
    EXPECT_EQ(result.failure, SrsFailure::None)
        << assess::FailureText(requirement, settings, result);
    const auto def = definition::Generate(assess::DefinitionOf(requirement, result));
    const auto wave = definition::SpanOf(def.GetWave());
    const SrsComparison found = CompareSrs(it->second.spectrum, wave, result.fsamp);
    EXPECT_TRUE(found.Meets(it->second.spectrum)) << "the spectrum alone";
    if (energy) {
      EXPECT_NEAR(found.durations.TE / required.TE, 1.0, 0.2);
    } else {
      EXPECT_NEAR(DurationAboveAThird(wave, result.fsamp) / required.Te, 1.0, 0.2);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Shocks, EachDuration, testing::ValuesIn(kDurations),
                         [](const auto& of) { return std::string(of.param.name); });

}  // namespace
}  // namespace qarv::synthesis
