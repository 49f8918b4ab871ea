// What single parameter sets do beyond storing their fields.
#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <string>

#include "common/serial/serial_data.h"
#include "value_semantics.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using common::CSerialData;
using common::uint64;

// ---- Enumerations: the values stand in records -------------------------------------------------

static_assert(wave_def_sub::HALF_SINE == 1 && wave_def_sub::TERMINAL_PEAK_SAWTOOTH == 2 &&
              wave_def_sub::TRAPEZOID == 3 && wave_def_sub::TRIANGLE == 4 &&
              wave_def_sub::USER_TRAPEZOID == 5 && wave_def_sub::HAVERSINE == 6);
static_assert(CWaveDefClassical::TOL_NONE == 0 && CWaveDefClassical::TOL_FIXED_1 == 1 &&
              CWaveDefClassical::TOL_FIXED_9 == 9 && CWaveDefClassical::TOL_USER_DEF == 10 &&
              CWaveDefClassical::TOL_SPECIFY == 11);
static_assert(CWaveDefClassical::CMP_NONE == 0 && CWaveDefClassical::CMP_RAMP == 1 &&
              CWaveDefClassical::CMP_COSINE == 2 && CWaveDefClassical::CMP_FLAT_COSINE == 3 &&
              CWaveDefClassical::CMP_OPTIMIZED == 4);
static_assert(CWaveDefTolSpecify::BASE_STD_NONE == 0 && CWaveDefTolSpecify::BASE_STD_1 == 1 &&
              CWaveDefTolSpecify::BASE_STD_5 == 5);
static_assert(CWaveDefSineBeatBurst::SINE_BEAT == 1 && CWaveDefSineBeatBurst::SINE_BURST == 2 &&
              CWaveDefSineBeatBurst::WINDOW_HALF_HANNING == 1 &&
              CWaveDefSineBeatBurst::WINDOW_RAMP == 2);
static_assert(CWaveDefGradual::LENGTH_BY_TIME == 1 && CWaveDefGradual::LENGTH_BY_SLOPE == 2);
static_assert(sizeof(wave_def_sub::WAVE_KIND) == 4 && sizeof(CWaveDefClassical::TOL_KIND) == 4);

// ---- User tolerance ----------------------------------------------------------------------------

TEST(TolUserDef, PulseLevelsThatAreNotSetAreZeroWhateverIsGiven) {
  CWaveDefTolUserDef tol;
  tol.SetTolPulsParam(true, 0.1, 0.2, 0.3, 0.4);
  EXPECT_TRUE(tol.GetTolPulsSet());
  EXPECT_EQ(tol.GetTolPulsBegU(), 0.1);
  EXPECT_EQ(tol.GetTolPulsBegL(), 0.2);
  EXPECT_EQ(tol.GetTolPulsEndU(), 0.3);
  EXPECT_EQ(tol.GetTolPulsEndL(), 0.4);
  tol.SetTolPulsParam(false, 0.1, 0.2, 0.3, 0.4);
  EXPECT_TRUE(tol == CWaveDefTolUserDef{});
}

TEST(TolUserDef, SetsThatDifferOnlyInTheFlagAreUnequal) {
  CWaveDefTolUserDef on;
  on.SetTolPulsParam(true, 0.0, 0.0, 0.0, 0.0);
  EXPECT_TRUE(on != CWaveDefTolUserDef{});
}

TEST(TolUserDef, ARecordMayHoldPulseLevelsThatAreNotInForce) {
  CSerialData stream;
  ASSERT_TRUE(stream.Write(1U));
  for (int i = 0; i < 8; ++i) ASSERT_TRUE(stream.Write(0.0));
  ASSERT_TRUE(stream.Write(false));
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(stream.Write(0.25));
  stream.Finalize();
  CWaveDefTolUserDef tol;
  ASSERT_TRUE(tol.Serialize(&stream));
  EXPECT_FALSE(tol.GetTolPulsSet());
  EXPECT_EQ(tol.GetTolPulsEndL(), 0.25);
}

