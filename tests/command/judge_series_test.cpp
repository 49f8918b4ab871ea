// qarv-wave judge: loggers' files, steps before the verdict, several shocks, records and folders.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "assess/frame.h"
#include "assess/series.h"
#include "files/definition_file.h"
#include "run_command.h"
#include "shock_record.h"

namespace qarv::test {
namespace {

const double kPi = std::acos(-1.0);

class JudgeSeries : public ::testing::Test {
 protected:
  /// Writes a record at 12800 Hz with any header.
  std::string Record(const std::string& name, double seconds,
                     const std::function<double(double)>& value,
                     const std::string& header = "Time [s];Acc [g]\n") const {
    std::ostringstream text;
    text.precision(12);
    text << header;
    for (int k = 0; k < static_cast<int>(seconds * 12800); ++k) {
      text << k / 12800.0 << ";" << value(k / 12800.0) << "\n";
    }
    WriteText(folder / name, text.str());
    return folder / name;
  }
  CommandResult Run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"judge", shock});
    return RunCommand(arguments);
  }
  nlohmann::json Json(std::vector<std::string> arguments, int code) const {
    arguments.insert(arguments.end(), {"--json", folder / "v.json"});
    const auto result = Run(arguments);
    EXPECT_EQ(result.code, code) << result.out << result.err;
    return nlohmann::json::parse(ReadText(folder / "v.json"));
  }
  static void ExpectHas(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text << " lacks " << part;
  }
  static double Number(const nlohmann::json& entries, const std::string& key) {
    return entries.at(key).at("value").get<double>();
  }
  /// Shocks of 50 g at 0.1, 0.4 and 0.7 s, the second one negative, the third of another peak.
  static double Three(double t, double third) {
    return HalfSine(t - 0.1, 50) - HalfSine(t - 0.4, 50) + HalfSine(t - 0.7, third);
  }

  const std::string shock = QARV_SOURCE_DIR "/examples/definitions/half_sine_fixed.json";
  TempFolder folder;
};

TEST_F(JudgeSeries, JudgesEveryShockByItsOwnBands) {
  const auto record = Record("a.csv", 0.8, [](double t) { return Three(t, 65); });
  const auto json = Json({record}, 1);
  EXPECT_EQ(json.at("verdict").at("value"), "fail");
  const auto& shocks = json.at("records").at(0).at("shocks");
  ASSERT_EQ(shocks.size(), 3U);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(Number(shocks[k], "time"), 0.1 + 0.3 * static_cast<double>(k), 1e-9);
    EXPECT_EQ(shocks[k].at("verdict").at("value"), k == 2 ? "fail" : "pass");
    EXPECT_NEAR(Number(shocks[k], "start"), Number(shocks[k], "time") - 0.02, 1e-9);
    EXPECT_NEAR(Number(shocks[k], "pulse_width"), 0.011 * (1 - 2 * std::asin(0.1) / kPi), 1e-5);
  }
  EXPECT_EQ(shocks[1].at("polarity").at("value"), "negative");
  EXPECT_NEAR(Number(shocks[1], "peak"), -50, 1e-9);
  EXPECT_NEAR(Number(shocks[1], "velocity_change"), -Number(shocks[0], "velocity_change"), 1e-6);
  EXPECT_NEAR(Number(shocks[2], "worst_value"), 65, 1e-9);
  const auto text = Run({record}).out;
  ExpectHas(text, "a.csv   2      0.4 s  -         -50 g");
  ExpectHas(text, "verdict: fail\n");
}

TEST_F(JudgeSeries, ANegativeShockFailsByTheMirroredBands) {
  const auto record = Record("a.csv", 0.8, [](double t) { return -Three(t, 62); });
  const auto json = Json({record}, 1);
  const auto& shocks = json.at("records").at(0).at("shocks");
  EXPECT_NEAR(Number(shocks[2], "worst_value"), -62, 1e-9);
  EXPECT_NEAR(Number(shocks[2], "worst_limit"), -57.5, 1e-9);
}

TEST_F(JudgeSeries, OneShockUpsideDownIsNoVerdictUnlessBothPolaritiesAreAskedFor) {
  const auto record = Record("a.csv", 0.2, [](double t) { return -HalfSine(t - 0.1, 50); });
  EXPECT_EQ(Run({record}).code, 2);
  EXPECT_EQ(Run({record, "--polarity", "both"}).code, 0);
  EXPECT_EQ(Run({record, "--invert"}).code, 0);
  const auto several = Record("b.csv", 0.8, [](double t) { return Three(t, 50); });
  EXPECT_EQ(Run({several}).code, 0);
  const auto own = Run({several, "--polarity", "own"});
  EXPECT_EQ(own.code, 2);
  ExpectHas(own.out, "b.csv, shock 2: shows the pulse upside down");
  EXPECT_EQ(Run({several, "--polarity", "x"}).code, 2);
}

