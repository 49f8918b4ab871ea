// The fit's gradients, against differences.
#include "fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "layout.h"
#include "random_values.h"
#include "requirements.h"

namespace qarv::synthesis {
namespace {

using namespace com_def::comdefconst;

/// Whether one peak leads the others of a line by so much that the gradient is that of it alone.
bool IsClear(const std::vector<analysis::SrsPeak>& peaks) {
  std::vector<double> sizes;
  for (const auto& p : peaks) sizes.push_back(std::fabs(p.value));
  std::sort(sizes.rbegin(), sizes.rend());
  return sizes.size() == 1 || sizes[1] < 0.9 * sizes[0];
}

class FitOf : public testing::TestWithParam<Method> {};

TEST_P(FitOf, HasGradientsThatAreThoseOfDifferences) {
  const test::NamedRequirement named = test::Requirements()[0];
  Model model = MakeLayout(named.requirement, GetParam(), named.fsamp, named.nsamp,
                           {.order = Order::HighFirst, .halves = 11});
  const Summation sum(model);
  const auto lines = RequiredLines(named.requirement, 12.0);
  const std::function<bool(double)> none;
  synthesis::Run run(none, 1.0);
  FitGoal goal = MatchGoal(lines.size());
  Fit fit(&run, named.requirement, &model, &sum, lines, goal);
  fit.Rescale(2);
  const FitState before = fit.Current();
  const std::vector<FitRow> rows = fit.Rows();
  ASSERT_GE(rows.size(), lines.size());
  test::RandomValues random(4);
  int compared = 0;
  for (int n = 0; n < 60; ++n) {
    const std::size_t j = random.Below(static_cast<unsigned int>(model.elements.size()));
    constexpr double kStep = 1e-5;
    std::vector<double> amplitudes = before.amplitudes;
    amplitudes[j] += kStep * fit.StepOf(j);
    const FitState after = fit.Measure(amplitudes);
    double largest = 0.0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      largest = std::max(largest, std::fabs(rows[i].gradient[j]));
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (!IsClear(before.peaks[i])) continue;
      const double difference = (after.h[i] - before.h[i]) / kStep;
      // The start of the compensation, which moves with the amplitudes, is left out of the
      // gradient.
      const double tolerance = GetParam() == SYNC_WAVE_DAMPED_SINE ? 0.05 : 0.01;
      EXPECT_NEAR(rows[i].gradient[j], difference, tolerance * largest)
          << lines[i].frequency << " Hz, element " << j;
      ++compared;
    }
  }
  EXPECT_GE(compared, 50);
}

INSTANTIATE_TEST_SUITE_P(Methods, FitOf,
                         testing::Values(SYNC_WAVE_DAMPED_SINE, SYNC_WAVE_DAMPED_SINE_MODIFIED,
                                         SYNC_WAVE_WAVELET));

TEST(Fit, HasLimitRowsWhoseGradientsAreThoseOfDifferences) {
  const test::NamedRequirement named = test::Requirements()[0];
  Model model = MakeLayout(named.requirement, SYNC_WAVE_WAVELET, named.fsamp, named.nsamp, {});
  const Summation sum(model);
  const auto lines = RequiredLines(named.requirement, 12.0);
  const std::function<bool(double)> none;
  synthesis::Run run(none, 1.0);
  FitGoal goal = MatchGoal(lines.size());
  goal.limits = {1e-9, 1e-9, 1e-9};
  Fit fit(&run, named.requirement, &model, &sum, lines, goal);
  const FitState before = fit.Current();
  // One limit after the other, half of the peak.
  for (std::size_t kind = 0; kind < 3; ++kind) {
    MotionLimits limits;
    (kind == 0   ? limits.acceleration
     : kind == 1 ? limits.velocity
                 : limits.displacement) = 0.5 * before.motionPeaks[kind];
    goal.limits = limits;
    fit.Restart(before.amplitudes, goal);
    EXPECT_NEAR(fit.Current().overLimit, 6.0206, 1e-3);
    const std::vector<FitRow> rows = fit.Rows();
    std::size_t worst = lines.size();
    ASSERT_GT(rows.size(), lines.size()) << kind;
    for (std::size_t i = lines.size(); i < rows.size(); ++i) {
      if (rows[i].h > rows[worst].h) worst = i;
    }
    double largest = 0.0;
    for (const double g : rows[worst].gradient) largest = std::max(largest, std::fabs(g));
    for (std::size_t j = 0; j < model.elements.size(); j += 7) {
      constexpr double kStep = 1e-6;
      std::vector<double> amplitudes = before.amplitudes;
      amplitudes[j] += kStep * fit.StepOf(j);
      const FitState after = fit.Measure(amplitudes);
      const double difference = 3.0 * (after.overLimit - fit.Current().overLimit) / kStep;
      EXPECT_NEAR(rows[worst].gradient[j], difference, 0.02 * largest) << kind << ", " << j;
    }
  }
}

}  // namespace
}  // namespace qarv::synthesis
