// The record of a definition: what is stored, and what a damaged or hostile record does.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <vector>

#include "common/serial/serial_data.h"
#include "golden.h"
#include "value_semantics.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using common::CSerialData;
using common::uint64;
using Bytes = std::vector<unsigned char>;

CWaveDef SmallSingle() {
  CWaveDef def;
  def.SetLongWave(true);
  def.SetMaxNsamp(1000000);
  def.SetAutoFsamp(true);
  def.SetFsamp(1000.0);
  common::CUnitCtrl unit;
  EXPECT_TRUE(common::CUnitCtrl::FromText("m/s^2", &unit));
  def.SetUnitAmpl(unit);
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  CWaveDefSingle single;
  single.SetPeriod(0.008);  // 8 samples: the expected bytes do not hang on the last bit of a sine
  single.SetPeakLevel(2.0);
  single.SetNsamp(3);
  EXPECT_TRUE(def.SetDefSingle(single));
  return def;
}

TEST(WaveDefRecord, KeepsADefinitionWhateverHappensToTheStream) {
  test::CheckRecord(SmallSingle());
}

TEST(WaveDefRecord, OfAnUndefinedObjectHoldsTheSettingsAndFails) {
  CWaveDef def;
  def.SetFsamp(1000.0);
  CSerialData stream;
  EXPECT_FALSE(def.Serialize(&stream));
  stream.Finalize();
  unsigned int version = 0;
  uint64 type = 1;
  bool longWave = true;
  uint64 maxNsamp = 1;
  bool autoFsamp = true;
  double fsamp = 0.0;
  common::CUnitCtrl unit;
  double upper = 1.0;
  double lower = 1.0;
  EXPECT_TRUE(stream.Read(&version) && stream.Read(&type) && stream.Read(&longWave) &&
              stream.Read(&maxNsamp) && stream.Read(&autoFsamp) && stream.Read(&fsamp) &&
              unit.Serialize(&stream) && stream.Read(&upper) && stream.Read(&lower));
  EXPECT_TRUE(stream.IsAtEnd());
  EXPECT_EQ(version, 1U);
  EXPECT_EQ(type, 0U);
  EXPECT_EQ(fsamp, 1000.0);
}

/// The leading items of a record that names the given type.
CSerialData Head(uint64 type) {
  CSerialData stream;
  common::CUnitCtrl unit;
  EXPECT_TRUE(stream.Write(1U) && stream.Write(type) && stream.Write(false) &&
              stream.Write(uint64{0}) && stream.Write(false) && stream.Write(48000.0) &&
              unit.Serialize(&stream) && stream.Write(0.0) && stream.Write(0.0));
  return stream;
}

void AppendEmptyArrays(CSerialData* stream) {
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(stream->Write(7U) && stream->Write(uint64{0}));
}

TEST(WaveDefRecord, ThatNamesNoFamilyIsRefused) {
  for (const uint64 type : {uint64{0}, uint64{8}, uint64{0xFFFFFFFF}, uint64{0x80000000}}) {
    SCOPED_TRACE(type);
    CSerialData stream = Head(type);
    CWaveDefSingle single;
    EXPECT_TRUE(single.Serialize(&stream));
    AppendEmptyArrays(&stream);
    stream.Finalize();
    CWaveDef def = SmallSingle();
    EXPECT_FALSE(def.Serialize(&stream));
    EXPECT_TRUE(def == CWaveDef{});
  }
}

TEST(WaveDefRecord, KeepsTheLow32BitsOfTheType) {
  CSerialData stream = Head(0x1234567800000006);
  CWaveDefSingle single;
  single.SetNsamp(5);
  ASSERT_TRUE(single.Serialize(&stream));
  AppendEmptyArrays(&stream);
  stream.Finalize();
  CWaveDef def;
  EXPECT_TRUE(def.Serialize(&stream));
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_SINGLE);
  EXPECT_EQ(def.GetDefSingle().GetNsamp(), 5U);
  EXPECT_EQ(def.GetFsamp(), 48000.0);
}