TEST_F(JudgeSeries, TakesTheShocksThatAreAskedFor) {
  const auto record = Record("a.csv", 0.8, [](double t) { return Three(t, 65); });
  EXPECT_EQ(Run({record, "--at", "0.1,0.4"}).code, 0);
  EXPECT_EQ(Run({record, "--at", "0.7"}).code, 1);
  const auto none = Run({record, "--at", "0.25"});
  EXPECT_EQ(none.code, 2);
  ExpectHas(none.err, "--at: there is no shock at 0.25 s");
  EXPECT_EQ(Run({record, "--count", "3", "--at", "0.1"}).code, 0);
  const auto count = Run({record, "--count", "2"});
  EXPECT_EQ(count.code, 2);
  ExpectHas(count.err, "a.csv: has 3 shocks, not 2");
  EXPECT_EQ(Run({record, "--count", "1", "--min-gap", "1"}).code, 1);
  EXPECT_EQ(Run({record, "--threshold", "120"}).code, 2);
}

TEST_F(JudgeSeries, AKnockLeavesTheOthersTheirVerdictsAndTheRunWithoutOne) {
  const auto record = Record("a.csv", 0.8, [](double t) {
    return HalfSine(t - 0.1, 50) + (std::fabs(t - 0.5) < 1e-4 ? 20.0 : 0.0) + HalfSine(t - 0.7, 50);
  });
  const auto result = Run({record});
  EXPECT_EQ(result.code, 2);
  ExpectHas(result.out, "a.csv, shock 2: does not show the pulse");
  ExpectHas(result.out, "verdict: no verdict\n");
  EXPECT_EQ(Run({record, "--threshold", "50"}).code, 0);
}

TEST_F(JudgeSeries, TakesFilesAndFolders) {
  std::filesystem::create_directory(folder / "in");
  Record("in/b.csv", 0.2, [](double t) { return HalfSine(t - 0.1, 50); });
  Record("in/a.txt", 0.2, [](double t) { return HalfSine(t - 0.1, 49); });
  const auto bad = Record("c.csv", 0.2, [](double t) { return HalfSine(t - 0.1, 65); });
  const auto good = Run({folder / "in"});
  EXPECT_EQ(good.code, 0) << good.out << good.err;
  EXPECT_LT(good.out.find("a.txt"), good.out.find("b.csv"));
  EXPECT_EQ(Run({folder / "in", bad}).code, 1);
  WriteText(folder / "in/none.txt", "no samples\n");
  const auto open = Run({folder / "in"});
  EXPECT_EQ(open.code, 2);
  ExpectHas(open.out, "none.txt: has no samples");
  EXPECT_EQ(Run({folder / "in", bad}).code, 1);
  std::filesystem::create_directory(folder / "empty");
  ExpectHas(Run({folder / "empty"}).err, "has no files of samples");
}

TEST_F(JudgeSeries, ConvertsUnitsAndSaysSo) {
  const double g = 9.80665;
  const auto value = [&](double t) { return g * HalfSine(t - 0.1, 50); };
  const auto metres = Run({Record("a.csv", 0.2, value, "Time [s];Acc [m/s²]\n")});
  EXPECT_EQ(metres.code, 0);
  ExpectHas(metres.out, "unit                               g, converted from m/s^2\n");
  const auto none = Record("b.csv", 0.2, value, "Time;Acc\n");
  EXPECT_EQ(Run({none}).code, 1);
  ExpectHas(Run({none}).out, "g, that of the definition: the record names none\n");
  EXPECT_EQ(Run({none, "--unit", "M/S**2"}).code, 0);
  const auto volts = Record(
      "c.csv", 0.2, [](double t) { return 0.01 * HalfSine(t - 0.1, 50); }, "Time [s];Acc [V]\n");
  ExpectHas(Run({volts}).err, "its unit is V, not g");
  ExpectHas(Run({volts, "--unit", "g"}).err,
            "its unit is V: --unit g is not for it without --scale");
  const auto scaled = Run({volts, "--scale", "100", "--unit", "g"});
  EXPECT_EQ(scaled.code, 0);
  ExpectHas(scaled.out, "values are scaled by 100\n");
}