// ---- Standard tolerance ------------------------------------------------------------------------

TEST(TolSpecify, ANameThatIsAPrefixOfTheOtherIsAnotherName) {
  CWaveDefTolSpecify a;
  CWaveDefTolSpecify b;
  a.SetStdName("STD 1");
  b.SetStdName("STD 10");
  EXPECT_TRUE(a != b);
  b.SetStdName(std::string("STD 1\0", 6));
  EXPECT_TRUE(a != b);
  b.SetStdName("STD 1");
  EXPECT_TRUE(a == b);
}

TEST(TolSpecify, AShapeOfMinusOneIsWrittenAsAllBitsAndReadBack) {
  CWaveDefTolSpecify tol;
  tol.SetWaveKind(static_cast<wave_def_sub::WAVE_KIND>(-1));
  CSerialData stream;
  ASSERT_TRUE(tol.Serialize(&stream));
  stream.Finalize();
  unsigned int version = 0;
  std::string name;
  uint64 kind = 0;
  ASSERT_TRUE(stream.Read(&version) && stream.Read(&name) && stream.Read(&kind));
  EXPECT_EQ(version, 1U);
  EXPECT_EQ(kind, ~uint64{0});
  stream.Finalize();
  CWaveDefTolSpecify back;
  ASSERT_TRUE(back.Serialize(&stream));
  EXPECT_EQ(back.GetWaveKind(), -1);
}

TEST(TolSpecify, OfAnEnumerationOnlyTheLow32BitsAreKept) {
  CSerialData stream;
  ASSERT_TRUE(stream.Write(7U) && stream.Write(std::string{}) &&
              stream.Write(uint64{0xABCDEF0100000004}) && stream.Write(uint64{0x8000000000000002}));
  for (int i = 0; i < 14; ++i) ASSERT_TRUE(stream.Write(0.0));
  stream.Finalize();
  CWaveDefTolSpecify tol;
  ASSERT_TRUE(tol.Serialize(&stream));
  EXPECT_EQ(tol.GetWaveKind(), wave_def_sub::TRIANGLE);
  EXPECT_EQ(tol.GetBaseStandard(), CWaveDefTolSpecify::BASE_STD_2);
}

TEST(TolSpecify, ARecordCutBehindTheNameLeavesNoName) {
  CSerialData stream;
  ASSERT_TRUE(stream.Write(1U) && stream.Write(std::string("left over")));
  stream.Finalize();
  CWaveDefTolSpecify tol;
  tol.SetTolEndHi(1.0);
  EXPECT_FALSE(tol.Serialize(&stream));
  EXPECT_TRUE(tol == CWaveDefTolSpecify{});
}

TEST(TolSpecify, ClearingKeepsTheNamesStorage) {
  CWaveDefTolSpecify tol;
  tol.SetStdName(std::string(1000, 'x'));
  const char* const storage = tol.GetStdName().data();
  tol.Clear();
  EXPECT_EQ(tol.GetStdName().size(), 0U);
  EXPECT_EQ(tol.GetStdName().data(), storage);
}

TEST(TolSpecify, ItsOwnNameAssignedToItStays) {
  CWaveDefTolSpecify tol;
  tol.SetStdName("own");
  tol.SetStdName(tol.GetStdName());
  EXPECT_EQ(tol.GetStdName(), "own");
}

// ---- Classical ---------------------------------------------------------------------------------

