// qarv-wave check: its rules, that they agree with the library, and that what they propose works.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <new>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

#include "family/sine_beat_burst.h"
#include "family/symmetry.h"
#include "random_classical.h"
#include "rules/classical_fit.h"
#include "rules/rules.h"
#include "run_command.h"

namespace qarv::test {
namespace {

using command::Definition;
using command::Finding;
using command::Findings;
using command::ParameterSet;
using command::Severity;
using common::uint64;
using namespace wave_def;
using namespace wave_def::wave_def_sub;

// ---- Arbitrary definitions ---------------------------------------------------------------------

Definition Classical(RandomValues* random) {
  Definition out{&command::kClassicalFamily, {}, {}};
  CWaveDefClassical set = RandomClassical(random);
  if (random->OneIn(25)) set.SetFmax(random->Hostile());
  if (random->OneIn(40)) set.SetMainAmpl(0.0);
  if (random->OneIn(40)) set.SetMainWidth(0.0);
  if (random->OneIn(12)) set.SetMainShift(random->Value(-1, 1));
  if (random->OneIn(6)) {
    set.SetAddCmp(true);
    set.SetCmpType(static_cast<CWaveDefClassical::COMP_TYPE>(random->Below(6)));
    set.SetCmpPre(random->Value(0, 2));
    set.SetCmpPost(random->Value(0, 2));
    if (random->OneIn(10)) {
      set.SetCmpPre(0.0);
      set.SetCmpPost(0.0);
    }
    set.SetCmpNonSym(random->OneIn(2));
    set.SetNsamp(random->OneIn(2) ? set.GetNsamp() : 1024);
    set.SetMainWidth(random->OneIn(2) ? set.GetMainWidth() : 0.01);
  }
  out.settings.SetFsamp(random->OneIn(2) ? 2.56 * set.GetFmax() : random->Value(100, 5000));
  out.set = set;
  return out;
}

Definition Symmetry(RandomValues* random) {
  Definition out{&command::kSymmetryFamily, {}, {}};
  CWaveDefSymmetry set;
  set.SetWaveKind(random->OneIn(20) ? TRAPEZOID : random->Pick({HALF_SINE, TRIANGLE, HAVERSINE}));
  set.SetPeak(random->Value(-10, 10));
  set.SetWidth(random->OneIn(8) ? random->Between(0, 0.003) : random->Value(0.001, 0.1));
  set.SetPeakPos(random->Value(-0.1, 1.1));
  set.SetPreZero(random->Value(-0.002, 0.02));
  set.SetMidZero(random->Value(-0.02, 0.02));
  set.SetPostZero(random->Value(-0.002, 0.02));
  set.SetMidZeroBackward(random->Value(-0.02, 0.02));
  set.SetDevideComp(random->OneIn(2));
  set.SetCompForward(random->OneIn(2));
  out.settings.SetFsamp(random->Value(200, 3000));
  out.set = set;
  return out;
}

Definition Burst(RandomValues* random) {
  using Set = CWaveDefSineBeatBurst;
  Definition out{&command::kSineBeatBurstFamily, {}, {}};
  Set set;
  set.SetWaveKind(static_cast<Set::WAVE_KIND>(random->OneIn(12) ? 7 : 1 + random->Below(2)));
  set.SetAmpl(random->Value(-5, 5));
  set.SetFreq(random->Value(-5, 200));
  set.SetCycle(random->Below(9));
  set.SetFrame(random->Below(5));
  set.SetRestTime(random->Value(-0.05, 0.05));
  set.SetEdging(random->OneIn(2), random->Below(5), random->Below(5), Set::WINDOW_RAMP);
  out.settings.SetFsamp(random->Value(100, 3000));
  out.set = set;
  return out;
}

Definition Gradual(RandomValues* random) {
  using Set = CWaveDefGradual;
  Definition out{&command::kGradualFamily, {}, {}};
  Set set;
  set.SetPeriod(random->Value(0, 0.05));
  set.SetLevelBeg(random->Value(-5, 5));
  set.SetLevelEnd(random->Value(-5, 5));
  set.SetLengthType(static_cast<Set::LENGTH_TYPE>(random->Below(4)));
  set.SetWaveTime(random->Value(-0.1, 0.5));
  set.SetWaveSlope(random->OneIn(5) ? 0.0 : random->Value(-50, 50));
  set.SetPreTime(random->Value(0, 0.1));
  set.SetNsamp(random->Below(300));
  out.settings.SetFsamp(random->Value(100, 3000));
  out.set = set;
  return out;
}

Definition Single(RandomValues* random) {
  Definition out{&command::kSingleFamily, {}, {}};
  CWaveDefSingle set;
  set.SetPeriod(random->Value(0, 0.05));
  set.SetPeakLevel(random->Value(-5, 5));
  set.SetEdgeTime(random->Value(0, 0.2));
  set.SetNsamp(random->OneIn(10) ? 0 : random->Below(300));
  out.settings.SetFsamp(random->Value(100, 3000));
  out.set = set;
  return out;
}

Definition Damping(RandomValues* random) {
  using com_def::comdefconst::SYNC_WAVE_TYPE;
  Definition out{&command::kDampingFamily, {}, {}};
  CWaveDefDamping set;
  set.SetNsamp(random->OneIn(10) ? 0 : random->Below(300));
  set.SetSyncWaveType(static_cast<SYNC_WAVE_TYPE>(random->Below(5)));
  set.SetFreq(random->Value(1, 50));
  set.SetZeta(random->Value(0, 0.9));
  for (unsigned int i = random->Below(4); i > 0; --i) {
    CWaveDefDampingElm elm;
    elm.SetFreq(random->Value(1, 300));
    elm.SetAmpl(random->Value(-5, 5));
    elm.SetZeta(random->Value(0, 0.2));
    elm.SetNumHalf(random->Below(12));
    elm.SetDelay(random->Value(0, 0.2));
    set.Add(elm);
  }
  out.settings.SetFsamp(random->Value(100, 3000));
  out.set = set;
  return out;
}

Definition RandomDefinition(RandomValues* random) {
  using Make = Definition (*)(RandomValues*);
  return random->Pick<Make>(
      {Classical, Classical, Classical, Symmetry, Burst, Gradual, Single, Damping})(random);
}

/// The length of a waveform that a definition makes, where it is made of times.  [sample]
uint64 LengthOf(const Definition& definition) {
  const double fsamp = definition.settings.GetFsamp();
  if (const auto* set = std::get_if<CWaveDefSymmetry>(&definition.set)) {
    const auto total = LayOut(*set, fsamp).total;
    return total.IsPositive() ? total.Count() : 0;
  }
  if (const auto* set = std::get_if<CWaveDefSineBeatBurst>(&definition.set)) {
    const auto total = LayOut(*set, fsamp).total;
    return total.IsPositive() ? total.Count() : 0;
  }
  return 0;
}

bool Fails(const Findings& findings) {
  return !findings.empty() && findings.front().severity == Severity::Fails;
}

std::string TextOf(const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings) text.append(FindingText(finding)).append("\n");
  return text;
}

TEST(Rules, FailExactlyWhereTheLibraryRefuses) {
  RandomValues random(20260);
  std::map<std::string, int> defined;
  std::map<std::string, int> refused;
  constexpr int kRounds = 40000;
  int checked = 0;
  for (int round = 0; round < kRounds; ++round) {
    const Definition definition = RandomDefinition(&random);
    if (LengthOf(definition) > 1000000) continue;  // a matter of the machine's memory
    ++checked;
    CWaveDef def;
    const bool done = DefineWave(definition, &def);
    const Findings findings = command::FindingsOf(definition);
    ASSERT_EQ(Fails(findings), !done)
        << definition.family->key << ", round " << round << ": " << TextOf(findings);
    ++(done ? defined : refused)[definition.family->key];
  }
  EXPECT_GT(checked, 30000);
  EXPECT_GT(defined["Classical"], 3000);
  EXPECT_GT(refused["Classical"], 3000);
  for (const char* const key : {"Symmetry", "SineBeatBurst", "Gradual", "Single", "Damping"}) {
    EXPECT_GT(defined[key], 500) << key;
    EXPECT_GT(refused[key], 200) << key;
  }
}

// ---- What is proposed --------------------------------------------------------------------------

/// Sets a number of a definition by its key; false for a key that the test does not know.
bool Assign(const std::string& key, double v, Definition* definition) {
  const auto count = [v] { return static_cast<unsigned int>(v); };
  if (key == "Fsamp") return definition->settings.SetFsamp(v), true;
  if (key == "TolUpperRat") return definition->settings.SetTolUpperRat(v), true;
  if (key == "TolLowerRat") return definition->settings.SetTolLowerRat(v), true;
  if (auto* const set = std::get_if<CWaveDefClassical>(&definition->set)) {
    if (key == "MainAmpl") return set->SetMainAmpl(v), true;
    if (key == "MainWidth") return set->SetMainWidth(v), true;
    if (key == "MainShift") return set->SetMainShift(v), true;
    if (key == "Fmax") return set->SetFmax(v), true;
    if (key == "Nsamp") return set->SetNsamp(count()), true;
  }
  if (auto* const set = std::get_if<CWaveDefSymmetry>(&definition->set)) {
    if (key == "PeakPos") return set->SetPeakPos(v), true;
  }
  if (auto* const set = std::get_if<CWaveDefSineBeatBurst>(&definition->set)) {
    if (key == "RestTime") return set->SetRestTime(v), true;
  }
  if (auto* const set = std::get_if<CWaveDefGradual>(&definition->set)) {
    if (key == "WaveSlope") return set->SetWaveSlope(v), true;
    if (key == "Nsamp") return set->SetNsamp(count()), true;
  }
  if (auto* const set = std::get_if<CWaveDefSingle>(&definition->set)) {
    if (key == "EdgeTime") return set->SetEdgeTime(v), true;
  }
  if (auto* const set = std::get_if<CWaveDefDamping>(&definition->set)) {
    if (key == "Nsamp") return set->SetNsamp(count()), true;
  }
  return false;
}

TEST(Rules, WhatIsProposedForAMisfitIsTaken) {
  RandomValues random(31);
  std::map<std::string, int> tried;
  for (int round = 0; round < 20000; ++round) {
    const Definition definition = Classical(&random);
    const auto& set = std::get<CWaveDefClassical>(definition.set);
    if (set.GetAddCmp()) continue;
    const Findings findings = command::FindingsOf(definition);
    if (!Fails(findings)) continue;
    if (findings.size() > 1 && findings[1].severity == Severity::Fails) continue;
    for (const command::Remedy& remedy : findings.front().remedies) {
      if (remedy.key == "Nsamp" && remedy.value > 1e6) continue;
      Definition mended = definition;
      ASSERT_TRUE(Assign(remedy.key, remedy.value, &mended)) << remedy.key;
      const Findings left = command::FindingsOf(mended);
      ASSERT_EQ(TextOf(left).find("lies at sample"), std::string::npos)
          << round << ": " << TextOf(findings) << TextOf(left);
      CWaveDef def;
      ASSERT_EQ(DefineWave(mended, &def), !Fails(left)) << round;
      if (!Fails(left)) ++tried[remedy.key];
    }
  }
  EXPECT_GT(tried["MainShift"], 100);
  EXPECT_GT(tried["Nsamp"], 100);
  EXPECT_GT(tried["MainWidth"], 100);
  EXPECT_GT(tried["MainAmpl"], 50);
}

TEST(Rules, TheProposedFrameIsTheShortestAndTheProposedShiftTheNearest) {
  RandomValues random(32);
  int frames = 0;
  int shifts = 0;
  for (int round = 0; round < 3000; ++round) {
    CWaveDefClassical set = RandomClassical(&random);
    if (set.GetNsamp() < 8 || !(set.GetMainWidth() > 0.0) || command::FitsFrame(set)) continue;
    for (const command::Remedy& remedy : command::FittingFrames(set)) {
      CWaveDefClassical mended = set;
      if (remedy.key == "Nsamp") {
        mended.SetNsamp(static_cast<unsigned int>(remedy.value));
        ASSERT_TRUE(command::FitsFrame(mended)) << round;
        mended.SetNsamp(mended.GetNsamp() - 1);
        ASSERT_FALSE(command::FitsFrame(mended)) << round;
        ++frames;
      } else {
        ASSERT_EQ(remedy.key, "MainShift");
        mended.SetMainShift(remedy.value);
        ASSERT_TRUE(command::FitsFrame(mended)) << round;
        // A sample back towards where the pulse was asked for.
        const double back = remedy.value < set.GetMainShift() ? 1.0 : -1.0;
        mended.SetMainShift(remedy.value + back / set.GetNsamp());
        ASSERT_FALSE(command::FitsFrame(mended)) << round;
        ++shifts;
      }
    }
  }
  EXPECT_GT(frames, 200);
  EXPECT_GT(shifts, 200);
}

TEST(Rules, EveryProposalEndsTheRuleThatMadeIt) {
  RandomValues random(33);
  std::map<std::string, int> tried;
  for (int round = 0; round < 20000; ++round) {
    Definition definition = RandomDefinition(&random);
    definition.settings.SetTolUpperRat(random.Between(-0.1, 0.3));
    definition.settings.SetTolLowerRat(random.Between(-0.3, 0.1));
    if (LengthOf(definition) > 1000000) continue;
    for (const Finding& finding : command::FindingsOf(definition)) {
      for (const command::Remedy& remedy : finding.remedies) {
        if (remedy.key == "Nsamp" && remedy.value > 1e5) continue;
        Definition mended = definition;
        if (!Assign(remedy.key, remedy.value, &mended)) {
          // The levels of a band have their own test below.
          ASSERT_NE(finding.text.find("entered positive"), std::string::npos) << remedy.key;
          continue;
        }
        for (const Finding& left : command::FindingsOf(mended)) {
          ASSERT_NE(left.text, finding.text)
              << definition.family->key << ", round " << round << ": " << FindingText(finding);
        }
        ++tried[remedy.key];
      }
    }
  }
  for (const char* const key :
       {"MainShift", "Nsamp", "MainWidth", "MainAmpl", "Fmax", "Fsamp", "PeakPos", "RestTime",
        "WaveSlope", "EdgeTime", "TolUpperRat", "TolLowerRat"}) {
    EXPECT_GT(tried[key], 20) << key;
  }
}

TEST(Rules, ABeatIsSaidToBeNothingWhereItIs) {
  RandomValues random(34);
  int nothing = 0;
  int something = 0;
  for (int round = 0; round < 20000; ++round) {
    const Definition definition = Burst(&random);
    if (LengthOf(definition) > 100000) continue;
    CWaveDef def;
    if (!DefineWave(definition, &def) || def.GetNsamp() < 2) continue;
    const auto& set = std::get<CWaveDefSineBeatBurst>(definition.set);
    const double fsamp = definition.settings.GetFsamp();
    if (LayOut(set, fsamp).packet < 4 || !(std::fabs(set.GetAmpl()) > 0.01)) continue;
    if (!(set.GetFreq() > 1.0 && set.GetFreq() < 0.4 * fsamp)) continue;
    const bool said =
        TextOf(command::FindingsOf(definition)).find("overlap to nothing") != std::string::npos;
    const bool zero = def.GetWave().GetAbsMax(0, 0) == 0.0;
    ASSERT_EQ(said, zero) << round;
    ++(said ? nothing : something);
  }
  EXPECT_GT(nothing, 20);
  EXPECT_GT(something, 1000);
}

// ---- One by one --------------------------------------------------------------------------------

class Check : public ::testing::Test {
 protected:
  /// Expects a line that holds the text, and the exit code.
  void Expect(const std::string& json, int code, const std::string& line) const {
    WriteText(folder / "def.json", json);
    const auto result = RunCommand({"check", folder / "def.json"});
    EXPECT_EQ(result.code, code) << json << result.out << result.err;
    EXPECT_NE(("\n" + result.out).find("\n" + line), std::string::npos)
        << json << "\n"
        << result.out << " lacks " << line;
    EXPECT_EQ(result.err, "");
  }
  static std::string With(const std::string& base, const std::string& changes) {
    auto json = nlohmann::json::parse(base);
    json.merge_patch(nlohmann::json::parse(changes));
    return json.dump();
  }
  void Pulse(const std::string& changes, int code, const std::string& line) const {
    const std::string base = R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50,
        "MainWidth": 0.01, "Fmax": 1000, "Nsamp": 256, "TolKind": "TOL_FIXED_4"}})";
    Expect(With(base, changes), code, line);
  }

  TempFolder folder;
};