TEST_F(JudgeSeries, TakesStepsInTheirOrderAndNamesThem) {
  const auto record = Record("a.csv", 0.5, [](double t) {
    return -HalfSine(t - 0.1, 50) + 3 + std::sin(2 * kPi * 3000 * t) * 4 + (t > 0.4 ? 300 : 0);
  });
  EXPECT_NE(Run({record}).code, 0);
  const auto result =
      Run({record, "--trim", "0,0.3", "--offset", "quiet", "--invert", "--lowpass", "1000"});
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  const char* const steps[] = {"trimmed to 0 to 0.3 s\n", "offset of 2.99", "inverted\n",
                               "lowpass of 1000 Hz (Butterworth, order 4), forward and backward\n"};
  std::size_t at = 0;
  for (const char* const step : steps) {
    const auto next = result.out.find(step, at);
    ASSERT_NE(next, std::string::npos) << step << result.out;
    at = next;
  }
  const auto cfc =
      Run({record, "--trim", "0,0.3", "--offset", "0.15,0.3", "--invert", "--cfc", "600"});
  EXPECT_EQ(cfc.code, 0) << cfc.out << cfc.err;
  ExpectHas(cfc.out, "channel frequency class 600, forward and backward\n");
  ExpectHas(Run({record, "--trim", "0.3,9"}).err, "--trim: 0.3 to 9 s is not within the record");
  ExpectHas(Run({record, "--trim", "1"}).err, "--trim: is not FROM,TO");
  ExpectHas(Run({record, "--lowpass", "9000"}).err,
            "--lowpass: there is no such filter at 12800 Hz");
  ExpectHas(Run({record, "--lowpass", "90", "--filter", "x"}).err, "--filter: is none of");
}

TEST_F(JudgeSeries, WarnsOfOffsetNoiseAndClippingWithoutBeingAsked) {
  const auto warnings = [&](const std::function<double(double)>& value) {
    return Run({Record("a.csv", 0.3, value)}).err;
  };
  EXPECT_EQ(warnings([](double t) { return HalfSine(t - 0.1, 50); }), "");
  ExpectHas(warnings([](double t) { return HalfSine(t - 0.1, 50) + 1; }),
            "has an offset of 2 % of the peak; --offset takes it off\n");
  EXPECT_EQ(warnings([](double t) { return HalfSine(t - 0.1, 50) + 0.4; }), "");
  ExpectHas(warnings([](double t) { return HalfSine(t - 0.1, 50) + 3 * std::sin(5000 * t); }),
            "has noise of 6");
  ExpectHas(warnings([](double t) { return std::min(HalfSine(t - 0.1, 50), 48.0); }),
            "seems to be clipped: ");
}

TEST_F(JudgeSeries, WarnsOfACompensatedRecordThatDrifts) {
  const std::string compensated = QARV_SOURCE_DIR "/examples/definitions/compensated_cosine.json";
  ASSERT_EQ(RunCommand({"generate", compensated, "--csv", folder / "w.csv"}).code, 0);
  EXPECT_EQ(RunCommand({"judge", compensated, folder / "w.csv"}).err, "");
  std::istringstream lines(ReadText(folder / "w.csv"));
  std::string line;
  std::getline(lines, line);
  std::ostringstream text;
  text.precision(17);
  while (std::getline(lines, line)) {
    const auto comma = line.find(',');
    text << line.substr(0, comma + 1) << std::stod(line.substr(comma + 1)) + 1.2 << "\n";
  }
  WriteText(folder / "d.csv", text.str());
  const auto result = RunCommand({"judge", compensated, folder / "d.csv"});
  ExpectHas(result.err, "drifts: the velocity ends at ");
  ExpectHas(result.out, "  that is, of its                  waveform\n");
}

TEST_F(JudgeSeries, HoldsTheVelocityChangeAgainstWhatIsAskedFor) {
  const auto record = Record("a.csv", 0.2, [](double t) { return HalfSine(t - 0.1, 50); });
  const auto reference = [&](const std::vector<std::string>& options) {
    std::vector<std::string> all{record};
    all.insert(all.end(), options.begin(), options.end());
    return Json(all, 0).at("velocity_change_reference").at("value").get<std::string>();
  };
  EXPECT_EQ(reference({}), "nominal pulse");
  EXPECT_EQ(reference({"--dv-of", "nominal"}), "nominal pulse");
  EXPECT_EQ(reference({"--dv-of", "waveform"}), "waveform");
  // A D 2 / pi, in m/s.
  EXPECT_NEAR(Number(Json({record, "--dv-of", "nominal"}, 0), "velocity_change_defined"),
              50 * 9.80665 * 0.011 * 2 / kPi, 1e-9);
  EXPECT_EQ(Run({record, "--dv-of", "x"}).code, 2);
}

