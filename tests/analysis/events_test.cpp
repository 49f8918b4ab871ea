// Shocks and the quiet part of records that are made of known ones.
#include "analysis/events.h"

#include <gtest/gtest.h>

namespace qarv::test {
namespace {

using namespace analysis;

TEST(Events, FindsEveryShockWithItsPolarity) {
  std::vector<double> x(100);
  x[10] = 5;
  x[11] = 9;
  x[13] = -6;  // a rebound
  x[40] = -8;
  x[80] = 3;
  const auto shocks = FindShocks(x, 4.0, 5);
  ASSERT_EQ(shocks.size(), 2U);
  EXPECT_EQ(shocks[0].first, 10U);
  EXPECT_EQ(shocks[0].last, 13U);
  EXPECT_EQ(shocks[0].peak, 11U);
  EXPECT_EQ(shocks[0].value, 9.0);
  EXPECT_EQ(shocks[1].value, -8.0);
  EXPECT_EQ(FindShocks(x, 2.0, 5).size(), 3U);
  EXPECT_EQ(FindShocks(x, 4.0, 1).size(), 3U);
  EXPECT_EQ(FindShocks(x, 4.0, 27).size(), 1U);
  EXPECT_TRUE(FindShocks(x, 0.0, 5).empty());
  EXPECT_TRUE(FindShocks({}, 1.0, 5).empty());
}

TEST(Events, TheQuietPartIsTheLongerOneOfBothEnds) {
  std::vector<double> x(100, 0.5);
  x[0] = 0.75;
  x[1] = 0.25;
  x[60] = 10;
  const auto shocks = FindShocks(x, 4.0, 5);
  const QuietPart quiet = QuietOf(x, shocks, 10);
  EXPECT_EQ(quiet.first, 0U);
  EXPECT_EQ(quiet.count, 50U);
  EXPECT_EQ(quiet.mean, 0.5);
  EXPECT_EQ(quiet.noise, 0.25);
  x[60] = 0.5;
  x[20] = 10;
  const QuietPart behind = QuietOf(x, FindShocks(x, 4.0, 5), 10);
  EXPECT_EQ(behind.first, 31U);
  EXPECT_EQ(behind.count, 69U);
  EXPECT_EQ(QuietOf(x, FindShocks(x, 4.0, 5), 200).count, 0U);
}

TEST(Events, CountsEqualExtremesButNotTheRest) {
  EXPECT_EQ(EqualExtremes(std::vector<double>{0, 0, 0, 0, 1, 3, 3, 3, 1, 0, 0}), 3U);
  EXPECT_EQ(EqualExtremes(std::vector<double>{0, 0, 1, 3, 2, 3, -4, -4}), 2U);
  EXPECT_EQ(EqualExtremes(std::vector<double>{2, 2, 2}), 0U);
  EXPECT_EQ(EqualExtremes(std::vector<double>{0.4, 0.4, 0.4, 0.4, 1, 3, 1, 0.4, 0.4}), 1U);
  EXPECT_EQ(EqualExtremes({}), 0U);
}

}  // namespace
}  // namespace qarv::test
