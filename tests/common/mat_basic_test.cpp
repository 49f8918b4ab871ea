// Arithmetic on stretches of doubles.
#include "common/numeric/mat_basic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace qarv::common {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(MatBasic, ClearsAndZeroesOnlyTheStretch) {
  std::vector<double> x{1, 2, 3, 4};
  CMatBasic::ClrDouble(x.data() + 1, 1);
  EXPECT_EQ(x, (std::vector<double>{1, 0, 3, 4}));
  EXPECT_TRUE(CMatBasic::ZeroArr(x.data() + 2, 2));
  EXPECT_EQ(x, (std::vector<double>{1, 0, 0, 0}));
  CMatBasic::ClrDouble(nullptr, 5);
  CMatBasic::ClrDouble(x.data(), 0);
  EXPECT_EQ(x[0], 1);
}

TEST(MatBasic, NullOrEmptyIsFalse) {
  std::vector<double> x{1, 2};
  double low = 7;
  EXPECT_FALSE(CMatBasic::ZeroArr(nullptr, 1));
  EXPECT_FALSE(CMatBasic::ZeroArr(x.data(), 0));
  EXPECT_FALSE(CMatBasic::CopyArr(nullptr, x.data(), 1));
  EXPECT_FALSE(CMatBasic::CopyArr(x.data(), nullptr, 1));
  EXPECT_FALSE(CMatBasic::CopyArr(x.data(), x.data(), 0));
  EXPECT_FALSE(CMatBasic::MulArr(nullptr, 2, 1));
  EXPECT_FALSE(CMatBasic::MulArr(x.data(), 2, 0));
  EXPECT_FALSE(CMatBasic::GetMinMax(1, nullptr, 0, &low, nullptr));
  EXPECT_FALSE(CMatBasic::GetMinMax(0, x.data(), 0, &low, nullptr));
  EXPECT_EQ(low, 7);
  EXPECT_EQ(x, (std::vector<double>{1, 2}));
}

TEST(MatBasic, CopiesStretchesThatOverlap) {
  std::vector<double> x{1, 2, 3, 4};
  EXPECT_TRUE(CMatBasic::CopyArr(x.data() + 1, x.data(), 3));
  EXPECT_EQ(x, (std::vector<double>{1, 1, 2, 3}));
  EXPECT_TRUE(CMatBasic::CopyArr(x.data(), x.data() + 1, 3));
  EXPECT_EQ(x, (std::vector<double>{1, 2, 3, 3}));
}

TEST(MatBasic, MultipliesInPlace) {
  std::vector<double> x{1, -2, 0.5};
  EXPECT_TRUE(CMatBasic::MulArr(x.data(), -3, 2));
  EXPECT_EQ(x, (std::vector<double>{-3, 6, 0.5}));
}

TEST(MatBasic, MinMaxExaminesUpToTheExclusiveEnd) {
  const std::vector<double> x{9, 3, 5, 4, -9};
  double low = 0;
  double high = 0;
  EXPECT_TRUE(CMatBasic::GetMinMax(4, x.data(), 1, &low, &high));
  EXPECT_EQ(low, 3);
  EXPECT_EQ(high, 5);
  EXPECT_TRUE(CMatBasic::GetMinMax(5, x.data(), 0, nullptr, &high));
  EXPECT_TRUE(CMatBasic::GetMinMax(5, x.data(), 0, &low, nullptr));
  EXPECT_EQ(low, -9);
  EXPECT_EQ(high, 9);
  EXPECT_TRUE(CMatBasic::GetMinMax(5, x.data(), 0, nullptr, nullptr));
}

TEST(MatBasic, MinMaxOfAnEmptyRangeIsFalse) {
  const std::vector<double> x{1, 2};
  double low = 7;
  EXPECT_FALSE(CMatBasic::GetMinMax(2, x.data(), 2, &low, nullptr));
  EXPECT_FALSE(CMatBasic::GetMinMax(1, x.data(), 2, &low, nullptr));
  EXPECT_FALSE(CMatBasic::GetMinMax(2, x.data(), ~uint64{0}, &low, nullptr));
  EXPECT_EQ(low, 7);
}

TEST(MatBasic, MinMaxPassesOverNaN) {
  double low = 7;
  double high = 7;
  const std::vector<double> some{kNaN, 2, kNaN, -1, kNaN};
  EXPECT_TRUE(CMatBasic::GetMinMax(5, some.data(), 0, &low, &high));
  EXPECT_EQ(low, -1);
  EXPECT_EQ(high, 2);
  const std::vector<double> none{kNaN, kNaN};
  EXPECT_FALSE(CMatBasic::GetMinMax(2, none.data(), 0, &low, &high)) << "no number to examine";
  EXPECT_EQ(low, -1);
}

}  // namespace
}  // namespace qarv::common
