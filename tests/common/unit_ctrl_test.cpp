// Units: their printed form, both ways, and their record.
#include "common/unit/unit_ctrl.h"

#include <gtest/gtest.h>

#include <random>

#include "value_semantics.h"

namespace qarv::common {
namespace {

using Unit = CUnitCtrl;
constexpr auto kNone = Unit::UNIT_CODE_NONE;
constexpr auto kMul = Unit::UNIT_CALC_MUL;
constexpr auto kDiv = Unit::UNIT_CALC_DIV;

Unit MetrePerSecondSquared() {
  return {
      Unit::UNIT_CODE_M,     kMul, Unit::UNIT_CODE_S, kDiv, Unit::UNIT_CODE_S, kDiv, kNone, kMul,
      Unit::UNIT_SUFFIX_NONE};
}

TEST(UnitCtrl, IsAValueWithARecord) {
  test::CheckValueOperations(MetrePerSecondSquared());
  test::CheckRecord(MetrePerSecondSquared());
}

TEST(UnitCtrl, DefaultsToNoUnit) {
  const Unit made(static_cast<Unit::UNIT_CODE>(1), static_cast<Unit::UNIT_CALC>(1),
                  static_cast<Unit::UNIT_CODE>(1), static_cast<Unit::UNIT_CALC>(1),
                  static_cast<Unit::UNIT_CODE>(1), static_cast<Unit::UNIT_CALC>(1),
                  static_cast<Unit::UNIT_CODE>(1), static_cast<Unit::UNIT_CALC>(1),
                  static_cast<Unit::UNIT_SUFFIX>(0));
  EXPECT_TRUE(made == Unit());
  EXPECT_EQ(Unit().GetText(), "");
}

TEST(UnitCtrl, IsUnequalWhenAnyFieldAloneDiffers) {
  using Code = Unit::UNIT_CODE;
  using Calc = Unit::UNIT_CALC;
  for (int field = 0; field < 9; ++field) {
    std::array<int, 9> v{1, 1, 1, 1, 1, 1, 1, 1, 0};
    ++v[static_cast<std::size_t>(field)];
    const Unit changed(static_cast<Code>(v[0]), static_cast<Calc>(v[1]), static_cast<Code>(v[2]),
                       static_cast<Calc>(v[3]), static_cast<Code>(v[4]), static_cast<Calc>(v[5]),
                       static_cast<Code>(v[6]), static_cast<Calc>(v[7]),
                       static_cast<Unit::UNIT_SUFFIX>(v[8]));
    EXPECT_TRUE(changed != Unit()) << field;
    Unit back;
    EXPECT_TRUE(test::Load(test::RecordOf(changed), &back));
    EXPECT_TRUE(back == changed) << field;
  }
}

TEST(UnitCtrl, PrintsTheFormsOfTheField) {
  EXPECT_EQ(MetrePerSecondSquared().GetText(), "m/s^2");
  const auto text = [](Unit::UNIT_CODE a, Unit::UNIT_CALC ca, Unit::UNIT_CODE b, Unit::UNIT_CALC cb,
                       Unit::UNIT_CODE c, Unit::UNIT_CALC cc,
                       Unit::UNIT_SUFFIX suffix = Unit::UNIT_SUFFIX_NONE) {
    return Unit(a, ca, b, cb, c, cc, kNone, kMul, suffix).GetText();
  };
  EXPECT_EQ(text(Unit::UNIT_CODE_G, kMul, kNone, kMul, kNone, kMul), "g");
  EXPECT_EQ(text(Unit::UNIT_CODE_S, kDiv, kNone, kMul, kNone, kMul), "1/s");
  EXPECT_EQ(text(Unit::UNIT_CODE_N, kMul, Unit::UNIT_CODE_M, kMul, kNone, kMul), "N*m");
  EXPECT_EQ(text(Unit::UNIT_CODE_KG, kMul, Unit::UNIT_CODE_M, kDiv, Unit::UNIT_CODE_S, kDiv),
            "kg/(m*s)");
  EXPECT_EQ(
      text(Unit::UNIT_CODE_MM, kMul, kNone, kMul, kNone, kMul, Unit::UNIT_SUFFIX_PEAK_TO_PEAK),
      "mm p-p");
}

TEST(UnitCtrl, PrintsAQuestionMarkForWhatItDoesNotKnow) {
  EXPECT_EQ(Unit(static_cast<Unit::UNIT_CODE>(999), kMul, kNone, kMul, kNone, kMul, kNone, kMul,
                 static_cast<Unit::UNIT_SUFFIX>(9))
                .GetText(),
            "? ?");
}

TEST(UnitCtrl, ReadsWhatItPrints) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 3000; ++round) {
    const auto code = [&] { return static_cast<Unit::UNIT_CODE>(1 + random() % 34); };
    const auto calc = [&] { return random() % 2 == 0 ? kMul : kDiv; };
    const Unit unit(code(), calc(), code(), calc(), code(), calc(), code(), calc(),
                    static_cast<Unit::UNIT_SUFFIX>(random() % 4));
    Unit back;
    ASSERT_TRUE(Unit::FromText(unit.GetText(), &back)) << unit.GetText();
    EXPECT_EQ(back.GetText(), unit.GetText());
    Unit again;
    ASSERT_TRUE(Unit::FromText(back.GetText(), &again));
    EXPECT_TRUE(again == back) << back.GetText();
  }
}

TEST(UnitCtrl, RefusesOtherTextsAndKeepsTheUnit) {
  Unit unit = MetrePerSecondSquared();
  for (const char* const text : {"furlong", "m/", "/s", "m//s", "m*", "m^1", "m^5", "m^2^2",
                                 "m/s/s", "m^3*s^2", " m", "m ", "m^", "1", "(m)", "M"}) {
    EXPECT_FALSE(Unit::FromText(text, &unit)) << text;
    EXPECT_TRUE(unit == MetrePerSecondSquared());
  }
  EXPECT_FALSE(Unit::FromText("m", nullptr));
  EXPECT_TRUE(Unit::FromText("", &unit));
  EXPECT_TRUE(unit == Unit());
}

TEST(UnitCtrl, FactorsOutsideTheFourAreNone) {
  const Unit unit = MetrePerSecondSquared();
  EXPECT_EQ(unit.GetCode(0), Unit::UNIT_CODE_M);
  EXPECT_EQ(unit.GetCalc(2), kDiv);
  for (const int i : {-1, 4, 1000}) {
    EXPECT_EQ(unit.GetCode(i), kNone);
    EXPECT_EQ(unit.GetCalc(i), kMul);
  }
}

}  // namespace
}  // namespace qarv::common