// An optimised compensation spends the tolerance of its pulse on the stroke.
TEST_F(Check, EveryExampleIsCleanButTheOptimisedOnes) {
  const std::set<std::string> optimised{"compensated_optimized", "compensated_sawtooth"};
  int count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(QARV_SOURCE_DIR "/examples/definitions")) {
    if (entry.path().extension() != ".json") continue;
    const auto result = RunCommand({"check", entry.path().string()});
    ++count;
    if (optimised.contains(entry.path().stem().string())) {
      EXPECT_EQ(result.code, 3);
      EXPECT_EQ(result.out.find("warning: the velocity change of the pulse is 2"), 0U)
          << result.out;
      EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1) << result.out;
      continue;
    }
    EXPECT_EQ(result.code, 0) << entry.path() << result.out;
    EXPECT_EQ(result.out, "clean\n");
  }
  EXPECT_GT(count, 30);
}

TEST_F(Check, NamesThePlaceThatAPulseNeeds) {
  Pulse(R"({"Classical": {"MainShift": -0.45}})", 1,
        "fails: the front region of the band lies at sample -7, before the frame of 256 samples; "
        "works with MainShift -0.42578125 or Nsamp 380\n");
  Pulse(R"({"Classical": {"MainWidth": 0.2}})", 1, "fails: the front region of the band lies at");
  Pulse(R"({"Classical": {"MainShift": 0.6}})", 1,
        "fails: the end of the pulse lies at sample 293");
}

