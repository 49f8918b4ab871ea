// What is left of a definition, a copy or a load that runs out of memory, at whichever allocation.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <typeinfo>
#include <vector>

#include "expect_undefined.h"
#include "throwing_new.h"
#include "value_semantics.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using common::uint64;
using test::ExpectUndefined;
using test::Starved;

const std::string kLongText(100, 'x');  // more than a string holds without memory of its own

/// One definition of a family; `define` gives what the call returns.
struct Case {
  std::string name;
  std::function<bool(CWaveDef&)> define;
};

CWaveDefClassical ClassicalSet(CWaveDefClassical::COMP_TYPE compensation) {
  CWaveDefClassical set;
  set.SetWaveKind(wave_def_sub::HALF_SINE);
  set.SetMainAmpl(50);
  set.SetMainWidth(0.011);
  set.SetFmax(500);
  set.SetNsamp(500);
  CWaveDefTolSpecify levels;
  levels.SetStdName(kLongText);
  set.SetTolKind(CWaveDefClassical::TOL_SPECIFY);
  EXPECT_TRUE(set.SetDefTolSpecify(levels));
  set.SetTolKind(CWaveDefClassical::TOL_FIXED_4);
  if (compensation != CWaveDefClassical::CMP_NONE) {
    set.SetAddCmp(true);
    set.SetCmpNonSym(true);
    set.SetCmpType(compensation);
    set.SetCmpPre(1);
    set.SetCmpPost(1);
  }
  return set;
}

std::vector<Case> Families() {
  CWaveDefSymmetry symmetry;
  symmetry.SetWaveKind(wave_def_sub::HALF_SINE);
  symmetry.SetPeak(10);
  symmetry.SetWidth(0.01);
  CWaveDefSineBeatBurst burst;
  burst.SetWaveKind(CWaveDefSineBeatBurst::SINE_BURST);
  burst.SetAmpl(1);
  burst.SetFreq(100);
  burst.SetCycle(5);
  burst.SetFrame(3);
  burst.SetRestTime(-0.01);  // packets that overlap take an array of their own
  data_edit_log::CDataEditLogElm edit;
  edit.SetParams({1.0, 2.0});
  edit.SetNote(kLongText);
  data_edit_log::CDataEditLog log;
  log.Add(edit);
  CWaveDefMeasure measure;
  measure.SetMeasPath(kLongText);
  measure.SetDataEditLog(log);
  const common::CDataArrayFloatT<double> samples{1.0, -2.0, 0.5};
  CWaveDefGradual gradual;
  gradual.SetPeriod(0.01);
  gradual.SetLevelEnd(2);
  gradual.SetLengthType(CWaveDefGradual::LENGTH_BY_TIME);
  gradual.SetWaveTime(0.1);
  gradual.SetNsamp(300);
  CWaveDefSingle single;
  single.SetPeriod(0.01);
  single.SetPeakLevel(1);
  single.SetNsamp(100);
  CWaveDefDampingElm component;
  component.SetFreq(50);
  component.SetAmpl(1);
  component.SetZeta(0.05);
  component.SetNumHalf(5);
  CWaveDefDamping damped;
  damped.SetNsamp(500);
  damped.SetSyncWaveType(com_def::comdefconst::SYNC_WAVE_DAMPED_SINE);
  damped.SetFreq(10);
  damped.SetZeta(0.5);
  damped.Add(component);
  damped.Add(component);
  CWaveDefDamping wavelets = damped;
  wavelets.SetSyncWaveType(com_def::comdefconst::SYNC_WAVE_WAVELET);

  std::vector<Case> cases{
      {"symmetry", [=](CWaveDef& d) { return d.SetDefSymmetry(symmetry); }},
      {"burst", [=](CWaveDef& d) { return d.SetDefSineBeatBurst(burst); }},
      {"measured", [=](CWaveDef& d) { return d.SetDefMeasure(measure, samples); }},
      {"gradual", [=](CWaveDef& d) { return d.SetDefGradual(gradual); }},
      {"single", [=](CWaveDef& d) { return d.SetDefSingle(single); }},
      {"damped sines", [=](CWaveDef& d) { return d.SetDefDamping(damped); }},
      {"wavelets", [=](CWaveDef& d) { return d.SetDefDamping(wavelets); }},
  };
  for (const auto type :
       {CWaveDefClassical::CMP_NONE, CWaveDefClassical::CMP_RAMP, CWaveDefClassical::CMP_COSINE,
        CWaveDefClassical::CMP_FLAT_COSINE, CWaveDefClassical::CMP_OPTIMIZED}) {
    const CWaveDefClassical set = ClassicalSet(type);
    cases.push_back({"classical, compensation " + std::to_string(type),
                     [=](CWaveDef& d) { return d.SetDefClassical(set); }});
  }
  return cases;
}

void SetSettings(CWaveDef* def) {
  def->SetLongWave(true);
  def->SetMaxNsamp(77);
  def->SetAutoFsamp(true);
  def->SetFsamp(2560);
  def->SetTolUpperRat(0.1);
  def->SetTolLowerRat(-0.2);
}

