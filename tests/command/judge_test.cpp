// qarv-wave judge: what passes, what fails, and what cannot be judged.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "run_command.h"
#include "shock_record.h"

namespace qarv::test {
namespace {

const double kPi = std::acos(-1.0);

class JudgeCommand : public ::testing::Test {
 protected:
  /// Writes a record of `seconds` at a sampling frequency, whose times begin at `begin`.
  std::string Record(double fsamp, double seconds, const std::function<double(double)>& value,
                     bool times = true, double begin = 0.0) const {
    std::ostringstream text;
    text.precision(17);
    for (int k = 0; k < static_cast<int>(seconds * fsamp); ++k) {
      const double t = k / fsamp;
      if (times) text << begin + t << ",";
      text << value(t) << "\n";
    }
    WriteText(folder / "m.csv", text.str());
    return folder / "m.csv";
  }
  /// The waveform of a definition, as the command writes it.
  std::string OwnWave(const std::string& definition) const {
    EXPECT_EQ(RunCommand({"generate", definition, "--csv", folder / "w.csv"}).code, 0);
    return folder / "w.csv";
  }
  /// The waveform of a definition, turned over.
  std::string OwnWaveUpsideDown(const std::string& definition) const {
    std::istringstream lines(ReadText(OwnWave(definition)));
    std::ostringstream text;
    text.precision(17);
    std::string line;
    std::getline(lines, line);  // the header
    while (std::getline(lines, line)) {
      const auto comma = line.find(',');
      text << line.substr(0, comma + 1) << -std::stod(line.substr(comma + 1)) << "\n";
    }
    WriteText(folder / "turned.csv", text.str());
    return folder / "turned.csv";
  }
  nlohmann::json Verdict(const std::vector<std::string>& arguments, int code) const {
    std::vector<std::string> all{"judge"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.insert(all.end(), {"--json", folder / "v.json"});
    const auto result = RunCommand(all);
    EXPECT_EQ(result.code, code) << result.out << result.err;
    EXPECT_EQ(result.err, "");
    return nlohmann::json::parse(ReadText(folder / "v.json"));
  }
  static double Number(const nlohmann::json& verdict, const std::string& key) {
    return verdict.at(key).at("value").get<double>();
  }
  void ExpectRefused(const std::vector<std::string>& arguments, const std::string& text) const {
    const auto before = folder.List();
    std::vector<std::string> all{"judge"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.insert(all.end(), {"--json", folder / "v.json", "--plot", folder / "v.png"});
    const auto result = RunCommand(all);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(text), std::string::npos) << result.err << " lacks " << text;
    EXPECT_EQ(folder.List(), before);
  }

  const std::string shock = kExamples + "half_sine_fixed.json";  // 50 g, 11 ms, 512 at 12800 Hz
  TempFolder folder;
};

TEST_F(JudgeCommand, EveryExamplePassesItsOwnBands) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(kExamples)) {
    if (entry.path().extension() != ".json") continue;
    const std::string definition = entry.path().string();
    const auto verdict = Verdict({definition, OwnWave(definition)}, 0);
    EXPECT_EQ(verdict.at("verdict").at("value"), "pass") << definition;
    EXPECT_EQ(Number(verdict, "outside"), 0.0);
    EXPECT_EQ(Number(verdict, "start"), 0.0) << definition;
    EXPECT_NEAR(Number(verdict, "correlation"), 1.0, 1e-9);
    ++count;
  }
  EXPECT_GT(count, 30);
}

TEST_F(JudgeCommand, FindsThePulseWhereverItLiesAtWhateverRate) {
  for (const double fsamp : {12800.0, 51200.0, 44100.0, 16000.0}) {
    for (const double at : {0.03, 0.0311234, 0.05}) {
      const auto record = Record(fsamp, 0.1, [&](double t) { return HalfSine(t - at, 50); });
      const auto verdict = Verdict({shock, record}, 0);
      // The definition has its pulse at 0.02 s.
      EXPECT_NEAR(Number(verdict, "start"), at - 0.02, 2e-6) << fsamp;
      EXPECT_EQ(Number(verdict, "judged"), 512.0);
      EXPECT_NEAR(Number(verdict, "velocity_change_deviation"), 0.0, 0.2) << fsamp;
    }
  }
}

TEST_F(JudgeCommand, NoiseAndALittleTooMuchPass) {
  std::mt19937 engine(5);
  std::uniform_real_distribution<double> noise(-1, 1);
  const auto record =
      Record(25600, 0.1, [&](double t) { return HalfSine(t - 0.04, 52) + noise(engine); });
  const auto verdict = Verdict({shock, record}, 0);
  EXPECT_GT(Number(verdict, "correlation"), 0.99);
}

TEST_F(JudgeCommand, NamesTheWorstViolation) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 65); });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_EQ(verdict.at("verdict").at("value"), "fail");
  EXPECT_GT(Number(verdict, "outside"), 20);
  EXPECT_EQ(Number(verdict, "worst_time"), 0.02);
  EXPECT_NEAR(Number(verdict, "worst_value"), 65, 1e-9);
  EXPECT_NEAR(Number(verdict, "worst_limit"), 57.5, 1e-9);
  EXPECT_NEAR(Number(verdict, "worst_excess"), 15, 1e-9);
  EXPECT_EQ(verdict.at("worst_value").at("unit"), "g");
  EXPECT_NEAR(Number(verdict, "velocity_change_deviation"), 30, 0.1);
}