TEST_F(Check, NamesWhatIsMissingOrNotOffered) {
  Pulse(R"({"Classical": {"WaveKind": "TRIANGLE"}})", 1,
        "fails: TRIANGLE does not offer this TolKind; it offers TOL_USER_DEF\n");
  Pulse(R"({"Classical": {"WaveKind": "TERMINAL_PEAK_SAWTOOTH", "TolKind": "TOL_FIXED_3"}})", 1,
        "fails: TERMINAL_PEAK_SAWTOOTH does not offer this TolKind; it offers all but");
  Pulse(R"({"Classical": {"TolKind": "TOL_NONE"}})", 1, "fails: TolKind is not set\n");
  Pulse(R"({"Classical": {"WaveKind": 9}})", 1, "fails: WaveKind is not set\n");
  Pulse(R"({"Classical": {"AddCmp": true}})", 1, "fails: CmpType is not set\n");
  Pulse(R"({"Classical": {"TolKind": "TOL_SPECIFY"}})", 1,
        "fails: TolSpecify.WaveKind is not the shape of the pulse\n");
  Pulse(R"({"Classical": {"MainAmpl": 0}})", 1, "fails: MainAmpl is 0\n");
  Pulse(R"({"Classical": {"MainWidth": 0}})", 1, "fails: MainWidth is 0\n");
  Pulse(R"({"Classical": {"Fmax": 0}})", 1, "fails: Fmax is 0, which gives no sample interval\n");
  Pulse(R"({"Classical": {"Nsamp": 1}})", 1, "fails: Nsamp is 1, below 2\n");
  Pulse(R"({"Classical": {"MainWidth": 0.0001}})", 1,
        "fails: MainWidth is 0.256 samples, fewer than 2; works with MainWidth 0.00078125\n");
}

