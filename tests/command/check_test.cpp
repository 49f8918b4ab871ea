// qarv-wave check: what it says, and its exit codes.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <new>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

#include "run_command.h"

namespace qarv::test {
namespace {

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

TEST_F(Check, NamesTheLeastLevelThatCompensates) {
  const auto level = [](double value) {
    return R"({"Classical": {"OptRatLevel": )" + std::to_string(value) + "}}";
  };
  const std::string crowded = R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50,
      "MainWidth": 0.01, "Fmax": 1000, "Nsamp": 330, "TolKind": "TOL_FIXED_4", "AddCmp": true,
      "CmpType": "CMP_OPTIMIZED", "CmpPre": 1, "CmpPost": 1}})";
  const std::string refusal =
      "fails: AddCmp: no room: no compensation within the bands brings the table home in this "
      "frame";
  Expect(crowded, 1, refusal + "; works with OptRatLevel 0.");
  const std::string out = RunCommand({"check", folder / "def.json"}).out;
  const double least = std::stod(out.substr(out.rfind(' ')));
  ASSERT_GE(least, 0.02);
  for (const double refused : {0.0, least / 2, least - 0.01}) {
    Expect(With(crowded, level(refused)), 1,
           refusal + "; works with OptRatLevel " + out.substr(out.rfind(' ') + 1));
  }
  EXPECT_NE(RunCommand({"generate", folder / "def.json"}).err.find("; works with OptRatLevel 0."),
            std::string::npos);
  WriteText(folder / "def.json", With(crowded, level(least)));
  EXPECT_NE(RunCommand({"check", folder / "def.json"}).code, 1);
  // Where all of the tolerance does not help either, nothing is named.
  const std::string hopeless = With(crowded, R"({"Classical": {"Nsamp": 64}})");
  for (const double l : {0.0, 0.5, 1.0, 3.0}) Expect(With(hopeless, level(l)), 1, refusal + "\n");
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

// A pulse of few samples has another area than the shape that it samples.
TEST_F(CheckVelocity, SaysThatNoLevelKeepsIt) {
  const std::string coarse = Optimised(R"({"Classical": {"MainWidth": 0.00078125, "Nsamp": 64,
      "TolKind": "TOL_FIXED_7"}})");
  for (const double level : {0.0, 0.005, 0.5, 1.0, 3.0}) {
    Expect(With(coarse, Level(level)), 3, "warning: the velocity change of the pulse is ");
    EXPECT_NE(RunCommand({"check", folder / "def.json"})
                  .out.find(" % below nominal, beyond the usual 10 %; not even OptRatLevel 0 keeps "
                            "it\n"),
              std::string::npos)
        << level;
  }
}

TEST_F(CheckVelocity, IsKeptByTheOptimisedTypeThatSpendsNothing) {
  for (const char* const shape : {"HALF_SINE", "TERMINAL_PEAK_SAWTOOTH"}) {
    for (const char* const nonSymmetric : {"true", "false"}) {
      const std::string pulse = Optimised(std::string(R"({"Classical": {"WaveKind": ")") + shape +
                                          R"(", "CmpNonSym": )" + nonSymmetric + "}}");
      Expect(pulse, 0, "clean\n");
      Expect(With(pulse, Level(1)), 3, "warning: the velocity change of the pulse is ");
    }
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

TEST_F(Check, WarnsOfEachLimitOfAMachineThatIsPassed) {
  const std::string shock = kExamples + "compensated_cosine.json";
  const auto check = [&](const std::string& machine) {
    WriteText(folder / "m.json", machine);
    return RunCommand({"check", shock, "--machine", folder / "m.json"});
  };
  const auto passed = check(R"({"Name": "V-9", "MaxAccel": 40, "MaxVelocity": 1, "Stroke": 900})");
  EXPECT_EQ(passed.code, 3);
  EXPECT_EQ(passed.out.find("warning: acceleration: "), 0U) << passed.out;
  EXPECT_NE(passed.out.find("and the machine V-9 has at most 40 g (margin -25 %)\n"
                            "warning: velocity: "),
            std::string::npos)
      << passed.out;
  EXPECT_EQ(std::count(passed.out.begin(), passed.out.end(), '\n'), 2) << passed.out;
  const auto fits = check(R"({"MaxAccel": 60, "MaxVelocity": 9, "Stroke": 900})");
  EXPECT_EQ(fits.code, 0);
  EXPECT_EQ(fits.out, "clean\n");
}

TEST_F(Check, OfARefusedDefinitionSaysNothingOfTheMachine) {
  WriteText(folder / "m.json", R"({"MaxAccel": 40})");
  WriteText(folder / "def.json", R"({"Fsamp": 0, "UnitAmpl": "g", "Single": {"Period": 0.1,
      "PeakLevel": 100, "Nsamp": 0}})");
  const auto result = RunCommand({"check", folder / "def.json", "--machine", folder / "m.json"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out.find("machine"), std::string::npos) << result.out;
}

}  // namespace
}  // namespace qarv::test