TEST_F(JudgeCommand, ASinglePeakOutsideFails) {
  const auto record = Record(12800, 0.1, [](double t) {
    return HalfSine(t - 0.04, 50) + (std::fabs(t - 0.055) < 1e-5 ? 20.0 : 0.0);
  });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_EQ(Number(verdict, "outside"), 1.0);
  EXPECT_NEAR(Number(verdict, "worst_time"), 0.035, 1e-9);
}

TEST_F(JudgeCommand, TheVelocityChangeHasATolerance) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 56); });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_EQ(Number(verdict, "outside"), 0.0);
  EXPECT_NEAR(Number(verdict, "velocity_change_deviation"), 12, 0.1);
  EXPECT_EQ(Number(verdict, "velocity_change_tolerance"), 10.0);
  EXPECT_EQ(Verdict({shock, record, "--dv-tol", "15"}, 0).at("verdict").at("value"), "pass");
  ExpectRefused({shock, record, "--dv-tol", "-1"}, "--dv-tol");
}

TEST_F(JudgeCommand, TakesARecordForTheDefinition) {
  const auto measured = OwnWave(shock);
  ASSERT_EQ(RunCommand({"generate", shock, "--record", folder / "d.rec"}).code, 0);
  EXPECT_EQ(Verdict({shock, measured}, 0), Verdict({folder / "d.rec", measured}, 0));
}

TEST_F(JudgeCommand, SamplesWithoutTimesNeedTheirFrequency) {
  const auto record = Record(
      12800, 0.1, [](double t) { return HalfSine(t - 0.04, 50); }, false);
  ExpectRefused({shock, record}, "--fsamp is needed");
  ExpectRefused({shock, record, "--fsamp", "0"}, "--fsamp");
  EXPECT_NEAR(Number(Verdict({shock, record, "--fsamp", "12800"}, 0), "start"), 0.02, 1e-9);
}

TEST_F(JudgeCommand, WarnsWhereTheRecordDoesNotCoverTheFrame) {
  const auto record = Record(12800, 0.03, [](double t) { return HalfSine(t - 0.01, 50); });
  const auto result = RunCommand({"judge", shock, record});
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.err.find("covers 384 of the 512 samples of the frame"), std::string::npos)
      << result.err;
  EXPECT_NE(result.out.find("samples judged                     384\n"), std::string::npos);
}

TEST_F(JudgeCommand, RefusesWhatCannotBeJudged) {
  ExpectRefused({shock, Record(12800, 0.1, [](double) { return 0.0; })}, "does not show");
  ExpectRefused({shock, Record(12800, 0.012, [](double t) { return HalfSine(t - 0.003, 50); })},
                "does not hold the whole pulse");
  ExpectRefused({shock, Record(12800, 0.1, [](double t) { return t > 0.05 ? NAN : 1.0; })},
                ":642: the value is no number");
  ExpectRefused({shock, folder / "none.csv"}, "none.csv");
  ExpectRefused({folder / "none.json", OwnWave(shock)}, "none.json");
}

TEST_F(JudgeCommand, NoiseIsNoVerdict) {
  std::mt19937 engine(6);
  std::normal_distribution<double> noise;
  const auto record = Record(12800, 0.2, [&](double) { return 10 * noise(engine); });
  ExpectRefused({shock, record}, "m.csv: does not show the pulse: the correlation is 0.");
  ExpectRefused({kExamples + "sine_beat.json",
                 Record(5120, 0.5, [&](double) { return noise(engine); }), "--force"},
                "m.csv: does not show the waveform: the correlation is 0.");
}

// Noise of a fifth of the peak is far outside the bands, and still shows a pulse.
TEST_F(JudgeCommand, APulseInMuchNoiseFails) {
  std::mt19937 engine(7);
  std::normal_distribution<double> noise;
  const auto record =
      Record(12800, 0.2, [&](double t) { return HalfSine(t - 0.1, 50) + 10 * noise(engine); });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_LT(Number(verdict, "correlation"), 0.95);
  EXPECT_NE(verdict.at("failed").at("value").get<std::string>().find("bands"), std::string::npos);
}

