// The definition object: its states, its bands, and the place of the main pulse.
#include "wave_def/wave_def.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "expect_undefined.h"
#include "value_semantics.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using common::uint64;
using test::ExpectUndefined;
using Samples = common::CDataArrayFloatT<double>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

CWaveDefSingle Single(unsigned int n) {
  CWaveDefSingle def;
  def.SetPeriod(0.01);
  def.SetPeakLevel(2.0);
  def.SetEdgeTime(0.005);
  def.SetNsamp(n);
  return def;
}

CWaveDef Defined() {
  CWaveDef def;
  def.SetFsamp(1000.0);
  def.SetTolUpperRat(0.25);
  def.SetTolLowerRat(-0.25);
  EXPECT_TRUE(def.SetDefSingle(Single(100)));
  return def;
}

std::vector<double> Values(const Samples& samples) { return {samples.begin(), samples.end()}; }

/// A definition whose protected operations are reachable.
struct Opened : CWaveDef {
  using CWaveDef::LclCalcTolData;
  using CWaveDef::LelWaveTypeClear;
};

// ---- States ------------------------------------------------------------------------------------

TEST(WaveDef, FreshIsUndefinedWithEverySettingZero) {
  const CWaveDef def;
  ExpectUndefined(def);
  EXPECT_EQ(def.GetNsamp(), 0U);
  EXPECT_EQ(def.GetWave().GetSize(), 0U);
  EXPECT_FALSE(def.GetLongWave());
  EXPECT_FALSE(def.GetAutoFsamp());
  EXPECT_EQ(def.GetMaxNsamp(), 0U);
  EXPECT_EQ(def.GetFsamp(), 0.0);
  EXPECT_EQ(def.GetTolUpperRat(), 0.0);
  EXPECT_EQ(def.GetTolLowerRat(), 0.0);
  EXPECT_TRUE(def.GetUnitAmpl() == common::CUnitCtrl{});
  CWaveDef cleared = Defined();
  cleared.SetLongWave(true);
  cleared.Clear();
  EXPECT_TRUE(cleared == def);
}

TEST(WaveDef, KeepsItsSettingsThroughADefinition) {
  CWaveDef def;
  def.SetLongWave(true);
  def.SetAutoFsamp(true);
  def.SetMaxNsamp(12345);
  def.SetFsamp(1000.0);
  def.SetTolUpperRat(0.5);
  common::CUnitCtrl g;
  ASSERT_TRUE(common::CUnitCtrl::FromText("g", &g));
  def.SetUnitAmpl(g);
  ASSERT_TRUE(def.SetDefSingle(Single(10)));
  EXPECT_FALSE(def.SetDefSingle(Single(0)));
  EXPECT_TRUE(def.GetLongWave());
  EXPECT_TRUE(def.GetAutoFsamp());
  EXPECT_EQ(def.GetMaxNsamp(), 12345U);
  EXPECT_EQ(def.GetFsamp(), 1000.0);
  EXPECT_EQ(def.GetTolUpperRat(), 0.5);
  EXPECT_TRUE(def.GetUnitAmpl() == g);
}

TEST(WaveDef, ADefinitionReplacesTheOneBeforeEntirely) {
  CWaveDef def = Defined();
  EXPECT_TRUE(def.GetDefSingle() == Single(100));
  CWaveDefMeasure measure;
  measure.SetMeasPath("shock.csv");
  ASSERT_TRUE(def.SetDefMeasure(measure, {1.0, 2.0}));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_MEASURE);
  EXPECT_TRUE(def.GetDefSingle() == CWaveDefSingle{});
  EXPECT_TRUE(def.GetDefMeasure() == measure);
  EXPECT_EQ(def.GetNsamp(), 2U);
  ASSERT_TRUE(def.SetDefSingle(Single(7)));
  EXPECT_TRUE(def.GetDefMeasure() == CWaveDefMeasure{});
  EXPECT_EQ(def.GetNsamp(), 7U);
  EXPECT_EQ(def.GetTolU().GetSize(), 7U);
}