TEST_F(JudgeSeries, MovesTheBandsAsFarAsIsSaid) {
  WriteText(folder / "tight.json", R"({"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE",
      "MainAmpl": 50, "MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512, "TolKind": "TOL_USER_DEF",
      "TolUserDef": {"TolLeftU": 0.02, "TolLeftL": 0.02, "TolMainU": 0.2, "TolMainL": 0.2,
      "TolRightU": 0.3, "TolRightL": 0.3, "TolPulsSet": true, "TolPulsBegU": 0.02,
      "TolPulsBegL": 0.02, "TolPulsEndU": 0.3, "TolPulsEndL": 0.3}}})");
  const auto record = Record("a.csv", 0.1, [](double t) {
    const double width = 1.06 * 0.011;
    return t > 0.04 && t < 0.04 + width ? 50 * std::sin(kPi * (t - 0.04) / width) : 0.0;
  });
  EXPECT_EQ(RunCommand({"judge", folder / "tight.json", record}).code, 0);
  EXPECT_EQ(RunCommand({"judge", folder / "tight.json", record, "--move", "0.5"}).code, 1);
  EXPECT_EQ(RunCommand({"judge", folder / "tight.json", record, "--move", "-1"}).code, 2);
}

TEST_F(JudgeSeries, JudgesChannelsAloneOrTheirResultant) {
  std::ostringstream text;
  text.precision(12);
  text << "Time [s],X [g],Y [g]\n";
  for (int k = 0; k < 2560; ++k) {
    const double v = HalfSine(k / 12800.0 - 0.1, 50);
    text << k / 12800.0 << "," << 0.6 * v << "," << 0.8 * v << "\n";
  }
  WriteText(folder / "xyz.csv", text.str());
  EXPECT_EQ(Run({folder / "xyz.csv", "--channel", "X"}).code, 1);
  EXPECT_EQ(Run({folder / "xyz.csv", "--channel", "X,Y", "--resultant"}).code, 0);
  const auto both = Run({folder / "xyz.csv", "--channel", "X,Y"});
  EXPECT_EQ(both.code, 1);
  ExpectHas(both.out, "xyz.csv X");
  ExpectHas(both.out, "xyz.csv Y");
  ExpectHas(Run({folder / "xyz.csv", "--channel", "Z"}).err, "has no column Z, but 3: Time, X, Y");
}