TEST_F(Check, SaysWhyAPulseIsNotCompensated) {
  Pulse(R"({"Classical": {"AddCmp": true, "CmpType": "CMP_COSINE", "CmpPre": 1, "CmpPost": 1}})", 1,
        "fails: AddCmp: no room for the compensation: before the pulse");
}

TEST_F(Check, SaysWhatToSetWhereBothScalesAreZero) {
  const auto type = [](const char* name) {
    return std::string(R"({"Classical": {"AddCmp": true, "Nsamp": 4096, "CmpType": ")") + name +
           R"("}})";
  };
  for (const char* const name : {"CMP_RAMP", "CMP_COSINE", "CMP_FLAT_COSINE"}) {
    Pulse(type(name), 1,
          "fails: AddCmp: CmpPre and CmpPost are both 0, so that neither side may be compensated; "
          "set both, usually to 1\n");
  }
  Pulse(type("CMP_OPTIMIZED"), 3,
        "warning: AddCmp: CmpPre and CmpPost are both 0, so that the bands before and after the "
        "pulse are the least, 1 % of the peak; set both, usually to 1\n");
}

TEST_F(Check, WarnsOfBandsWithoutWidth) {
  const std::string line = "warning: the bands have no width at ";
  const auto pulse = [](const char* shape, int kind) {
    return std::string(R"({"Classical": {"WaveKind": ")") + shape + R"(", "TolKind": "TOL_FIXED_)" +
           std::to_string(kind) + R"("}})";
  };
  for (const int kind : {1, 2}) Pulse(pulse("HALF_SINE", kind), 3, line);
  for (const int kind : {1, 3, 4, 6}) Pulse(pulse("TRAPEZOID", kind), 3, line);
  for (const int kind : {1, 5, 9}) Pulse(pulse("HAVERSINE", kind), 3, line);
  Pulse(R"({"Classical": {"TolKind": "TOL_USER_DEF", "TolUserDef": {"TolLeftU": 0.1}}})", 3, line);
  for (const int kind : {3, 4, 5, 6, 7, 8, 9}) Pulse(pulse("HALF_SINE", kind), 0, "clean\n");
  for (const int kind : {2, 5, 7, 8, 9}) Pulse(pulse("TRAPEZOID", kind), 0, "clean\n");
  for (const int kind : {1, 4, 5, 6, 7, 8, 9}) {
    Pulse(pulse("TERMINAL_PEAK_SAWTOOTH", kind), 0, "clean\n");
  }
}

