// The elementary functions against MPFR, at special values, and with each instruction set.
#include "numeric/elementary.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "common/numeric/constants.h"
#include "exact.h"

namespace qarv::test {
namespace {

using namespace common::elementary;
using common::InstructionSet;
using common::kPi;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
constexpr double kBound = 0.501;  // [unit in the last place]

std::uint64_t Bits(double x) { return std::bit_cast<std::uint64_t>(x); }

/// Arguments of each range: QARV_ELEMENTARY_ARGUMENTS of them, else enough for a quick look.
int ArgumentsOfARange() {
  const char* const count = std::getenv("QARV_ELEMENTARY_ARGUMENTS");
  return count != nullptr ? std::atoi(count) : 100000;
}

using Block = void (*)(std::span<const double>, std::span<double>, InstructionSet);
struct BlockFunction {
  double (*one)(double);
  Block block;
};
constexpr std::array<BlockFunction, 3> kBlockFunctions{{{Sin, Sin}, {Cos, Cos}, {Exp, Exp}}};

/// What a block meets: ordinary, huge, tiny, subnormal and special arguments side by side.
std::vector<double> MixedArguments(std::size_t n, std::mt19937_64& random) {
  const std::vector<ElementaryFunction::Range> ranges{
      Uniform(-700.0, 700.0), Uniform(-1.0, 1.0),         AnySize(-1074, 1023),
      AnySize(20, 40),        Multiples(kPi / 2, 100000), Near(-745.0, -8, 4)};
  std::vector<double> x(n);
  for (double& v : x) {
    switch (random() % 40) {
      case 0:
        v = kInf;
        break;
      case 1:
        v = -kInf;
        break;
      case 2:
        v = random() % 2 == 0 ? kNan : -kNan;
        break;
      case 3:
        v = random() % 2 == 0 ? 0.0 : -0.0;
        break;
      default:
        v = ranges[random() % ranges.size()](random);
    }
  }
  return x;
}

class Elementary : public testing::TestWithParam<ElementaryFunction> {};

TEST_P(Elementary, IsWithinItsBoundOfTheExactValueInEveryRange) {
  ExactValue exact;
  const int count = ArgumentsOfARange();
  std::mt19937_64 random(2);
  for (std::size_t range = 0; range < GetParam().ranges.size(); ++range) {
    double worst = 0.0;
    double at = 0.0;
    for (int i = 0; i < count; ++i) {
      const double x = GetParam().ranges[range](random);
      const double error = exact.Error(GetParam().exact, x, GetParam().one(x));
      if (error > worst) {
        worst = error;
        at = x;
      }
    }
    EXPECT_LE(worst, kBound) << GetParam().name << " range " << range << " at " << std::hexfloat
                             << at;
  }
}

TEST_P(Elementary, IsWithinItsBoundAtTheArgumentsThatAreHardToRound) {
  std::ifstream file(QARV_TEST_DATA_DIR "/data/elementary_hard.csv");
  ASSERT_TRUE(file.is_open());
  ExactValue exact;
  int count = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string name, argument, value;
    std::getline(fields, name, ',');
    std::getline(fields, argument, ',');
    std::getline(fields, value, ',');
    if (name != GetParam().name) continue;
    ++count;
    const double x = std::strtod(argument.c_str(), nullptr);
    const double expected = std::strtod(value.c_str(), nullptr);
    const double y = GetParam().one(x);
    EXPECT_EQ(expected, exact.Value(GetParam().exact, x)) << line;
    EXPECT_LE(exact.Error(GetParam().exact, x, y), kBound) << line;
    EXPECT_LE(std::fabs(y - expected), std::fabs(std::nextafter(y, expected) - y)) << line;
  }
  EXPECT_EQ(400, count);
}

INSTANTIATE_TEST_SUITE_P(All, Elementary, testing::ValuesIn(ElementaryFunctions()),
                         [](const auto& each) { return each.param.name; });

TEST(ElementaryBlock, GivesWhatOneValueGivesWithEveryInstructionSetAndSize) {
  std::mt19937_64 random(3);
  for (const std::size_t n : {0u, 1u, 2u, 3u, 7u, 255u, 256u, 257u, 511u, 1000u, 20000u}) {
    const std::vector<double> x = MixedArguments(n, random);
    for (const auto& [one, block] : kBlockFunctions) {
      for (const InstructionSet set : common::UsableInstructionSets()) {
        std::vector<double> y(n, 7.0);
        block(x, y, set);
        std::vector<double> inPlace = x;
        block(inPlace, inPlace, set);
        for (std::size_t i = 0; i < n; ++i) {
          ASSERT_EQ(Bits(one(x[i])), Bits(y[i])) << std::hexfloat << x[i];
          ASSERT_EQ(Bits(y[i]), Bits(inPlace[i])) << std::hexfloat << x[i];
        }
      }
    }
  }
}

TEST(ElementarySpecial, ZerosKeepTheirSign) {
  for (const auto f : {Sin, Atan, Tan}) {
    EXPECT_EQ(Bits(0.0), Bits(f(0.0)));
    EXPECT_EQ(Bits(-0.0), Bits(f(-0.0)));
  }
  EXPECT_EQ(1.0, Cos(-0.0));
  EXPECT_EQ(1.0, Exp(-0.0));
  EXPECT_EQ(-kInf, Log(-0.0));
}

TEST(ElementarySpecial, ASubnormalIsItsOwnSineAndArcTangent) {
  for (const double x : {kSmallest, -kSmallest, 1e-310, -2.2e-308}) {
    EXPECT_EQ(x, Sin(x));
    EXPECT_EQ(x, Atan(x));
  }
}

TEST(ElementarySpecial, EveryNanIsTheSameOne) {
  for (const double x : {kNan, -kNan, std::bit_cast<double>(0x7ff0000000000001ull)}) {
    for (const auto f : {Sin, Cos, Exp, Log, Atan, Tan}) EXPECT_EQ(Bits(kNan), Bits(f(x)));
    EXPECT_EQ(Bits(kNan), Bits(Atan2(x, 1.0)));
    EXPECT_EQ(Bits(kNan), Bits(Atan2(1.0, x)));
  }
  for (const double x : {kInf, -kInf}) {
    EXPECT_EQ(Bits(kNan), Bits(Sin(x)));
    EXPECT_EQ(Bits(kNan), Bits(Cos(x)));
    EXPECT_EQ(Bits(kNan), Bits(Tan(x)));
  }
  for (const double x : {-kInf, -1.0, -kSmallest}) EXPECT_EQ(Bits(kNan), Bits(Log(x)));
}

TEST(ElementarySpecial, ExpOverflowsAndUnderflowsWhereItsValueDoes) {
  EXPECT_EQ(kInf, Exp(kInf));
  EXPECT_EQ(kInf, Exp(std::nextafter(709.782712893384, kInf)));
  EXPECT_LT(Exp(709.782712893384), kInf);
  EXPECT_EQ(0.0, Exp(-kInf));
  EXPECT_EQ(0.0, Exp(-745.2));
  EXPECT_EQ(kSmallest, Exp(-745.1));
  EXPECT_EQ(kInf, Exp(1e300));
  EXPECT_EQ(0.0, Exp(-1e300));
}

TEST(ElementarySpecial, LogAndAtanReachTheirLimits) {
  EXPECT_EQ(kInf, Log(kInf));
  EXPECT_EQ(0.0, Log(1.0));
  EXPECT_EQ(kPi / 2, Atan(kInf));
  EXPECT_EQ(-kPi / 2, Atan(-kInf));
  EXPECT_EQ(kPi / 2, Atan(1e300));
}

TEST(ElementarySpecial, TheAngleOfAPointIsThatOfTheCLibraryToTwoUnits) {
  const std::array values{0.0,   -0.0,   1.0,   -1.0,   3.0,       -2.5,  kInf,
                          -kInf, 1e-310, 1e300, -1e-20, kSmallest, -1e17, 0.1};
  for (const double y : values) {
    for (const double x : values) {
      const double expected = std::atan2(y, x);
      const double tolerance = 2.0 * std::fabs(std::nextafter(expected, kInf) - expected);
      EXPECT_NEAR(expected, Atan2(y, x), tolerance) << y << " " << x;
      EXPECT_EQ(std::signbit(expected), std::signbit(Atan2(y, x))) << y << " " << x;
    }
  }
}

TEST(ElementarySpecial, TheTangentIsExactToTwoUnits) {
  ExactValue exact;
  std::mt19937_64 random(4);
  const std::vector<ElementaryFunction> functions = ElementaryFunctions();
  for (const auto& range : functions.front().ranges) {
    for (int i = 0; i < 1000; ++i) {
      const double x = range(random);
      if (std::fabs(x) < 1e-300) continue;
      EXPECT_LE(exact.Error(mpfr_tan, x, Tan(x)), 2.0) << x;
    }
  }
}

TEST(InstructionSets, BeginWithTheBaselineAndEndWithTheBest) {
  const auto sets = common::UsableInstructionSets();
  ASSERT_FALSE(sets.empty());
  EXPECT_EQ(InstructionSet::Baseline, sets.front());
  EXPECT_EQ(common::BestInstructionSet(), sets.back());
}

}  // namespace
}  // namespace qarv::test