TEST_F(JudgeCommand, SaysWhereARecordIsUpsideDown) {
  for (const char* const name : {"half_sine_fixed", "compensated_cosine", "compensated_flat_cosine",
                                 "sawtooth_user", "symmetry_half_sine"}) {
    const std::string definition = kExamples + name + ".json";
    ExpectRefused({definition, OwnWaveUpsideDown(definition)}, "upside down (correlation -1.000)");
  }
}

// Turned over, a sine of many periods is nearly itself half a period later.
TEST_F(JudgeCommand, SaysWhereAWaveformThatFailsFitsBetterUpsideDown) {
  const std::string beat = kExamples + "sine_beat.json";
  const auto result = RunCommand({"judge", beat, OwnWaveUpsideDown(beat)});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find("turned.csv: correlates better upside down (-1.000)\n"),
            std::string::npos)
      << result.err;
  EXPECT_EQ(RunCommand({"judge", beat, OwnWave(beat)}).err, "");
}

TEST_F(JudgeCommand, ADefinitionThatIsRefusedIsNoVerdict) {
  const auto record = OwnWave(shock);
  WriteText(folder / "d.json", R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 0,
      "MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512, "TolKind": "TOL_FIXED_4"}})");
  ExpectRefused({folder / "d.json", record}, "MainAmpl is 0");
}

TEST_F(JudgeCommand, SaysWhatFailed) {
  const auto failed = [&](const std::function<double(double)>& value) {
    const auto verdict = Verdict({shock, Record(12800, 0.1, value)}, 1);
    return verdict.at("failed").at("value").get<std::string>();
  };
  EXPECT_EQ(failed([](double t) {
              return HalfSine(t - 0.04, 50) + (std::fabs(t - 0.055) < 1e-5 ? 20.0 : 0.0);
            }),
            "bands");
  EXPECT_EQ(failed([](double t) { return HalfSine(t - 0.04, 56); }), "velocity change");
  EXPECT_EQ(failed([](double t) { return HalfSine(t - 0.04, 65); }), "bands and velocity change");
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 50); });
  EXPECT_FALSE(Verdict({shock, record}, 0).contains("failed"));
}

TEST_F(JudgeCommand, GivesTimesAsTheRecordCountsThem) {
  const auto record = Record(
      12800, 0.1, [](double t) { return HalfSine(t - 0.04, 65); }, true, -0.025);
  const auto verdict = Verdict({shock, record}, 1);
  // The pulse stands 40 ms behind the first sample, and 20 ms behind the start of the frame.
  EXPECT_NEAR(Number(verdict, "start"), 0.02 - 0.025, 1e-9);
  EXPECT_NEAR(Number(verdict, "worst_time"), 0.02, 1e-9);
  EXPECT_NEAR(Number(verdict, "worst_record_time"), 0.04 - 0.025, 1e-9);
}

TEST_F(JudgeCommand, RefusesARecordThatIsSampledTooCoarsely) {
  const auto expect = [&](const std::string& definition, const std::string& record,
                          const std::string& text) {
    ExpectRefused({definition, record}, text + "; --force judges it all the same\n");
    const auto result =
        RunCommand({"judge", definition, record, "--force", "--json", folder / "v.json"});
    EXPECT_EQ(result.code, 0) << result.out << result.err;
    EXPECT_NE(result.err.find("warning: " + record + ": " + text), std::string::npos) << result.err;
    const auto warnings = nlohmann::json::parse(ReadText(folder / "v.json")).at("warnings");
    EXPECT_EQ(warnings.at("value"), nlohmann::json::array({text}));
    std::filesystem::remove(folder / "v.json");
  };
  expect(shock, Record(9000, 0.1, [](double t) { return HalfSine(t - 0.04, 50); }),
         "is sampled at 9000 Hz, below the 12800 Hz of the definition: ringing above 4500 Hz is "
         "not seen");
  WriteText(folder / "d.json", R"({"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE",
      "MainAmpl": 50, "MainWidth": 0.011, "Fmax": 300, "Nsamp": 128, "TolKind": "TOL_FIXED_4"}})");
  expect(folder / "d.json", Record(768, 0.3, [](double t) { return HalfSine(t - 0.1, 50); }),
         "has 8.45 samples in the pulse, fewer than 10");
}

TEST_F(JudgeCommand, TellsScriptsOfAllThatItTellsPeople) {
  const auto record = Record(12800, 0.03, [](double t) { return HalfSine(t - 0.01, 50); });
  EXPECT_EQ(RunCommand({"judge", shock, record, "--json", folder / "v.json"}).code, 0);
  const auto verdict = nlohmann::json::parse(ReadText(folder / "v.json"));
  EXPECT_EQ(Number(verdict, "judged"), 384.0);
  EXPECT_EQ(Number(verdict, "missing"), 128.0);
  EXPECT_EQ(verdict.at("warnings").at("value"),
            nlohmann::json::array({"covers 384 of the 512 samples of the frame, 128 are missing "
                                   "before it"}));
  const auto whole = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 50); });
  EXPECT_EQ(Number(Verdict({shock, whole}, 0), "missing"), 0.0);
  EXPECT_EQ(Verdict({shock, whole}, 0).at("warnings").at("value"), nlohmann::json::array());
}