/// A defined object of another family, whose set and samples would be noticed.
CWaveDef Before() {
  CWaveDef def;
  SetSettings(&def);
  CWaveDefMeasure measure;
  measure.SetMeasPath("before");
  EXPECT_TRUE(def.SetDefMeasure(measure, {7.0, 8.0}));
  return def;
}

/// No definition is left: neither a type, nor any family's set, nor samples.
void ExpectDropped(const CWaveDef& def) {
  ExpectUndefined(def);
  EXPECT_EQ(def.GetWave().GetSize(), 0U);
}

/// Runs `call` on a fresh `make()` with each of its allocations failing, once and from then on, and
/// looks at what is left.
template <class Make, class Call, class Look>
void StarveEveryAllocation(const std::string& name, Make make, Call call, Look look) {
  auto whole = make();
  const uint64 allocations = test::AllocationsOf([&] { call(whole); });
  bool anyThrown = false;
  for (const Starved::How how : {Starved::How::Once, Starved::How::FromThenOn}) {
    for (uint64 k = 1; k <= allocations; ++k) {
      SCOPED_TRACE(name + ", allocation " + std::to_string(k) + " of " +
                   std::to_string(allocations) +
                   (how == Starved::How::Once ? " fails" : " and all after it fail"));
      auto object = make();
      bool thrown = false;
      {
        const Starved starved(k, how);
        try {
          call(object);
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
      }
      if (thrown) {
        look(object);
      } else {  // a sort does without its buffer
        EXPECT_TRUE(object == whole) << "nothing is thrown, so it is whole";
      }
      anyThrown = anyThrown || thrown;
      if (testing::Test::HasFailure()) return;  // one is enough to see
    }
  }
  EXPECT_TRUE(anyThrown) << name;
}

TEST(OutOfMemory, ADefinitionLeavesNothingButTheSettings) {
  CWaveDef settings;
  SetSettings(&settings);
  for (const Case& c : Families()) {
    CWaveDef whole = Before();
    ASSERT_TRUE(c.define(whole)) << c.name;
    StarveEveryAllocation(c.name, Before, c.define, [&](CWaveDef& def) {
      ExpectDropped(def);
      EXPECT_TRUE(def == settings) << "the settings survive";
    });
  }
}

TEST(OutOfMemory, ADefinitionCanBeRepeatedWhenThereIsMemoryAgain) {
  for (const Case& c : Families()) {
    CWaveDef whole = Before();
    ASSERT_TRUE(c.define(whole)) << c.name;
    CWaveDef def = Before();
    try {
      const Starved starved(1, Starved::How::FromThenOn);
      c.define(def);
      ADD_FAILURE() << c.name << " needs no memory";
    } catch (const std::bad_alloc&) {
    }
    EXPECT_TRUE(c.define(def)) << c.name;
    EXPECT_TRUE(def == whole) << c.name;
  }
}

TEST(OutOfMemory, ACopyAssignmentLeavesAClearedTarget) {
  for (const Case& c : Families()) {
    CWaveDef source;
    source.SetFsamp(1000);
    ASSERT_TRUE(c.define(source)) << c.name;
    StarveEveryAllocation(
        c.name, Before, [&](CWaveDef& def) { def = source; },
        [](const CWaveDef& def) {
          ExpectDropped(def);
          EXPECT_TRUE(def == CWaveDef{}) << "and every setting at its default";
        });
  }
}

TEST(OutOfMemory, ALoadLeavesAClearedTarget) {
  for (const Case& c : Families()) {
    CWaveDef source;
    source.SetFsamp(1000);
    ASSERT_TRUE(c.define(source)) << c.name;
    const std::vector<unsigned char> record = test::RecordOf(source);
    common::CSerialData stream(record);
    StarveEveryAllocation(
        c.name, Before,
        [&](CWaveDef& def) {
          stream.Finalize();  // from the start
          EXPECT_TRUE(def.Serialize(&stream));
        },
        [](const CWaveDef& def) {
          ExpectDropped(def);
          EXPECT_TRUE(def == CWaveDef{});
        });
  }
}

/// A parameter set that owns memory: filled, and another that stands in the way of the copy.
template <class Set>
void CheckCopyOf(const Set& filled, const Set& before) {
  StarveEveryAllocation(
      typeid(Set).name(), [&] { return before; }, [&](Set& set) { set = filled; },
      [](const Set& set) { EXPECT_TRUE(set == Set{}); });
}

TEST(OutOfMemory, ACopyAssignmentOfAParameterSetLeavesItCleared) {
  CWaveDefDamping list;
  for (int i = 0; i < 5; ++i) list.Add(CWaveDefDampingElm{});
  CWaveDefDamping shorter;
  shorter.SetNsamp(3);
  shorter.Add(CWaveDefDampingElm{});
  CheckCopyOf(list, shorter);

  CWaveDefMeasure measure;
  measure.SetMeasPath(kLongText);
  CWaveDefMeasure otherPath;
  otherPath.SetMeasPath("x");
  CheckCopyOf(measure, otherPath);

  CWaveDefClassical plain;
  plain.SetMainAmpl(3);
  CheckCopyOf(ClassicalSet(CWaveDefClassical::CMP_RAMP), plain);
}

}  // namespace