TEST_F(Check, WarnsOfANegativeFmax) {
  Pulse(R"({"Classical": {"Fmax": -1000}})", 3,
        "warning: Fmax is -1000, which is no frequency; works with Fmax 1000\n");
}

// ---- What a compensation takes of the velocity change ------------------------------------------

class CheckVelocity : public Check {
 protected:
  static std::string Optimised(const std::string& changes) {
    return With(R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50, "MainWidth": 0.011,
        "Fmax": 2000, "Nsamp": 4096, "TolKind": "TOL_FIXED_4", "AddCmp": true, "CmpNonSym": true,
        "CmpType": "CMP_OPTIMIZED", "CmpPre": 1, "CmpPost": 1}})",
                changes);
  }
  static std::string Level(double level) {
    return R"({"Classical": {"OptRatLevel": )" + std::to_string(level) + "}}";
  }
};

TEST_F(CheckVelocity, NamesTheLargestLevelThatKeepsIt) {
  for (const double level : {0.05, 0.2}) {  // of the bands outside the pulse
    const std::string l = std::to_string(level);
    const std::string pulse = Optimised(
        R"({"Classical": {"TolKind": "TOL_USER_DEF", "TolUserDef": {"TolMainU": 0.1,
           "TolMainL": 0.1, "TolFrontA": 0.3, "TolRearA": 0.3, "TolLeftU": )" +
        l + R"(, "TolLeftL": )" + l + R"(, "TolRightU": )" + l + R"(, "TolRightL": )" + l + "}}}");
    WriteText(folder / "def.json", With(pulse, Level(1)));
    const auto result = RunCommand({"check", folder / "def.json"});
    EXPECT_EQ(result.code, 3) << result.out;
    EXPECT_EQ(result.out.find("warning: the velocity change of the pulse is 12."), 0U)
        << result.out;
    EXPECT_NE(result.out.find(" % below nominal, beyond the usual 10 %; works with OptRatLevel 0."),
              std::string::npos)
        << result.out;
    const double found = std::stod(result.out.substr(result.out.rfind(' ')));
    Expect(With(pulse, Level(found)), 0, "clean\n");
    Expect(With(pulse, Level(found + 0.01)), 3, "warning: the velocity change of the pulse is 10");
  }
}