TEST_F(JudgeCommand, WarnsOfBandsThatNothingCanPass) {
  WriteText(folder / "d.json", R"({"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE",
      "MainAmpl": 50, "MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512, "TolKind": "TOL_FIXED_1"}})");
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 50.1); });
  const auto result = RunCommand({"judge", folder / "d.json", record});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find("d.json: the bands have no width at"), std::string::npos) << result.err;
}

// ---- Bands that are laid where they fit best ---------------------------------------------------

class JudgeMoves : public JudgeCommand {
 protected:
  JudgeMoves() {
    // Close up to the pulse's start, wide behind it.
    WriteText(tight, R"({"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50,
        "MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512, "TolKind": "TOL_USER_DEF", "TolUserDef": {
        "TolLeftU": 0.02, "TolLeftL": 0.02, "TolMainU": 0.2, "TolMainL": 0.2, "TolRightU": 0.3,
        "TolRightL": 0.3, "TolPulsSet": true, "TolPulsBegU": 0.02, "TolPulsBegL": 0.02,
        "TolPulsEndU": 0.3, "TolPulsEndL": 0.3}}})");
  }
  /// A half-sine that is a little too long and begins at `start`.
  static double LongPulse(double t, double start) {
    constexpr double kWidth = 1.06 * 0.011;
    return t > start && t < start + kWidth ? 50.0 * std::sin(kPi * (t - start) / kWidth) : 0.0;
  }

  const std::string tight = folder / "tight.json";
};

TEST_F(JudgeMoves, ARecordThatLiesInsideWhenMovedPasses) {
  // The correlation lays the middle of the pulse over the middle of the record's, so that the
  // record begins 3 % of the width too early for the close band.
  for (const double fsamp : {12800.0, 51200.0, 44100.0}) {
    const auto record = Record(fsamp, 0.1, [](double t) { return LongPulse(t, 0.04); });
    const auto verdict = Verdict({tight, record}, 0);
    EXPECT_EQ(Number(verdict, "outside"), 0.0);
    EXPECT_LT(Number(verdict, "shift"), 0.0);
    EXPECT_GT(Number(verdict, "shift"), -0.0011);
    // The pulse of the definition begins 20 ms - 5.5 ms behind the start of its frame.
    EXPECT_NEAR(Number(verdict, "start"), 0.04 - 0.0145, 0.0003) << fsamp;
  }
}

TEST_F(JudgeMoves, ARecordThatLiesInsideStaysWhereItIs) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 51); });
  EXPECT_EQ(Number(Verdict({shock, record}, 0), "shift"), 0.0);
}

TEST_F(JudgeMoves, WhatIsOutsideAtEveryPlaceFails) {
  const auto record = Record(12800, 0.1, [](double t) {
    return LongPulse(t, 0.04) + (std::fabs(t - 0.045) < 1e-5 ? 25.0 : 0.0);
  });
  const auto verdict = Verdict({tight, record}, 1);
  EXPECT_EQ(Number(verdict, "shift"), 0.0);
  EXPECT_GT(Number(verdict, "least_excess"), 0.0);
  EXPECT_LE(std::fabs(Number(verdict, "least_excess_shift")), 0.0011);
}

TEST_F(JudgeMoves, MoreThanATenthOfTheWidthIsTooFar) {
  // A step of 6 % of the peak, 14 % of the width before the pulse: bands that begin as early as
  // the step would hold it.
  const auto record = Record(12800, 0.1, [](double t) {
    return LongPulse(t, 0.04) + (t > 0.0385 && t < 0.04 ? 3.0 : 0.0);
  });
  EXPECT_EQ(Verdict({tight, record}, 1).at("failed").at("value"), "bands");
}

TEST_F(JudgeCommand, MarksTheViolationsInThePlot) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 65); });
  const auto result = RunCommand({"judge", shock, record, "--plot", folder / "v.svg"});
  EXPECT_EQ(result.code, 1);
  const std::string svg = ReadText(folder / "v.svg");
  for (const char* const text : {"m: fail", "upper band", "measured", "outside"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
  // The points of the violations, by the mark that they are drawn with.
  std::size_t points = 0;
  for (auto i = svg.find("#gpPt6"); i != std::string::npos; i = svg.find("#gpPt6", i + 1)) ++points;
  EXPECT_GT(points, 20U);
}

}  // namespace
}  // namespace qarv::test