TEST(Classical, TakesTheToleranceSetOfItsKindOnly) {
  CWaveDefTolUserDef user;
  user.SetTolMainU(0.15);
  CWaveDefTolSpecify standard;
  standard.SetStdName("standard");
  for (int kind = -1; kind <= 12; ++kind) {
    SCOPED_TRACE(kind);
    CWaveDefClassical def;
    def.SetTolKind(static_cast<CWaveDefClassical::TOL_KIND>(kind));
    const CWaveDefClassical before(def);
    EXPECT_EQ(def.SetDefTolUserDef(user), kind == 10);
    EXPECT_EQ(def.GetDefTolUserDef() == user, kind == 10);
    EXPECT_EQ(def.SetDefTolSpecify(standard), kind == 11);
    EXPECT_EQ(def.GetDefTolSpecify() == standard, kind == 11);
    EXPECT_EQ(def == before, kind != 10 && kind != 11);
  }
}

TEST(Classical, ClearingClearsTheNestedSets) {
  CWaveDefClassical def;
  CWaveDefTolUserDef user;
  user.SetTolMainU(0.15);
  def.SetTolKind(CWaveDefClassical::TOL_USER_DEF);
  ASSERT_TRUE(def.SetDefTolUserDef(user));
  def.Clear();
  EXPECT_TRUE(def.GetDefTolUserDef() == CWaveDefTolUserDef{});
  EXPECT_TRUE(def == CWaveDefClassical{});
}

// ---- Sine beat and burst -----------------------------------------------------------------------

TEST(SineBeatBurst, EdgesThatAreOffAreZeroWhateverIsGiven) {
  CWaveDefSineBeatBurst def;
  def.SetEdging(true, 5, 6, CWaveDefSineBeatBurst::WINDOW_RAMP);
  EXPECT_TRUE(def.GetEdging());
  EXPECT_EQ(def.GetEdgeRise(), 5U);
  EXPECT_EQ(def.GetEdgeFall(), 6U);
  EXPECT_EQ(def.GetEdgeWindow(), CWaveDefSineBeatBurst::WINDOW_RAMP);
  def.SetEdging(false, 5, 5, CWaveDefSineBeatBurst::WINDOW_RAMP);
  EXPECT_FALSE(def.GetEdging());
  EXPECT_EQ(def.GetEdgeRise(), 0U);
  EXPECT_EQ(def.GetEdgeFall(), 0U);
  EXPECT_EQ(def.GetEdgeWindow(), 0);
}

// ---- Damped sines: the list of elements --------------------------------------------------------

CWaveDefDampingElm Element(double freq) {
  CWaveDefDampingElm elm;
  elm.SetFreq(freq);
  return elm;
}

std::vector<double> Frequencies(const CWaveDefDamping& def) {
  std::vector<double> out;
  for (const CWaveDefDampingElm& elm : def.GetDefDampingElmList()) out.push_back(elm.GetFreq());
  return out;
}

TEST(DampingElements, AnInsertionNeverAppends) {
  CWaveDefDamping def;
  EXPECT_FALSE(def.Insert(0, Element(1.0)));
  const CWaveDefDampingElm copied = Element(1.0);
  EXPECT_FALSE(def.Insert(0, copied));
  EXPECT_EQ(def.GetElmNum(), 0U);
  def.Add(Element(1.0));
  EXPECT_FALSE(def.Insert(1, Element(2.0)));
  EXPECT_FALSE(def.Insert(~uint64{0}, Element(2.0)));
  EXPECT_TRUE(def.Insert(0, Element(0.5)));
  EXPECT_EQ(Frequencies(def), (std::vector<double>{0.5, 1.0}));
}

TEST(DampingElements, AnInsertedElementTakesItsIndex) {
  for (uint64 at = 0; at < 5; ++at) {
    CWaveDefDamping def;
    for (int i = 0; i < 5; ++i) def.Add(Element(i));
    const CWaveDefDampingElm own = def[at];
    EXPECT_TRUE(def.Insert(at, def[at])) << "of the list itself";
    EXPECT_TRUE(def.Insert(at, Element(9.0)));
    EXPECT_EQ(def.GetElmNum(), 7U);
    EXPECT_EQ(def[at].GetFreq(), 9.0);
    EXPECT_TRUE(def[at + 1] == own);
    EXPECT_TRUE(def[at + 2] == own);
  }
}