TEST(WaveDef, AFailedDefinitionLeavesItUndefined) {
  const auto fails = [](auto define) {
    CWaveDef def = Defined();
    EXPECT_FALSE(define(def));
    ExpectUndefined(def);
    EXPECT_EQ(def.GetNsamp(), 0U);
  };
  fails([](CWaveDef& d) { return d.SetDefSingle(Single(0)); });
  fails([](CWaveDef& d) { return d.SetDefGradual({}); });
  fails([](CWaveDef& d) { return d.SetDefSineBeatBurst({}); });
  fails([](CWaveDef& d) { return d.SetDefSymmetry({}); });
  fails([](CWaveDef& d) { return d.SetDefDamping({}); });
  fails([](CWaveDef& d) { return d.SetDefClassical({}); });
  fails([](CWaveDef& d) {
    d.SetFsamp(0.0);
    return d.SetDefSingle(Single(10));
  });
}

TEST(WaveDef, GivenItsOwnStoredSetClearsItFirst) {
  CWaveDef def = Defined();
  EXPECT_FALSE(def.SetDefSingle(def.GetDefSingle())) << "the argument has become all zero";
  ExpectUndefined(def);
}

TEST(WaveDef, ThatRunsOutOfMemoryIsUndefined) {
  CWaveDefDamping huge;
  huge.SetSyncWaveType(com_def::comdefconst::SYNC_WAVE_WAVELET);
  huge.Add(CWaveDefDampingElm{});
  CWaveDef def = Defined();
  huge.SetNsamp(~uint64{0});
  EXPECT_THROW(def.SetDefDamping(huge), std::length_error);
  ExpectUndefined(def);
  def = Defined();
  huge.SetNsamp(uint64{1} << 50);
  EXPECT_THROW(def.SetDefDamping(huge), std::bad_alloc);
  ExpectUndefined(def);
}

TEST(WaveDef, MovedFromIsCleared) {
  CWaveDef source = Defined();
  const CWaveDef copy(source);
  CWaveDef target(std::move(source));
  EXPECT_TRUE(target == copy);
  EXPECT_TRUE(source == CWaveDef{});
  ExpectUndefined(source);
  EXPECT_EQ(source.GetNsamp(), 0U);
  EXPECT_EQ(source.GetFsamp(), 0.0);
}

TEST(WaveDef, IsAValueInEveryState) {
  test::CheckValueOperations(Defined());
  CWaveDef settingsOnly;
  settingsOnly.SetTolLowerRat(-0.5);
  test::CheckValueOperations(settingsOnly);
}