TEST_F(CheckVelocity, SaysThatNoLevelKeepsIt) {
  for (const double level : {0.0, 0.005, 0.5, 1.0, 3.0}) {
    Expect(Optimised(Level(level)), 3, "warning: the velocity change of the pulse is ");
    EXPECT_NE(RunCommand({"check", folder / "def.json"})
                  .out.find(" % below nominal, beyond the usual 10 %; not even OptRatLevel 0 keeps "
                            "it\n"),
              std::string::npos)
        << level;
  }
}

TEST_F(CheckVelocity, TheOtherTypesKeepIt) {
  for (const char* const type : {"CMP_RAMP", "CMP_COSINE", "CMP_FLAT_COSINE"}) {
    Expect(Optimised(std::string(R"({"Classical": {"CmpType": ")") + type + R"("}})"), 0,
           "clean\n");
  }
}

TEST_F(Check, NamesEveryBrokenRuleAtOnce) {
  WriteText(folder / "def.json",
            R"({"Fsamp": 0, "Gradual": {"Period": 0, "LevelBeg": 1, "LevelEnd": 1,
                "LengthType": "LENGTH_BY_SLOPE", "Nsamp": 0}})");
  const auto result = RunCommand({"check", folder / "def.json"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out,
            "fails: Fsamp is 0\nfails: Nsamp is 0\nfails: WaveSlope is 0\n"
            "warning: Period is 0, so that the samples are no numbers\n");
}