TEST(DampingElements, AChangeIsRefusedAtTheEnd) {
  CWaveDefDamping def;
  def.Add(Element(1.0));
  def.Add(Element(2.0));
  EXPECT_FALSE(def.Change(2, Element(9.0)));
  EXPECT_EQ(Frequencies(def), (std::vector<double>{1.0, 2.0}));
  EXPECT_TRUE(def.Change(1, Element(9.0)));
  EXPECT_TRUE(def.Change(0, def.GetElmByIndex(0)));
  EXPECT_EQ(Frequencies(def), (std::vector<double>{1.0, 9.0}));
}

TEST(DampingElements, AreDeletedByIndexAndAllAtOnce) {
  for (uint64 at = 0; at < 4; ++at) {
    CWaveDefDamping def;
    std::vector<double> left;
    for (uint64 i = 0; i < 4; ++i) {
      def.Add(Element(static_cast<double>(i)));
      if (i != at) left.push_back(static_cast<double>(i));
    }
    def.DeleteElmByIndex(at);
    EXPECT_EQ(Frequencies(def), left);
    def.DeleteAll();
    EXPECT_EQ(def.GetElmNum(), 0U);
  }
}

TEST(DampingElements, AreReachedByIndexFromBothEnds) {
  CWaveDefDamping def;
  for (int i = 0; i < 7; ++i) def.Add(Element(i));
  const CWaveDefDamping& same = def;
  for (uint64 i = 0; i < 7; ++i) {
    EXPECT_EQ(def[i].GetFreq(), static_cast<double>(i));
    EXPECT_EQ(&same[i], &def[i]);
    EXPECT_EQ(&same.GetElmByIndex(i), &def[i]);
  }
  def[3].SetFreq(33.0);
  EXPECT_EQ(same.GetElmByIndex(3).GetFreq(), 33.0);
}

TEST(DampingElements, TheListIsReplacedWholeAndTheScalarsStay) {
  CWaveDefDamping def;
  def.SetNsamp(10);
  def.Add(Element(1.0));
  def.SetDefDampingElmList({Element(2.0), Element(3.0)});
  EXPECT_EQ(Frequencies(def), (std::vector<double>{2.0, 3.0}));
  def.SetDefDampingElmList(def.GetDefDampingElmList());
  EXPECT_EQ(Frequencies(def), (std::vector<double>{2.0, 3.0}));
  EXPECT_EQ(def.GetNsamp(), 10U);
}

TEST(DampingElements, InAnotherOrderMakeAnotherSet) {
  CWaveDefDamping a;
  CWaveDefDamping b;
  a.SetDefDampingElmList({Element(1.0), Element(2.0)});
  b.SetDefDampingElmList({Element(2.0), Element(1.0)});
  EXPECT_TRUE(a != b);
}

TEST(DampingElements, AHostileCountEndsWithTheData) {
  CSerialData stream;
  ASSERT_TRUE(stream.Write(1U) && stream.Write(uint64{5}) && stream.Write(uint64{3}) &&
              stream.Write(1.0) && stream.Write(0.5) && stream.Write(~uint64{0}));
  CWaveDefDampingElm elm = Element(1.0);
  ASSERT_TRUE(elm.Serialize(&stream));
  stream.Finalize();
  CWaveDefDamping def;
  EXPECT_FALSE(def.Serialize(&stream));
  EXPECT_TRUE(def == CWaveDefDamping{});
}

TEST(DampingElements, BothSpellingsOfAnUnsigned64BitValueAreTaken) {
  CWaveDefDamping def;
  const std::uint64_t n = 12;
  def.SetNsamp(n);
  const std::uint64_t back = def.GetNsamp();
  EXPECT_EQ(back, n);
  const unsigned long long other = def.GetElmNum();
  EXPECT_EQ(other, 0U);
}

}  // namespace