TEST(WaveDef, EachSettingAloneMakesItUnequal) {
  const std::vector<void (*)(CWaveDef&)> changes{
      [](CWaveDef& d) { d.SetLongWave(true); },
      [](CWaveDef& d) { d.SetMaxNsamp(1); },
      [](CWaveDef& d) { d.SetAutoFsamp(true); },
      [](CWaveDef& d) { d.SetFsamp(1.0); },
      [](CWaveDef& d) {
        common::CUnitCtrl g;
        EXPECT_TRUE(common::CUnitCtrl::FromText("g", &g));
        d.SetUnitAmpl(g);
      },
      [](CWaveDef& d) { d.SetTolUpperRat(0.1); },
      [](CWaveDef& d) { d.SetTolLowerRat(-0.1); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    CWaveDef changed = Defined();
    changes[i](changed);
    EXPECT_TRUE(changed != Defined());
  }
}

TEST(WaveDef, WithANaNSampleEqualsItselfButNoCopyOfItself) {
  CWaveDef def;
  ASSERT_TRUE(def.SetDefMeasure({}, {1.0, kNaN}));
  const CWaveDef copy(def);
  const CWaveDef& same = def;
  EXPECT_TRUE(def == same);
  EXPECT_TRUE(def != copy);
}

TEST(WaveDef, CopiesReuseTheStorageAndAssignmentToItselfDoesNothing) {
  CWaveDef def = Defined();
  CWaveDef target = Defined();
  const double* const storage = target.GetWave().GetData();
  target = def;
  EXPECT_EQ(target.GetWave().GetData(), storage);
  CWaveDef& alias = target;
  target = alias;
  EXPECT_TRUE(target == def);
}

TEST(WaveDef, ARepeatedDefinitionReusesTheStorage) {
  CWaveDef def = Defined();
  const double* const wave = def.GetWave().GetData();
  const double* const upper = def.GetTolU().GetData();
  ASSERT_TRUE(def.SetDefSingle(Single(100)));
  EXPECT_EQ(def.GetWave().GetData(), wave);
  EXPECT_EQ(def.GetTolU().GetData(), upper);
}

// ---- Bands -------------------------------------------------------------------------------------

TEST(WaveDefBands, AreTheWaveMovedByTheRatioTimesItsPeak) {
  CWaveDef def;
  def.SetTolUpperRat(0.25);
  def.SetTolLowerRat(-0.25);
  ASSERT_TRUE(def.SetDefMeasure({}, {1.0, -4.0, 2.0}));
  EXPECT_EQ(Values(def.GetTolU()), (std::vector<double>{2.0, -3.0, 3.0}));
  EXPECT_EQ(Values(def.GetTolL()), (std::vector<double>{0.0, -5.0, 1.0}));
}

TEST(WaveDefBands, BothLieAboveTheWaveForTwoPositiveRatios) {
  CWaveDef def;
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(0.1);
  ASSERT_TRUE(def.SetDefMeasure({}, {0.0, 10.0}));
  EXPECT_EQ(Values(def.GetTolU()), (std::vector<double>{1.0, 11.0}));
  EXPECT_EQ(Values(def.GetTolL()), (std::vector<double>{1.0, 11.0}));
}

TEST(WaveDefBands, EqualTheWaveForRatiosOfZero) {
  CWaveDef def;
  ASSERT_TRUE(def.SetDefMeasure({}, {0.5, -0.25}));
  EXPECT_TRUE(def.GetTolU() == def.GetWave());
  EXPECT_TRUE(def.GetTolL() == def.GetWave());
}

TEST(WaveDefBands, OfAnEmptyWaveAreEmptyAndAreReportedOnce) {
  CWaveDef def;
  def.SetTolUpperRat(0.1);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(def.SetDefMeasure({}, {}));
  const std::string lines = testing::internal::GetCapturedStderr();
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_MEASURE);
  EXPECT_EQ(def.GetTolU().GetSize(), 0U);
  EXPECT_EQ(def.GetTolL().GetSize(), 0U);
  EXPECT_EQ(lines.find("[Error] "), 0U);
  EXPECT_EQ(lines.find('\n'), lines.size() - 1) << "one line";
  EXPECT_NE(lines.find("\x8f\x49\x92\x5b\x83\x43\x83\x93"), std::string::npos) << "end index over";
}

TEST(WaveDefBands, MatchALiteralComputationForRandomMeasuredWaves) {
  std::mt19937 random(7);
  std::normal_distribution<double> normal(0.0, 100.0);
  for (int round = 0; round < 200; ++round) {
    Samples samples(1 + random() % 70);
    double peak = 0.0;
    for (double& x : samples) {
      x = normal(random);
      if (std::fabs(x) > peak) peak = std::fabs(x);
    }
    CWaveDef def;
    def.SetTolUpperRat(normal(random));
    def.SetTolLowerRat(normal(random));
    ASSERT_TRUE(def.SetDefMeasure({}, samples));
    for (uint64 i = 0; i < samples.GetSize(); ++i) {
      EXPECT_EQ(def.GetWave()[i], samples[i]);
      EXPECT_EQ(def.GetTolU()[i], samples[i] + peak * def.GetTolUpperRat()) << "seed 7";
      EXPECT_EQ(def.GetTolL()[i], samples[i] + peak * def.GetTolLowerRat()) << "seed 7";
    }
  }
}