TEST_F(Check, WarnsOfPulsesThatNobodyWants) {
  Pulse(R"({"Classical": {"MainWidth": -0.01}})", 3, "warning: MainWidth is -25.6 samples, and is");
  Pulse(R"({"Classical": {"TolKind": "TOL_FIXED_1", "MainWidth": 0.1}})", 3,
        "warning: MainWidth is 256 samples, and is cut to the frame of 256; works with MainWidth "
        "0.0992187 or Nsamp 258\n");
  Pulse(R"({"Classical": {"MainAmpl": -50}})", 3,
        "warning: MainAmpl is -50, so that its bands cross; works with MainAmpl 50\n");
  Pulse(R"({"Classical": {"MainAmpl": -50}})", 3,
        "warning: the upper band lies below the lower one at ");
  Pulse(R"({"Classical": {"MainAmpl": -50, "WaveKind": "TRAPEZOID"}})", 3,
        "warning: MainAmpl is -50, and a TRAPEZOID that is negative is not drawn");
  Pulse(R"({"Classical": {"MainAmpl": -50, "WaveKind": "TRIANGLE", "TolKind": "TOL_USER_DEF"}})", 1,
        "fails: the pulse has no positive sample, to which its band could be scaled; works with "
        "MainAmpl 50\n");
  Pulse(R"({"Classical": {"MainWidth": 0.003}})", 3,
        "warning: the pulse has 7.68 samples, fewer than 10; works with Fmax 1302.09\n");
  Pulse(R"({"Fsamp": 2000})", 3,
        "warning: Fsamp is 2000 Hz, but the samples are taken at 2560 Hz, 2.56 Fmax; works with "
        "Fsamp 2560\n");
  Pulse(R"({"Classical": {"TolKind": "TOL_USER_DEF",
            "TolUserDef": {"TolMainU": 0.1, "TolMainL": -0.1}}})",
        3,
        "warning: TolMainL is -0.1; levels of both bands are entered positive; works with "
        "TolMainL 0.1\n");
}

TEST_F(Check, WarnsOfSinesThatNobodyWants) {
  const std::string single = R"({"Fsamp": 1000, "TolUpperRat": 0.1, "TolLowerRat": -0.1,
      "Single": {"Period": 0.02, "PeakLevel": 2, "EdgeTime": 0.05, "Nsamp": 200}})";
  const auto sine = [&](const std::string& changes, const std::string& line) {
    Expect(With(single, changes), 3, line);
  };
  Expect(single, 0, "clean\n");
  sine(R"({"TolUpperRat": -0.1})",
       "warning: TolUpperRat is -0.1, so that the upper band lies below the waveform; works with "
       "TolUpperRat 0.1\n");
  sine(R"({"TolLowerRat": 0.05})",
       "warning: TolLowerRat is 0.05, so that the lower band lies above the waveform; works with "
       "TolLowerRat -0.05\n");
  sine(R"({"TolLowerRat": 0.05})",
       "warning: the waveform leaves its own bands at 200 of 200 samples, first at sample 0\n");
  sine(R"({"Single": {"Period": 0.008}})",
       "warning: a period has 8 samples, fewer than 10; works with Fsamp 1250\n");
  sine(R"({"Single": {"EdgeTime": 0.15}})",
       "warning: two edges of 0.15 s do not fit 200 samples; works with EdgeTime 0.1\n");
  sine(R"({"Single": {"PeakLevel": 0}})", "warning: PeakLevel is 0, and so is the waveform\n");
  sine(R"({"Single": {"Period": 0}})", "warning: 200 of 200 samples are no numbers\n");
  sine(R"({"Fsamp": -1000})", "warning: Fsamp is -1000, which is no sampling frequency\n");

  const std::string gradual = R"({"Fsamp": 1000, "Gradual": {"Period": 0.02, "LevelBeg": 1,
      "LevelEnd": 2, "LengthType": "LENGTH_BY_TIME", "WaveTime": 0.1, "Nsamp": 200}})";
  Expect(gradual, 0, "clean\n");
  Expect(With(gradual, R"({"Gradual": {"WaveTime": 0.3}})"), 3,
         "warning: rise and ramp take 300 of 200 samples, so that the fall is cut; works with "
         "Nsamp 301\n");
  Expect(With(gradual, R"({"Gradual": {"LengthType": "LENGTH_BY_SLOPE", "WaveSlope": -10}})"), 3,
         "warning: WaveSlope is -10, which leads away from LevelEnd; works with WaveSlope 10\n");

  const std::string burst = R"({"Fsamp": 1000, "SineBeatBurst": {"WaveKind": "SINE_BURST",
      "Ampl": 1, "Freq": 20, "Cycle": 5, "Frame": 2, "RestTime": 0.1}})";
  Expect(burst, 0, "clean\n");
  Expect(With(burst, R"({"SineBeatBurst": {"RestTime": -0.1}})"), 3,
         "warning: RestTime is -0.1 s, so that packets overlap; works with RestTime 0\n");
  Expect(With(burst, R"({"SineBeatBurst": {"Edging": true, "EdgeRise": 3, "EdgeFall": 3}})"), 3,
         "warning: tapers of 3 and 3 cycles overlap in a packet of 5\n");
  Expect(With(burst, R"({"SineBeatBurst": {"RestTime": -1}})"), 1,
         "fails: packets of 250 and rests of -999 samples leave none; works with RestTime 0\n");
  // Of two packets of 250 samples the second begins before the first.  (The library tells of what
  // cannot be copied too.)
  WriteText(folder / "def.json",
            With(burst, R"({"SineBeatBurst": {"WaveKind": "SINE_BEAT", "RestTime": -0.26}})"));
  const auto nothing = RunCommand({"check", folder / "def.json"});
  EXPECT_EQ(nothing.code, 3);
  EXPECT_NE(nothing.out.find("warning: RestTime is -0.26 s, so that packets of 250 samples overlap "
                             "to nothing: the waveform is 0; works with RestTime 0\n"),
            std::string::npos)
      << nothing.out;
  Expect(With(burst, R"({"SineBeatBurst": {"Freq": 150}})"), 3,
         "warning: a period has 6.67 samples, fewer than 10; works with Fsamp 1500\n");
}

