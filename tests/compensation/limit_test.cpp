// How close the compensation comes to the physical limit, over the reference cases: hundreds of
// definitions of long frames, for optimised builds.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "compensation_cases.h"

namespace qarv::wave_def::compensation {
namespace {

using test::Compensate;
using test::CompensationCase;
using test::Quantile;
using test::StrokeResult;
using Def = CWaveDefClassical;

const std::vector<CompensationCase>& Cases() {
  static const auto cases =
      test::ReadCompensationCases(QARV_TEST_DATA_DIR "/data/compensation_cases.csv");
  return cases;
}

struct Goal {
  int type;
  double optRatLevel;
  bool nonSymmetric;
  int successes;
  double nominalMedian, nominal90;  // stroke over the limit with the nominal pulse
  double shapeMedian, shape90;      // and over that with a pulse of its shape
};

TEST(Compensation, ComesCloseToThePhysicalLimit) {
  ASSERT_EQ(Cases().size(), 120U);
  constexpr double kAny = 1e9;
  const Goal goals[] = {
      {1, 0, true, 95, 1.85, 3.9, kAny, kAny},     {1, 0, false, 79, 1.22, 3.5, kAny, kAny},
      {2, 0, true, 97, 1.22, 1.53, kAny, kAny},    {2, 0, false, 81, 1.20, 1.51, kAny, kAny},
      {3, 0, true, 105, 1.13, 1.72, kAny, kAny},   {3, 0, false, 93, 1.13, 1.54, kAny, kAny},
      {4, 0, true, 116, 1.12, 1.20, kAny, kAny},   {4, 0, false, 106, 1.10, 1.24, kAny, kAny},
      {4, 0.5, true, 116, 0.83, 0.94, kAny, kAny}, {4, 0.5, false, 108, 0.82, 0.98, kAny, kAny},
      {4, 1, true, 116, 0.62, 0.74, 1.18, 1.30},   {4, 1, false, 111, 0.62, 0.77, 1.21, 1.38},
  };
  for (const Goal& goal : goals) {
    SCOPED_TRACE(std::to_string(goal.type) + (goal.nonSymmetric ? " free " : " symmetric ") +
                 std::to_string(goal.optRatLevel));
    int done = 0;
    std::vector<double> nominal;
    std::vector<double> shape;
    std::vector<double> everydayShape;
    for (const CompensationCase& c : Cases()) {
      const StrokeResult result =
          Compensate(c.Definition(goal.type, goal.nonSymmetric, goal.optRatLevel));
      if (c.IsEveryday()) {
        EXPECT_TRUE(result.done) << c.At("seed");
      }
      if (!result.done) continue;
      ++done;
      const double leastNominal = c.LeastStroke("nominal", goal.nonSymmetric);
      const double leastShape = c.LeastStroke("shape", goal.nonSymmetric);
      if (std::isfinite(leastNominal)) nominal.push_back(result.stroke / leastNominal);
      if (std::isfinite(leastShape)) shape.push_back(result.stroke / leastShape);
      if (std::isfinite(leastShape) && c.IsEveryday())
        everydayShape.push_back(result.stroke / leastShape);
    }
    EXPECT_GE(done, goal.successes);
    EXPECT_LE(Quantile(nominal, 0.5), goal.nominalMedian);
    EXPECT_LE(Quantile(nominal, 0.9), goal.nominal90);
    EXPECT_LE(Quantile(shape, 0.5), goal.shapeMedian);
    EXPECT_LE(Quantile(shape, 0.9), goal.shape90);
    if (goal.optRatLevel == 1) {
      EXPECT_LE(Quantile(everydayShape, 0.5), goal.nonSymmetric ? 1.15 : 1.18);
    }
  }
}

TEST(Compensation, OptRatLevelIsTheShareOfTheToleranceThatIsSpentOnTheStroke) {
  constexpr std::array kLevels{0.0, 0.25, 0.5, 0.75, 1.0};
  for (const bool nonSymmetric : {true, false}) {
    SCOPED_TRACE(nonSymmetric ? "free" : "symmetric");
    std::array<std::vector<double>, kLevels.size()>
        strokes;  // over the limit with the nominal pulse
    std::vector<double> lossAtNone;
    int halved = 0;
    for (const CompensationCase& c : Cases()) {
      SCOPED_TRACE(c.At("seed"));
      const double least = c.LeastStroke("nominal", nonSymmetric);
      const StrokeResult nominal = Compensate(c.NominalDefinition());
      std::array<double, kLevels.size()> losses{};
      std::array<bool, kLevels.size()> done{};
      for (std::size_t i = 0; i < kLevels.size(); ++i) {
        const StrokeResult result = Compensate(c.Definition(4, nonSymmetric, kLevels[i]));
        done[i] = result.done;
        if (std::isfinite(least)) {
          EXPECT_TRUE(result.done) << kLevels[i];
        }
        if (!result.done) continue;
        losses[i] = test::VelocityLoss(nominal, result);
        if (std::isfinite(least)) strokes[i].push_back(result.stroke / least);
      }
      if (done[0]) lossAtNone.push_back(std::fabs(losses[0]));
      // No plan spends more than is asked for, in however crowded a frame.
      EXPECT_LE(losses[0], 0.02);
      // Of bands without width on the pulse there is nothing to spend.
      if (!done[2] || !done[4] || losses[4] < 0.001) continue;
      ++halved;
      EXPECT_GE(losses[2], 0.35 * losses[4]);
      EXPECT_LE(losses[2], 0.65 * losses[4]);
    }
    EXPECT_LE(Quantile(lossAtNone, 0.5), 0.01);
    EXPECT_LE(Quantile(lossAtNone, 0.9), 0.02);
    EXPECT_GE(halved, 100);
    for (std::size_t i = 0; i + 1 < kLevels.size(); ++i) {
      const double saved = Quantile(strokes[i], 0.5) - Quantile(strokes[i + 1], 0.5);
      EXPECT_GE(saved, 0.09) << kLevels[i];
      EXPECT_LE(saved, 0.17) << kLevels[i];
    }
  }
}

TEST(Compensation, TheOptimisedTypeSucceedsWhereverThePulseFitsAndKeepsToItsSide) {
  int feasible = 0;
  int done = 0;
  int steered = 0;
  int onSide = 0;
  for (const bool nonSymmetric : {true, false}) {
    std::vector<double> overFree;
    for (const CompensationCase& c : Cases()) {
      const Def set = c.Definition(4, nonSymmetric, 1.0);
      const StrokeResult result = Compensate(set);
      if (std::isfinite(c.LeastStroke("nominal", nonSymmetric))) {
        ++feasible;
        done += result.done;
      }
      if (!result.done) continue;
      const double least = c.LeastStroke("free", nonSymmetric);
      if (std::isfinite(least)) overFree.push_back(result.stroke / least);
      const int kind = set.GetTolKind();
      const int base = kind == Def::TOL_SPECIFY ? set.GetDefTolSpecify().GetBaseStandard() : 0;
      if (kind == Def::TOL_FIXED_5 || kind == Def::TOL_FIXED_7 || base == 2 || base == 5) {
        ++steered;
        onSide += result.up >= result.swing - result.up;
      }
    }
    EXPECT_LE(Quantile(overFree, 0.5), nonSymmetric ? 1.22 : 1.26);
  }
  EXPECT_EQ(done, feasible);
  EXPECT_GE(steered, 50);
  EXPECT_GE(onSide, steered * 97 / 100);
}

TEST(Compensation, TheOptimisedTypeNeedsLessStrokeThanTheDrawnOne) {
  std::vector<double> kept;   // of the optimised type at OptRatLevel 0 over the flat cosine
  std::vector<double> spent;  // of the optimised type at OptRatLevel 1 over the flat cosine
  int monotonic = 0;
  int compared = 0;
  int centred = 0;
  int counted = 0;
  int unshifted = 0;
  int results = 0;
  for (const CompensationCase& c : Cases()) {
    for (const bool nonSymmetric : {true, false}) {
      const StrokeResult drawn = Compensate(c.Definition(3, nonSymmetric, 0));
      std::vector<StrokeResult> optimised;
      for (const double level : {0.0, 0.5, 1.0})
        optimised.push_back(Compensate(c.Definition(4, nonSymmetric, level)));
      EXPECT_GE(optimised[0].done, drawn.done) << c.At("seed");
      if (drawn.done && optimised[0].done) {
        EXPECT_LE(optimised[0].stroke, 1.18 * drawn.stroke) << c.At("seed");
        kept.push_back(optimised[0].stroke / drawn.stroke);
      }
      if (drawn.done && optimised[2].done) {
        EXPECT_LE(optimised[2].stroke, drawn.stroke) << c.At("seed");
        spent.push_back(optimised[2].stroke / drawn.stroke);
      }
      for (std::size_t i = 0; i + 1 < optimised.size(); ++i) {
        if (!optimised[i].done || !optimised[i + 1].done) continue;
        ++compared;
        monotonic += optimised[i + 1].stroke <= 1.01 * optimised[i].stroke;
      }
      for (const StrokeResult* result :
           std::vector<const StrokeResult*>{&drawn, &optimised[0], &optimised[1], &optimised[2]}) {
        if (!result->done) continue;
        ++results;
        unshifted += result->params.GetWaveShift() == 0;
        if (!c.IsEveryday()) continue;
        ++counted;
        centred += result->stroke <= 0.55 * result->swing;
      }
    }
  }
  EXPECT_LE(Quantile(kept, 0.5), 1.0);
  EXPECT_LE(Quantile(spent, 0.5), 0.56);
  EXPECT_GE(monotonic, compared * 95 / 100);
  EXPECT_GE(centred, counted * 95 / 100);
  EXPECT_GE(unshifted, results * 88 / 100);
}

}  // namespace
}  // namespace qarv::wave_def::compensation