TEST(WaveDefBands, OfNaNAndInfiniteSamplesFollowTheArithmetic) {
  CWaveDef def;
  def.SetTolUpperRat(0.5);
  def.SetTolLowerRat(-0.5);
  ASSERT_TRUE(def.SetDefMeasure({}, {kNaN, -2.0, 1.0}));
  EXPECT_TRUE(std::isnan(def.GetTolU()[0]));
  EXPECT_EQ(def.GetTolU()[1], -1.0) << "the NaN is passed over in the peak";
  ASSERT_TRUE(def.SetDefMeasure({}, {-kInf, 1.0}));
  EXPECT_EQ(def.GetTolU()[1], kInf);
  EXPECT_TRUE(std::isnan(def.GetTolU()[0]));
}

TEST(WaveDefBands, AreOnlyBuiltForADefinedWave) {
  Opened def;
  EXPECT_FALSE(def.LclCalcTolData());
  ASSERT_TRUE(def.SetDefMeasure({}, {1.0, 2.0}));
  def.SetTolUpperRat(1.0);
  EXPECT_TRUE(def.LclCalcTolData());
  EXPECT_EQ(Values(def.GetTolU()), (std::vector<double>{3.0, 4.0}));
  def.LelWaveTypeClear();
  ExpectUndefined(def);
  EXPECT_EQ(def.GetTolUpperRat(), 1.0) << "the settings stay";
  EXPECT_FALSE(def.LclCalcTolData());
}

// ---- Measured waveforms ------------------------------------------------------------------------

TEST(WaveDefMeasure, TakesAnySamplesAsTheyAre) {
  CWaveDef def;
  def.SetFsamp(kNaN);
  CWaveDefMeasure measure;
  measure.SetMeasPath("a.csv");
  const Samples samples{1.0, kInf, -0.0};
  EXPECT_TRUE(def.SetDefMeasure(measure, samples));
  EXPECT_TRUE(def.GetWave() == samples);
  EXPECT_TRUE(std::signbit(def.GetWave()[2]));
  EXPECT_TRUE(std::isnan(def.GetFsamp()));
  EXPECT_EQ(def.GetDefMeasure().GetMeasPath(), "a.csv");
}

TEST(WaveDefMeasure, GivenItsOwnWaveEndsEmpty) {
  CWaveDef def;
  ASSERT_TRUE(def.SetDefMeasure({}, {1.0, 2.0, 3.0}));
  testing::internal::CaptureStderr();
  EXPECT_TRUE(def.SetDefMeasure({}, def.GetWave()));
  const std::string lines = testing::internal::GetCapturedStderr();
  EXPECT_EQ(lines.find("[Error] "), 0U);
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_MEASURE);
  EXPECT_EQ(def.GetNsamp(), 0U);
}

TEST(WaveDefMeasure, SetsThatDifferOnlyInTheirLogsAreUnequal) {
  data_edit_log::CDataEditLog log;
  log.Add({});
  CWaveDefMeasure edited;
  edited.SetDataEditLog(log);
  EXPECT_TRUE(edited != CWaveDefMeasure{});
  EXPECT_TRUE(edited.GetDataEditLog() == log);
}

// ---- The place of the main pulse ---------------------------------------------------------------

/// A classical definition, made by loading a record of one.
CWaveDef Classical(double fsamp, unsigned int n, double width, double shift) {
  common::CSerialData stream;
  common::CUnitCtrl unit;
  CWaveDefClassical def;
  def.SetNsamp(n);
  def.SetMainWidth(width);
  def.SetMainShift(shift);
  Samples none;
  EXPECT_TRUE(stream.Write(1U) && stream.Write(uint64{1}) && stream.Write(false) &&
              stream.Write(uint64{0}) && stream.Write(false) && stream.Write(fsamp) &&
              unit.Serialize(&stream) && stream.Write(0.0) && stream.Write(0.0) &&
              def.Serialize(&stream) && none.Serialize(&stream) && none.Serialize(&stream) &&
              none.Serialize(&stream));
  stream.Finalize();
  CWaveDef out;
  EXPECT_TRUE(out.Serialize(&stream));
  return out;
}