template <class Set>
void CheckFamilyRecord(uint64 type, Set set, const Set& (CWaveDef::*get)() const) {
  SCOPED_TRACE(type);
  CSerialData stream = Head(type);
  ASSERT_TRUE(set.Serialize(&stream));
  common::CDataArrayFloatT<double> wave{1.0, -2.0};
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(wave.Serialize(&stream));
  stream.Finalize();
  CWaveDef def;
  ASSERT_TRUE(def.Serialize(&stream));
  EXPECT_TRUE(stream.IsAtEnd());
  EXPECT_EQ(static_cast<uint64>(def.GetWaveType()), type);
  EXPECT_TRUE((def.*get)() == set);
  EXPECT_TRUE(def.GetTolL() == wave);
  test::CheckRecord(def);
  test::CheckValueOperations(def);

  CWaveDef other(def);
  EXPECT_TRUE(other == def);
  Bytes record = test::RecordOf(def);
  record.back() ^= 1;  // the last sample of the lower band
  ASSERT_TRUE(test::Load(record, &other));
  EXPECT_TRUE(other != def) << "a single sample differs";
}

TEST(WaveDefRecord, HoldsTheActiveSetOfEveryFamilyAndTheArrays) {
  CWaveDefClassical classical;
  classical.SetMainAmpl(50.0);
  CWaveDefSymmetry symmetry;
  symmetry.SetPeak(2.0);
  CWaveDefSineBeatBurst beat;
  beat.SetCycle(3);
  CWaveDefMeasure measure;
  measure.SetMeasPath("a.csv");
  CWaveDefGradual gradual;
  gradual.SetLevelEnd(2.0);
  CWaveDefSingle single;
  single.SetNsamp(2);
  CWaveDefDamping damping;
  damping.Add(CWaveDefDampingElm{});
  CheckFamilyRecord(1, classical, &CWaveDef::GetDefClassical);
  CheckFamilyRecord(2, symmetry, &CWaveDef::GetDefSymmetry);
  CheckFamilyRecord(3, beat, &CWaveDef::GetDefSineBeatBurst);
  CheckFamilyRecord(4, measure, &CWaveDef::GetDefMeasure);
  CheckFamilyRecord(5, gradual, &CWaveDef::GetDefGradual);
  CheckFamilyRecord(6, single, &CWaveDef::GetDefSingle);
  CheckFamilyRecord(7, damping, &CWaveDef::GetDefDamping);
}

TEST(WaveDefRecord, WithAHostileSampleCountIsRefusedWithoutTheMemory) {
  const Bytes record = test::RecordOf(SmallSingle());
  // The three arrays are the end of the record; each is a tag and a version word (5 bytes), a tag
  // and the count (9), a tag, the run's length and 3 samples (33).
  const std::size_t count = record.size() - 3 * 47 + 6;
  for (const uint64 n : {uint64{4}, uint64{1} << 40, uint64{1} << 61, (uint64{1} << 61) + 3,
                         ~uint64{0}, uint64{1} << 63}) {
    SCOPED_TRACE(n);
    Bytes damaged = record;
    for (std::size_t i = 0; i < 8; ++i) {
      damaged[count + i] = static_cast<unsigned char>(n >> (8 * i));
    }
    CWaveDef def = SmallSingle();
    EXPECT_FALSE(test::Load(damaged, &def));
    EXPECT_TRUE(def == CWaveDef{});
  }
}

TEST(WaveDefRecord, DamagedAnywhereLoadsWholeOrNotAtAll) {
  const Bytes record = test::RecordOf(SmallSingle());
  for (std::size_t i = 0; i < record.size(); ++i) {
    for (const int flip : {0x01, 0x80, 0xFF}) {
      Bytes damaged = record;
      damaged[i] = static_cast<unsigned char>(damaged[i] ^ flip);
      CWaveDef def = SmallSingle();
      if (test::Load(damaged, &def)) {
        EXPECT_NE(def.GetWaveType(), CWaveDef::WAVE_TYPE_NONE) << "byte " << i;
      } else {
        EXPECT_TRUE(def == CWaveDef{}) << "byte " << i;
      }
    }
  }
}

TEST(WaveDefRecord, OfRandomBytesNeverLoadsHalf) {
  constexpr std::array<unsigned char, 10> kLikely{'b', 'u', 'U', 'd', 's', 'r', 0, 1, 3, 6};
  std::mt19937 random(20260101);
  for (int round = 0; round < 5000; ++round) {
    Bytes bytes(random() % 200);
    for (auto& b : bytes) b = kLikely[random() % kLikely.size()];
    CWaveDef def;
    def.SetFsamp(1.0);
    if (!test::Load(bytes, &def)) {
      EXPECT_TRUE(def == CWaveDef{}) << "seed 20260101, round " << round;
    }
  }
}

TEST(WaveDefRecord, IsTheStoredOneByteForByte) {
  EXPECT_EQ(test::RecordOf(SmallSingle()), test::GoldenRecord("generated_single"));
}

}  // namespace