TEST_F(Check, WarnsOfSymmetryWavesThatNobodyWants) {
  const std::string base = R"({"Fsamp": 1000, "Symmetry": {"WaveKind": "HALF_SINE", "Peak": 2,
      "Width": 0.02, "MidZero": 0.01}})";
  Expect(base, 0, "clean\n");
  Expect(With(base, R"({"Symmetry": {"Width": 0.004}})"), 3,
         "warning: a pulse has 4 samples, fewer than 10; works with Fsamp 2500\n");
  Expect(With(base, R"({"Symmetry": {"Width": 0.0001}})"), 3,
         "warning: Width is 0.1 samples, so that there is no pulse\n");
  Expect(With(base, R"({"Symmetry": {"MidZero": -0.01}})"), 3,
         "warning: a silence lasts -0.01 s, so that pulses overlap\n");
}

TEST_F(Check, WarnsOfDampedSinesBehindTheRecord) {
  const std::string base = R"({"Fsamp": 1000, "Damping": {"Nsamp": 500,
      "SyncWaveType": "SYNC_WAVE_DAMPED_SINE", "Freq": 20, "Zeta": 0.5,
      "Elements": [{"Freq": 40, "Ampl": 1, "Zeta": 0.05, "Delay": 0.05}]}})";
  Expect(base, 0, "clean\n");
  // Displacement left by a component far apart delays everything so that it can be compensated.
  Expect(With(base, R"({"Damping": {"Nsamp": 20, "Elements": [
             {"Freq": 40, "Ampl": 1, "Zeta": 0.05, "Delay": 0},
             {"Freq": 40, "Ampl": -0.98, "Zeta": 0.05, "Delay": 0.1}]}})"),
         3,
         "warning: every component begins outside the record of 20 samples (all are delayed by ");
  Expect(With(base, R"({"Damping": {"SyncWaveType": "SYNC_WAVE_WAVELET", "Elements": [
             {"Freq": 40, "Ampl": 1, "NumHalf": 5, "Delay": 0},
             {"Freq": 40, "Ampl": 1, "NumHalf": 5, "Delay": 0.7}]}})"),
         3,
         "warning: 1 of 2 components begin outside the record of 500 samples; works with Nsamp "
         "702\n");
  Expect(With(base, R"({"Damping": {"Elements": [{"Freq": 40, "Ampl": 0}]}})"), 3,
         "warning: no component has an amplitude\n");
  Expect(With(base, R"({"Damping": {"Elements": [{"Freq": 40, "Ampl": 1}]}})"), 3,
         "warning: Zeta of a component is not above 0, so that it does not decay\n");
  Expect(With(base, R"({"Damping": {"Elements": [{"Freq": 200, "Ampl": 1, "Zeta": 0.1}]}})"), 3,
         "warning: the shortest period has 5 samples, fewer than 10; works with Fsamp 2000\n");
}

TEST_F(Check, AWaveformBeyondTheMemoryWouldFail) {
  Expect(R"({"Fsamp": 1000, "SineBeatBurst": {"WaveKind": "SINE_BEAT", "Ampl": 1, "Freq": 1,
             "Cycle": 1, "Frame": 4294967295, "RestTime": 1e30}})",
         1, "fails: the waveform does not fit into memory\n");
}

TEST_F(Check, InputThatIsNoDefinitionIsOneLineAndExitTwo) {
  WriteText(folder / "def.json", "{}");
  const auto result = RunCommand({"check", folder / "def.json"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
}

}  // namespace
}  // namespace qarv::test
