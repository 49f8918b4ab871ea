// The rules of a definition: that they agree with the library, and that what they propose works.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <new>
#include <set>
#include <stdexcept>

#include "definition/check.h"
#include "family/packet_layout.h"
#include "family/symmetry_layout.h"
#include "random_classical.h"
#include "rules/classical_fit.h"
#include "rules/level_search.h"

namespace qarv::test {
namespace {

using common::uint64;
using definition::Definition;
using definition::Finding;
using definition::Findings;
using definition::ParameterSet;
using definition::Severity;
using namespace wave_def;
using namespace wave_def::wave_def_sub;

// ---- Arbitrary definitions ---------------------------------------------------------------------

Definition Classical(RandomValues* random) {
  Definition out{};
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
  Definition out{};
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
  Definition out{};
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
  Definition out{};
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
  Definition out{};
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
  Definition out{};
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
    const bool done = TryToGenerate(definition, &def);
    const Findings findings = definition::BrokenRulesOf(definition);
    ASSERT_EQ(Fails(findings), !done)
        << definition.GetFamily().key << ", round " << round << ": " << TextOf(findings);
    ++(done ? defined : refused)[definition.GetFamily().key];
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
    if (key == "OptRatLevel") return set->SetOptRatLevel(v), true;
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
    const Findings findings = definition::BrokenRulesOf(definition);
    if (!Fails(findings)) continue;
    if (findings.size() > 1 && findings[1].severity == Severity::Fails) continue;
    for (const definition::Remedy& remedy : findings.front().remedies) {
      if (remedy.key == "Nsamp" && remedy.value > 1e6) continue;
      Definition mended = definition;
      ASSERT_TRUE(Assign(remedy.key, remedy.value, &mended)) << remedy.key;
      const Findings left = definition::BrokenRulesOf(mended);
      ASSERT_EQ(TextOf(left).find("lies at sample"), std::string::npos)
          << round << ": " << TextOf(findings) << TextOf(left);
      CWaveDef def;
      ASSERT_EQ(TryToGenerate(mended, &def), !Fails(left)) << round;
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
    if (set.GetNsamp() < 8 || !(set.GetMainWidth() > 0.0) || definition::FitsFrame(set)) continue;
    for (const definition::Remedy& remedy : definition::FittingFrames(set)) {
      CWaveDefClassical mended = set;
      if (remedy.key == "Nsamp") {
        mended.SetNsamp(static_cast<unsigned int>(remedy.value));
        ASSERT_TRUE(definition::FitsFrame(mended)) << round;
        mended.SetNsamp(mended.GetNsamp() - 1);
        ASSERT_FALSE(definition::FitsFrame(mended)) << round;
        ++frames;
      } else {
        ASSERT_EQ(remedy.key, "MainShift");
        mended.SetMainShift(remedy.value);
        ASSERT_TRUE(definition::FitsFrame(mended)) << round;
        // A sample back towards where the pulse was asked for.
        const double back = remedy.value < set.GetMainShift() ? 1.0 : -1.0;
        mended.SetMainShift(remedy.value + back / set.GetNsamp());
        ASSERT_FALSE(definition::FitsFrame(mended)) << round;
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
    for (const Finding& finding : definition::BrokenRulesOf(definition)) {
      for (const definition::Remedy& remedy : finding.remedies) {
        if (remedy.key == "Nsamp" && remedy.value > 1e5) continue;
        Definition mended = definition;
        if (!Assign(remedy.key, remedy.value, &mended)) {
          // The levels of a band have their own test below.
          ASSERT_NE(finding.text.find("entered positive"), std::string::npos) << remedy.key;
          continue;
        }
        for (const Finding& left : definition::BrokenRulesOf(mended)) {
          ASSERT_NE(left.text, finding.text)
              << definition.GetFamily().key << ", round " << round << ": " << FindingText(finding);
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
  EXPECT_GT(tried["OptRatLevel"], 2);
}

// ---- The search for a level --------------------------------------------------------------------

TEST(LevelNextTo, FindsEveryHundredthInAtMostEightTries) {
  using definition::LevelNextTo;
  for (int edge = 1; edge <= 100; ++edge) {
    int tries = 0;
    const auto from = [&](double level) { return ++tries, level > (edge - 0.5) / 100.0; };
    EXPECT_EQ(LevelNextTo({0.0}, {100.0}, from), edge / 100.0);
    EXPECT_LE(tries, 8) << edge;
    tries = 0;
    const auto upTo = [&](double level) { return ++tries, level < (edge - 0.5) / 100.0; };
    EXPECT_EQ(LevelNextTo({100.0}, {0.0}, upTo), (edge - 1) / 100.0);
    EXPECT_LE(tries, 8) << edge;
  }
}

TEST(LevelNextTo, HasNothingWhereTheFarEndDoesNotServeOrIsTheSame) {
  int tries = 0;
  const auto never = [&](double) { return ++tries, false; };
  const auto always = [&](double) { return ++tries, true; };
  EXPECT_EQ(definition::LevelNextTo({0.0}, {100.0}, never), std::nullopt);
  EXPECT_EQ(tries, 1);
  EXPECT_EQ(definition::LevelNextTo({100.0}, {100.0}, always), std::nullopt);
  EXPECT_EQ(tries, 1);
}

TEST(InHundredths, ClampsALevelAsTheCompensationDoes) {
  const auto down = [](double steps) { return std::floor(steps); };
  for (const auto& [level, steps] : {std::pair(-3.0, 0.0), std::pair(std::nan(""), 0.0),
                                     std::pair(7.0, 100.0), std::pair(0.259, 25.0)}) {
    EXPECT_EQ(definition::InHundredths(level, down).steps, steps) << level;
  }
}

TEST(Check, OfARefusedCompensationHasTheLeastLevelAsAValue) {
  CWaveDefClassical set;
  set.SetWaveKind(HALF_SINE);
  set.SetMainAmpl(50.0);
  set.SetMainWidth(0.01);
  set.SetFmax(1000.0);
  set.SetNsamp(330);
  set.SetTolKind(CWaveDefClassical::TOL_FIXED_4);
  set.SetAddCmp(true);
  set.SetCmpType(CWaveDefClassical::CMP_OPTIMIZED);
  set.SetCmpPre(1.0);
  set.SetCmpPost(1.0);
  Definition definition{};
  definition.settings.SetFsamp(2560.0);
  definition.set = set;
  const Findings findings = definition::Check(definition);
  ASSERT_TRUE(Fails(findings));
  ASSERT_EQ(findings.front().remedies.size(), 1U);
  const auto& [key, least] = findings.front().remedies.front();
  EXPECT_EQ(key, "OptRatLevel");
  for (const double below : {0.0, 0.01}) {
    ASSERT_TRUE(Assign(key, least - below, &definition));
    EXPECT_EQ(Fails(definition::Check(definition)), below > 0.0);
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
    if (!TryToGenerate(definition, &def) || def.GetNsamp() < 2) continue;
    const auto& set = std::get<CWaveDefSineBeatBurst>(definition.set);
    const double fsamp = definition.settings.GetFsamp();
    if (LayOut(set, fsamp).packet < 4 || !(std::fabs(set.GetAmpl()) > 0.01)) continue;
    if (!(set.GetFreq() > 1.0 && set.GetFreq() < 0.4 * fsamp)) continue;
    const bool said = TextOf(definition::BrokenRulesOf(definition)).find("overlap to nothing") !=
                      std::string::npos;
    const bool zero = def.GetWave().GetAbsMax(0, 0) == 0.0;
    ASSERT_EQ(said, zero) << round;
    ++(said ? nothing : something);
  }
  EXPECT_GT(nothing, 20);
  EXPECT_GT(something, 1000);
}

}  // namespace
}  // namespace qarv::test
