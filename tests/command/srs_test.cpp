// qarv-wave srs: its files, its units, and what it refuses.
#include "analysis/srs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "assess/upsampling.h"
#include "run_command.h"

namespace qarv::test {
namespace {

const std::string kHalfSine = QARV_SOURCE_DIR "/examples/definitions/half_sine_fixed.json";

/// The rows of a CSV file behind its header.
std::vector<std::vector<double>> Rows(const std::string& file) {
  std::istringstream in(ReadText(file));
  std::vector<std::vector<double>> rows;
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::istringstream items(line);
    rows.emplace_back();
    for (std::string item; std::getline(items, item, ',');)
      rows.back().push_back(std::strtod(item.c_str(), nullptr));
  }
  return rows;
}

TEST(SrsCommand, WritesTheSpectrumOfADefinition) {
  const TempFolder folder;
  const auto result =
      RunCommand({"srs", kHalfSine, "--csv", folder / "s.csv", "--plot", folder / "s.png", "--from",
                  "10", "--to", "80", "--per-octave", "6", "--q", "10"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_NE(result.out.find("response:  absolute acceleration\ndamping:   0.05 (Q 10)\nlines:     "
                            "19 from 10 to 80 Hz\n"),
            std::string::npos)
      << result.out;
  EXPECT_TRUE(ReadText(folder / "s.csv")
                  .starts_with("frequency,maximax,positive,negative,primary_positive,"));
  const auto rows = Rows(folder / "s.csv");
  ASSERT_EQ(rows.size(), 19U);
  // 50 g, 11 ms: the closed form, as far as 141 samples of the pulse go.
  EXPECT_EQ(rows.front()[0], 10.0);
  EXPECT_NEAR(rows.front()[1], 20.259, 0.05);
  EXPECT_NEAR(rows.back()[1], 82.414, 0.05);
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), 8U);
    EXPECT_EQ(row[1], std::max(row[2], -row[3]));
    EXPECT_EQ(row[2], std::max(row[4], row[6]));
    EXPECT_EQ(row[3], std::min(row[5], row[7]));
  }
  EXPECT_TRUE(ReadText(folder / "s.png").starts_with("\x89PNG"));
}

TEST(SrsCommand, TakesRecordsAndMeasuredSamplesToo) {
  const TempFolder folder;
  ASSERT_EQ(RunCommand({"generate", kHalfSine, "--record", folder / "r.rec"}).code, 0);
  const auto definition = RunCommand({"srs", kHalfSine, "--csv", folder / "a.csv"});
  const auto record = RunCommand({"srs", folder / "r.rec", "--csv", folder / "b.csv"});
  EXPECT_EQ(definition.out, record.out);
  EXPECT_EQ(ReadText(folder / "a.csv"), ReadText(folder / "b.csv"));
  const auto measured =
      RunCommand({"srs", QARV_SOURCE_DIR "/examples/definitions/measured_shock.csv"});
  EXPECT_EQ(measured.code, 0) << measured.err;
  EXPECT_NE(measured.out.find("from 5 to 479.458 Hz"), std::string::npos) << measured.out;
}

TEST(SrsCommand, TheStaticEquivalentIsTheDisplacementTimesTheSquaredFrequency) {
  const TempFolder folder;
  const auto rows = [&](const std::string& response) {
    EXPECT_EQ(RunCommand({"srs", kHalfSine, "--response", response, "--points", "20", "--csv",
                          folder / "s.csv"})
                  .code,
              0);
    return Rows(folder / "s.csv");
  };
  const auto displacement = rows("displacement");  // [mm]
  const auto equivalent = rows("static-equivalent");
  ASSERT_EQ(equivalent.size(), 20U);
  for (std::size_t i = 0; i < 20; ++i) {
    const double w = 2 * std::acos(-1.0) * equivalent[i][0];
    for (std::size_t k = 1; k < 8; ++k) {
      const double expected = displacement[i][k] * 1e-3 * w * w / 9.80665;
      EXPECT_NEAR(equivalent[i][k], expected, 1e-9 * std::fabs(expected));
    }
  }
}