TEST_F(JudgeSeries, AnEarlierMissingValueIsRefusedWithItsLineAndNothingIsWritten) {
  WriteText(folder / "a.csv", "Time [s];Acc [g]\n0;0\n0,1;OL\n0,2;0\n");
  const auto before = folder.List();
  const auto result =
      Run({folder / "a.csv", "--json", folder / "v.json", "--html", folder / "v.html"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "qarv-wave: " + (folder / "a.csv") + ":3: the value is no number\n");
  EXPECT_EQ(folder.List(), before);
}

TEST_F(JudgeSeries, WritesOnePageToFile) {
  const auto record = Record("a.csv", 0.8, [](double t) { return Three(t, 65); });
  EXPECT_EQ(
      Run({record, "--html", folder / "v.html", "--date", "2024-03-05", "--offset", "quiet"}).code,
      1);
  const std::string page = ReadText(folder / "v.html");
  for (const char* const part :
       {"<h1>Shock verdict: fail</h1>", "half_sine_fixed.json: ", "2024-03-05", "offset of ",
        "a.csv, shock 1: pass", "a.csv, shock 3: fail"}) {
    ExpectHas(page, part);
  }
  std::size_t pictures = 0;
  for (auto at = page.find("<svg"); at != std::string::npos; at = page.find("<svg", at + 1))
    ++pictures;
  EXPECT_EQ(pictures, 3U);
}

TEST_F(JudgeSeries, DrawsTheRecordBeforeItsStepsBehindIt) {
  const auto record = Record("a.csv", 0.8, [](double t) { return Three(t, 50) + 2; });
  ASSERT_EQ(Run({record, "--offset", "quiet", "--plot", folder / "a.svg"}).code, 0);
  ExpectHas(ReadText(folder / "a.svg"), ">before the steps<");
  const auto same = Record("b.csv", 0.8, [](double t) { return Three(t, 50); });
  ASSERT_EQ(Run({same, "--plot", folder / "b.svg", "--html", folder / "b.html"}).code, 0);
  EXPECT_EQ(ReadText(folder / "b.svg").find(">before the steps<"), std::string::npos);
  EXPECT_EQ(ReadText(folder / "b.html").find(">before the steps<"), std::string::npos);
}

TEST_F(JudgeSeries, ARecordLiesOnTheFrameWhereItWasJudged) {
  const auto def = command::LoadDefinition(shock);
  // At another rate, in another unit, from another time on; the last shock without its end.
  const double rate = 44100;
  std::vector<double> samples;
  for (int k = 0; k < static_cast<int>(0.715 * rate); ++k) {
    samples.push_back(9.80665 * Three(k / rate, 50));
  }
  const assess::Record record{samples, rate, "m/s^2", -3.0};
  const assess::Series series = assess::JudgeSeries(def, record);
  ASSERT_EQ(series.shocks.size(), 3U);
  for (const assess::ShockVerdict& verdict : series.shocks) {
    ASSERT_TRUE(verdict.judgement);
    const assess::Overlay& overlay = verdict.judgement->overlay;
    const auto lain = assess::OnFrame(def, *verdict.judgement, record);
    ASSERT_EQ(lain.GetSize(), overlay.wave.GetSize());
    for (std::size_t i = 0; i < lain.GetSize(); ++i) {
      const bool covered = i >= overlay.first && i <= overlay.last;
      EXPECT_EQ(std::isfinite(lain[i]), covered) << i;
      // The overlay of a negative shock is turned over.
      const double expected = (verdict.negative ? -1 : 1) * overlay.wave[i];
      EXPECT_NEAR(covered ? lain[i] : expected, expected, 0.01) << i;
    }
    const assess::Stretch covered = assess::CoveredBy(def, *verdict.judgement, record);
    EXPECT_NEAR(record.begin + static_cast<double>(covered.first) / rate,
                verdict.judgement->begin + static_cast<double>(overlay.first) / 12800, 1 / rate);
    EXPECT_NEAR(record.begin + static_cast<double>(covered.last) / rate,
                verdict.judgement->begin + static_cast<double>(overlay.last) / 12800, 1 / rate);
  }
}

TEST_F(JudgeSeries, ShowsTheSpectrumOfEachShockBesideTheRequiredOne) {
  WriteText(folder / "req.json", R"({"UnitAmpl": "m/s^2", "Points": [[20, 380], [80, 800],
                                     [3000, 480]], "TolUpper": 1, "TolLower": -1})");
  const auto record = Record("a.csv", 0.8, [](double t) { return Three(t, 50); });
  const auto alone = Record("one.csv", 0.3, [](double t) { return HalfSine(t - 0.1, 50); });
  const std::vector<std::string> requirement{"--requirement", folder / "req.json"};
  const auto with = [&](const std::string& file, const std::string& html) {
    return Json({file, requirement[0], requirement[1], "--html", folder / html}, 0);
  };
  const auto three = with(record, "three.html");
  const auto one = with(alone, "one.html");
  // Silence around it does not change a spectrum: each is that of the whole record of one shock.
  ASSERT_EQ(
      RunCommand({"srs", alone, requirement[0], requirement[1], "--json", folder / "s.json"}).code,
      1);
  const auto srs = nlohmann::json::parse(ReadText(folder / "s.json"));
  const auto expect = [&](const nlohmann::json& spectrum) {
    EXPECT_EQ(spectrum["frequency"], srs["frequency"]);
    EXPECT_EQ(spectrum["unit"], "m/s^2");
    const auto& expected = srs["spectra"][0]["maximax"];
    ASSERT_EQ(spectrum["maximax"].size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(spectrum["maximax"][i], expected[i], 1e-3 * expected[i].get<double>());
    }
    EXPECT_EQ(spectrum["verdict"]["value"], "outside");
  };
  expect(one["spectrum"]);
  for (const auto& item : three["records"][0]["shocks"]) expect(item["spectrum"]);
  // The verdict stays that of the bands; what lies outside is a warning.
  EXPECT_EQ(one["verdict"]["value"], "pass");
  ExpectHas(one["warnings"]["value"][0], "its spectrum is outside the required one: worst ");
  const std::string page = ReadText(folder / "three.html");
  std::size_t pictures = 0;
  for (auto at = page.find("<svg"); at != std::string::npos; at = page.find("<svg", at + 1))
    ++pictures;
  EXPECT_EQ(pictures, 6U);
  for (const char* const part : {">required<", ">tolerance<", ">shock, Q 10<"}) {
    ExpectHas(page, part);
  }
  const auto low = Run({record, requirement[0], folder / "none.json"});
  EXPECT_EQ(low.code, 2);
  ExpectHas(low.err, "none.json: does not exist");
}

}  // namespace
}  // namespace qarv::test