TEST(MainPulsePosition, LiesAboutTheShiftedMiddleOfTheFrame) {
  struct Row {
    double fsamp;
    unsigned int n;
    double width, shift;
    uint64 start, end;
  };
  // clang-format off
  const std::vector<Row> rows{
    // fsamp    n     width   shift   start            end
    {  10000.0, 1000, 0.011,  0.0,    445,             555             },  // half = 55
    {  10000.0, 1001, 0.011,  0.0,    445,             555             },  // middle rounded down
    {  10000.0, 1000, 0.0119, 0.0,    441,             559             },  // 59.5 truncated
    {  10000.0, 1000, 0.011,  0.1,    545,             655             },
    {  10000.0, 1000, 0.011, -0.1,    345,             455             },
    {  10000.0, 1000, 0.011, -0.0019, 444,             554             },  // -1.9 truncated to -1
    {  10000.0, 10,   0.011,  0.0,    uint64{0} - 50,  60              },  // wider than the frame
    {  10000.0, 1000, kNaN,   0.0,    500 - (uint64{1} << 63), 500 + (uint64{1} << 63)},
    {  0.0,     1000, 0.011,  0.0,    500,             500             },
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "width " << row.width << ", shift " << row.shift);
    uint64 start = 1;
    uint64 end = 1;
    EXPECT_TRUE(Classical(row.fsamp, row.n, row.width, row.shift).GetMainPulsPos(&start, &end));
    EXPECT_EQ(start, row.start);
    EXPECT_EQ(end, row.end);
  }
}

TEST(MainPulsePosition, IsRefusedWithNothingWrittenWithoutPlacesOrAClassicalWave) {
  const CWaveDef classical = Classical(10000.0, 1000, 0.011, 0.0);
  uint64 value = 77;
  EXPECT_FALSE(classical.GetMainPulsPos(nullptr, nullptr));
  EXPECT_FALSE(classical.GetMainPulsPos(&value, nullptr));
  EXPECT_FALSE(classical.GetMainPulsPos(nullptr, &value));
  EXPECT_EQ(value, 77U);
  uint64 end = 78;
  EXPECT_FALSE(Defined().GetMainPulsPos(&value, &end));
  EXPECT_FALSE(CWaveDef{}.GetMainPulsPos(&value, &end));
  EXPECT_EQ(value, 77U);
  EXPECT_EQ(end, 78U);
}

TEST(MainPulsePosition, IsWrittenInEitherSpellingOfAnUnsigned64BitValue) {
  const CWaveDef classical = Classical(10000.0, 1000, 0.011, 0.0);
  unsigned long shortSpelling = 0;
  unsigned long long longSpelling = 0;
  static_assert(sizeof(shortSpelling) == 8);
  EXPECT_TRUE(classical.GetMainPulsPos(&shortSpelling, &longSpelling));
  EXPECT_EQ(shortSpelling, 445U);
  EXPECT_EQ(longSpelling, 555U);
  EXPECT_TRUE(classical.GetMainPulsPos(&longSpelling, &shortSpelling));
  EXPECT_EQ(longSpelling, 445U);
  std::uint64_t start = 0;
  std::uint64_t end = 0;
  EXPECT_TRUE(classical.GetMainPulsPos(&start, &end));
  EXPECT_EQ(end, 555U);
  EXPECT_FALSE(classical.GetMainPulsPos(&shortSpelling, nullptr));
  EXPECT_FALSE(classical.GetMainPulsPos(static_cast<unsigned long*>(nullptr), &shortSpelling));
  EXPECT_EQ(shortSpelling, 555U);
}

}  // namespace