TEST(SrsCommand, TakesLoggersFilesAndStepsAsJudgeDoes) {
  const TempFolder folder;
  std::ostringstream text;
  text << "Zeit [ms];x [g];y [g]\n";
  for (int i = 0; i < 2000; ++i) {
    text << i / 10.0 << ";0;" << (i > 500 && i < 600 ? -20.0 : 0.0) + 1.0 << "\n";
  }
  WriteText(folder / "m.txt", text.str());
  const auto result = RunCommand({"srs", folder / "m.txt", "--channel", "y", "--offset", "0,0.04",
                                  "--invert", "--csv", folder / "s.csv"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("record:    offset of 1 g taken off"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("record:    inverted\n"), std::string::npos) << result.out;
  EXPECT_GT(Rows(folder / "s.csv").back()[2], 20.0);
  EXPECT_EQ(RunCommand({"srs", folder / "m.txt", "--channel", "x,y"}).code, 2);
}

TEST(SrsCommand, ConvertsDisplacementsAndVelocities) {
  const TempFolder folder;
  const auto largest = [&](const std::string& response) {
    const auto result = RunCommand({"srs", kHalfSine, "--response", response, "--from", "50",
                                    "--points", "1", "--damping", "0", "--csv", folder / "s.csv"});
    EXPECT_EQ(result.code, 0) << result.err;
    return Rows(folder / "s.csv").at(0)[1];
  };
  const double w = 2 * std::acos(-1.0) * 50;
  const double g = largest("acceleration");  // undamped: w^2 times the displacement
  EXPECT_NEAR(largest("displacement"), g * 9.80665 / (w * w) * 1000, 0.01);
  EXPECT_NEAR(largest("pseudo-velocity"), g * 9.80665 / w, 1e-3);
}

TEST(SrsCommand, TheRelativeVelocityOfASoftOscillatorIsTheVelocityChange) {
  const TempFolder folder;
  const auto result = RunCommand({"srs", kHalfSine, "--response", "relative-velocity", "--from",
                                  "0.01", "--points", "1", "--csv", folder / "s.csv"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("response:  relative velocity\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find(" m/s at 0.01 Hz\n"), std::string::npos) << result.out;
  const double change = 50 * 9.80665 * 0.011 * 2 / std::acos(-1.0);
  EXPECT_NEAR(Rows(folder / "s.csv").at(0)[3], -change, 2e-3 * change);
}

TEST(SrsCommand, RefusesWhatIsNoNumberWithItsPlace) {
  const TempFolder folder;
  const auto refusal = [&](const std::string& samples) {
    WriteText(folder / "in.csv", samples);
    const auto result = RunCommand({"srs", folder / "in.csv", "--csv", folder / "out.csv"});
    EXPECT_EQ(result.code, 2);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.csv"));
    return result.err;
  };
  EXPECT_NE(refusal("time,v\n0,1\n\n0.001,nan\n0.002,1\n").find("in.csv:4: the value is no number"),
            std::string::npos);
  EXPECT_NE(refusal("0,1\n0.001,2\n0.002,-inf\n").find("in.csv:3: the value is no number"),
            std::string::npos);
  // A definition may have such samples, and its spectrum is none.
  WriteText(folder / "def.json",
            R"({"Fsamp": 1000, "Single": {"Period": 0.1, "PeakLevel": "nan", "Nsamp": 100}})");
  const auto result = RunCommand({"srs", folder / "def.json"});
  EXPECT_EQ(result.code, 2);
  EXPECT_NE(result.err.find("sample 0 is no number"), std::string::npos) << result.err;
}

TEST(SrsCommand, DrawsFourWayAxes) {
  const TempFolder folder;
  const auto result = RunCommand({"srs", kHalfSine, "--tripartite", "--plot", folder / "s.svg"});
  ASSERT_EQ(result.code, 0) << result.err;
  const std::string svg = ReadText(folder / "s.svg");
  for (const char* const text :
       {"Pseudo velocity [m/s]", "10 mm", "100 g", "maximax", "residual"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
}

TEST(SrsCommand, WarnsBelowTenSamplesPerCycleWhereNoneAreAdded) {
  const TempFolder folder;
  const auto result =
      RunCommand({"srs", kHalfSine, "--to", "2000", "--no-upsample", "--json", folder / "s.json"});
  EXPECT_EQ(result.code, 0);
  const std::string warning =
      "fewer than 10 samples per cycle above 1280 Hz: the spectrum is that of the straight lines "
      "between the samples";
  EXPECT_NE(result.err.find(warning + "\n"), std::string::npos) << result.err;
  EXPECT_EQ(result.out.find("upsampled"), std::string::npos) << result.out;
  const auto json = nlohmann::json::parse(ReadText(folder / "s.json"));
  EXPECT_EQ(json["upsampling"], 1);
  EXPECT_EQ(json["warnings"], nlohmann::json::array({warning}));
}

TEST(SrsCommand, UpsamplesToTenSamplesPerCycleAndSaysSo) {
  const TempFolder folder;
  const auto run = [&](const std::string& to) {
    const auto result = RunCommand({"srs", kHalfSine, "--to", to, "--json", folder / "s.json"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return std::pair(result.out, nlohmann::json::parse(ReadText(folder / "s.json")));
  };
  const auto [plain, one] = run("1280");
  EXPECT_EQ(one["upsampling"], 1);
  EXPECT_EQ(one["record"], nlohmann::json::array());
  const auto [out, five] = run("6000");
  const std::string remark = "upsampled 5 times to 64000 Hz: 10 samples per cycle at 6000 Hz";
  EXPECT_NE(out.find("record:    " + remark + "\n"), std::string::npos) << out;
  EXPECT_EQ(five["upsampling"], 5);
  EXPECT_EQ(five["record"], nlohmann::json::array({remark}));
  EXPECT_EQ(five["warnings"], nlohmann::json::array());
  EXPECT_EQ(run("2560").second["upsampling"], 2);
  EXPECT_EQ(run("2561").second["upsampling"], 3);
}

/// A burst about 1 kHz without an edge, as a function of time.
double Burst(double t) {
  const double u = (t - 0.1) / 0.02;
  return 30.0 * std::exp(-u * u) * std::sin(2 * std::acos(-1.0) * 1000.0 * t);
}

TEST(SrsCommand, OfARecordOfFewSamplesPerCycleIsThatOfTheShockWhereItIsUpsampled) {
  const TempFolder folder;
  const auto spectrum = [&](double rate, const std::vector<std::string>& options) {
    std::ostringstream text;
    text.precision(12);
    for (int i = 0; i < static_cast<int>(0.2 * rate); ++i) {
      text << i / rate << "," << Burst(i / rate) << "\n";
    }
    WriteText(folder / "m.csv", text.str());
    std::vector<std::string> arguments{"srs",  folder / "m.csv", "--from", "900",
                                       "--to", "1200",           "--csv",  folder / "s.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto result = RunCommand(arguments);
    EXPECT_EQ(result.code, 0) << result.err;
    return Rows(folder / "s.csv");
  };
  const auto exact = spectrum(100000, {});
  const auto few = spectrum(2500, {});
  const auto straight = spectrum(2500, {"--no-upsample"});
  ASSERT_EQ(exact.size(), few.size());
  for (std::size_t i = 0; i < exact.size(); ++i) {
    EXPECT_NEAR(few[i][1], exact[i][1], 0.04 * exact[i][1]) << exact[i][0];
    EXPECT_LT(straight[i][1], 0.7 * exact[i][1]) << exact[i][0];
  }
}

TEST(Upsampling, KeepsTheRecordsOwnSamplesAndTheStraightLinesToTheFirstAndFromTheLast) {
  std::vector<double> samples;
  for (int i = 0; i < 200; ++i) samples.push_back(std::sin(0.3 * i) + 0.5);
  const assess::OwnedRecord out = assess::Upsampled({samples, 1000.0, "g", 2.0}, 4);
  EXPECT_EQ(out.fsamp, 4000.0);
  EXPECT_EQ(out.unit, "g");
  ASSERT_EQ(out.samples.size(), 201U * 4 - 1);
  EXPECT_DOUBLE_EQ(out.begin + 3 / out.fsamp, 2.0);
  for (std::size_t i = 0; i < 200; ++i) EXPECT_EQ(out.samples[3 + 4 * i], samples[i]);
  for (std::size_t k = 1; k < 4; ++k) {
    const double share = static_cast<double>(k) / 4;
    EXPECT_DOUBLE_EQ(out.samples[k - 1], share * samples.front());
    EXPECT_DOUBLE_EQ(out.samples[out.samples.size() - k], share * samples.back());
  }
  // Between, away from the ends, it is the sine.
  for (std::size_t i = 40 * 4; i < 160 * 4; ++i) {
    EXPECT_NEAR(out.samples[3 + i], std::sin(0.3 * static_cast<double>(i) / 4) + 0.5, 1e-4);
  }
  EXPECT_EQ(assess::Upsampled({samples, 1000.0}, 1).samples, samples);
}

TEST(Upsampling, TakesNoMoreSamplesThanAreOfUse) {
  const auto factor = [](std::size_t samples, double highest) {
    const assess::Upsampling found = assess::UpsamplingFor(samples, 1000.0, highest);
    return std::pair(found.wanted, found.factor);
  };
  EXPECT_EQ(factor(1000, 100.0), std::pair(1, 1));
  EXPECT_EQ(factor(1000, 100.1), std::pair(2, 2));
  EXPECT_EQ(factor(1000, 499.0), std::pair(5, 5));
  EXPECT_EQ(factor(1000, 600.0), std::pair(1, 1));  // there is no spectrum
  EXPECT_EQ(factor(1000, std::nan("")), std::pair(1, 1));
  EXPECT_EQ(factor(10'000'000, 499.0), std::pair(5, 2));
  EXPECT_EQ(factor(30'000'000, 499.0), std::pair(5, 1));
}

TEST(SrsCommand, RefusesWhatIsNoSpectrum) {
  const TempFolder folder;
  const auto refused = [&](const std::vector<std::string>& options, const std::string& text) {
    std::vector<std::string> arguments{"srs", kHalfSine, "--csv", folder / "s.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto result = RunCommand(arguments);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_TRUE(folder.List().empty());
  };
  refused({"--response", "jerk"}, "--response");
  refused({"--q", "0.4"}, "--q");
  refused({"--damping", "1"}, "--damping");
  refused({"--damping", "0.05", "--q", "10"}, "--damping");
  refused({"--from", "0"}, "--from");
  refused({"--from", "100", "--to", "50"}, "--from");
  refused({"--to", "6400"}, "--to");
  refused({"--points", "0"}, "--points");
  refused({"--per-octave", "0"}, "--per-octave");
  refused({"--plot", folder / "s.jpg"}, "s.jpg");
  EXPECT_EQ(RunCommand({"srs", folder / "none.json"}).code, 2);
}

}  // namespace
}  // namespace qarv::test
