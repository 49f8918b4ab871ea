// Pictures: how gnuplot is run, and what stands in them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <optional>
#include <sstream>

#include "command_error.h"
#include "definition/title.h"
#include "files/definition_file.h"
#include "pictures/plot.h"
#include "run_command.h"
#include "text/text.h"
#include "text_search.h"

namespace qarv::test {
namespace {

/// A variable of the environment, for as long as the object lives.
class Environment {
 public:
  Environment(const char* name, const std::string& value) : name_(name) {
    if (const char* const before = std::getenv(name)) before_ = before;
    setenv(name, value.c_str(), 1);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  ~Environment() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> before_;
};

/// The texts of a picture, in their order, as a reader of XML sees them.  None if it is not well
/// formed.
std::vector<std::string> TextsOf(const std::string& svg) {
  const TempFolder folder;
  WriteText(folder / "texts.py", R"(
import sys, xml.etree.ElementTree
for element in xml.etree.ElementTree.parse(sys.argv[1]).iter("{http://www.w3.org/2000/svg}text"):
    sys.stdout.buffer.write(("".join(element.itertext()).strip() + "\n").encode())
)");
  const std::string line = "/usr/bin/python3 " + ShellQuoted(folder / "texts.py") + " " +
                           ShellQuoted(svg) + " >" + ShellQuoted(folder / "texts");
  EXPECT_EQ(std::system(line.c_str()), 0) << svg << " is not well formed";
  std::istringstream lines(ReadText(folder / "texts"));
  std::vector<std::string> texts;
  for (std::string text; std::getline(lines, text);) texts.push_back(text);
  return texts;
}

bool Has(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

class Pictures : public ::testing::Test {
 protected:
  /// The texts of a definition's picture.
  std::vector<std::string> Plotted(const std::string& definition) const {
    const auto result = RunCommand({"generate", definition, "--plot", folder / "p.svg"});
    EXPECT_EQ(result.code, 0) << result.err;
    return TextsOf(folder / "p.svg");
  }
  std::string Definition(const std::string& json) const {
    WriteText(folder / "def.json", json);
    return folder / "def.json";
  }
  /// A gnuplot of our own, which comes before the real one.
  std::string FakeGnuplot(const std::string& script) const {
    WriteText(folder / "gnuplot", "#!/bin/sh\n" + script);
    chmod((folder / "gnuplot").c_str(), 0755);
    return folder.GetPath().string() + ":" + std::getenv("PATH");
  }
  TempFolder folder;
};

// ---- Running gnuplot
// -----------------------------------------------------------------------------

TEST_F(Pictures, AreTheSameWhateverTheUserHasSetUpForGnuplot) {
  const std::string shock = kExamples + "half_sine_fixed.json";
  ASSERT_EQ(RunCommand({"generate", shock, "--plot", folder / "a.svg"}).code, 0);
  for (const char* const setUp : {"set logscale y; set title 'mine'; unset xtics", "exit"}) {
    WriteText(folder / ".gnuplot", setUp);
    std::filesystem::create_directories(folder / "gnuplot.config/gnuplot");
    WriteText(folder / "gnuplot.config/gnuplot/gnuplotrc", setUp);
    const Environment home("HOME", folder.GetPath().string());
    const Environment config("XDG_CONFIG_HOME", folder / "gnuplot.config");
    const auto result = RunCommand({"generate", shock, "--plot", folder / "b.svg"});
    ASSERT_EQ(result.code, 0) << setUp << result.err;
    EXPECT_EQ(ReadText(folder / "b.svg"), ReadText(folder / "a.svg")) << setUp;
  }
}

TEST_F(Pictures, AreDrawnWithoutTheVariablesOfGnuplot) {
  const Environment lib("GNUPLOT_LIB", "/mine");
  const Environment terminal("GNUTERM", "dumb");
  const Environment other("NOT_OF_GNUPLOT", "kept");
  const Environment path("PATH", FakeGnuplot("cat >/dev/null; env >" + (folder / "env") + "\n"));
  EXPECT_EQ(RunCommand({"generate", kExamples + "single.json", "--plot", folder / "p.svg"}).code, 2)
      << "it draws nothing";
  const std::string seen = ReadText(folder / "env");
  EXPECT_EQ(seen.find("GNUPLOT_LIB"), std::string::npos);
  EXPECT_EQ(seen.find("GNUTERM"), std::string::npos);
  EXPECT_NE(seen.find("NOT_OF_GNUPLOT=kept"), std::string::npos);
}

TEST_F(Pictures, AFailureOfGnuplotIsOneLineWithWhatItSays) {
  const auto failure = [&](const std::string& path) {
    const Environment paths("PATH", path);
    const auto result =
        RunCommand({"generate", kExamples + "single.json", "--plot", folder / "p.svg"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "p.svg"));
    return result.err;
  };
  const std::string said = failure(
      FakeGnuplot("printf '\\nplot x\\n     ^\\nline 7: no \\033 terminal\\n' >&2; exit 1\n"));
  EXPECT_NE(said.find("plot x; line 7: no \\x1b terminal\n"), std::string::npos) << said;
  // More than a pipe would hold, before it has read anything.
  const std::string much =
      failure(FakeGnuplot("head -c 300000 /dev/zero | tr '\\0' 'x' >&2; cat >/dev/null; exit 1\n"));
  EXPECT_NE(much.find("xxxxx"), std::string::npos);
  EXPECT_LT(much.size(), 1000U);
  EXPECT_EQ(failure("/nowhere"), "qarv-wave: gnuplot, which draws the plots, is missing\n");
}

// ---- Texts
// ---------------------------------------------------------------------------------------

TEST_F(Pictures, AreWellFormedWhateverAFileIsCalled) {
  const std::string name = "a\x01z\xFF\xC3(\xEF\xBF\xBF<b>&\"'\xC3\xA9";
  const std::string shown = "a\\x01z\\xff\\xc3(\\xef\\xbf\\xbf<b>&\"'\xC3\xA9";
  const std::string definition = folder / (name + ".json");
  WriteText(definition, ReadText(kExamples + "half_sine_fixed.json"));
  EXPECT_TRUE(Has(Plotted(definition), shown + ": half-sine 50 g, 11 ms"));
  ASSERT_EQ(RunCommand({"srs", definition, "--plot", folder / "s.svg"}).code, 0);
  EXPECT_TRUE(Has(TextsOf(folder / "s.svg"), shown + ": half-sine 50 g, 11 ms"));
  const std::string measured = folder / (name + ".csv");
  ASSERT_EQ(RunCommand({"generate", definition, "--csv", measured}).code, 0);
  ASSERT_EQ(RunCommand({"judge", definition, measured, "--plot", folder / "j.svg"}).code, 0);
  EXPECT_TRUE(Has(TextsOf(folder / "j.svg"), shown + ": pass (half-sine 50 g, 11 ms)"));
}

TEST(TitleOf, SaysWhatAWaveformOfEveryFamilyIs) {
  const std::pair<const char*, const char*> titles[] = {
      {"half_sine_fixed", "half-sine 50 g, 11 ms"},
      {"haversine_user", "haversine 50 g, 11 ms"},
      {"sawtooth_user", "terminal-peak sawtooth 50 g, 11 ms"},
      {"trapezoid_user", "trapezoid 50 g, 11 ms"},
      {"user_trapezoid_user", "trapezoid 50 g, 11 ms"},
      {"triangle_user", "triangle 50 g, 11 ms"},
      {"compensated_ramp", "half-sine 50 g, 11 ms, ramp compensation"},
      {"compensated_cosine", "half-sine 50 g, 11 ms, cosine compensation"},
      {"compensated_flat_cosine", "half-sine 50 g, 11 ms, flat cosine compensation"},
      {"compensated_optimized", "half-sine 50 g, 11 ms, optimized compensation"},
      {"symmetry_half_sine", "symmetry wave of half-sine 50 g, 11 ms"},
      {"sine_beat", "sine beat 10 m/s^2, 20 Hz, 3 x 10 cycles"},
      {"gradual", "gradual sine 2 to 8 m/s^2, 12.5 Hz"},
      {"single", "sine 2 m/s^2, 10 Hz"},
  };
  for (const auto& [name, title] : titles) {
    EXPECT_EQ(definition::TitleOf(command::LoadDefinition(kExamples + name + ".json")), title);
  }
  // With the peak of what comes out.
  const auto matches = [](const char* name, const std::string& before, const std::string& after) {
    const auto title = definition::TitleOf(command::LoadDefinition(kExamples + name + ".json"));
    EXPECT_TRUE(title.starts_with(before) && title.ends_with(after)) << title;
    const std::string peak =
        title.substr(before.size(), title.size() - before.size() - after.size());
    EXPECT_EQ(peak.find_first_not_of("0123456789."), std::string::npos) << title;
    EXPECT_GT(std::stod(peak), 0.0) << title;
  };
  matches("damped_sine", "3 damped sines, peak ", " g, 60 to 400 Hz");
  matches("wavelet", "3 wavelets, peak ", " g, 40 to 250 Hz");
  matches("measured", "measured waveform, peak ", " g, 102.4 ms");
  EXPECT_EQ(definition::TitleOf({}), "no waveform");
}

TEST_F(Pictures, HaveATitleWithoutAUnitWhereThereIsNone) {
  const auto texts = Plotted(Definition(
      R"({"Classical": {"WaveKind": "HAVERSINE", "MainAmpl": -2.5, "MainWidth": 1.5, "Fmax": 100,
          "Nsamp": 2048, "TolKind": "TOL_USER_DEF", "TolUserDef": {"TolMainU": 0.1}}})"));
  EXPECT_TRUE(Has(texts, "def: haversine -2.5, 1.5 s"));
  EXPECT_TRUE(Has(texts, "Amplitude"));
}

// ---- Axes
// ----------------------------------------------------------------------------------------

TEST_F(Pictures, HaveTheirTimeInMillisecondsBelowTwoSeconds) {
  const auto sine = [&](int nsamp) {
    return Plotted(
        Definition(R"({"Fsamp": 1000, "Single": {"Period": 0.05, "PeakLevel": 2, "Nsamp": )" +
                   std::to_string(nsamp) + "}}"));
  };
  const auto below = sine(1999);
  EXPECT_TRUE(Has(below, "Time [ms]"));
  EXPECT_TRUE(Has(below, "1800")) << "the numbers go with it";
  const auto from = sine(2000);
  EXPECT_TRUE(Has(from, "Time [s]"));
  EXPECT_TRUE(Has(from, "1.5"));
}

TEST_F(Pictures, CallAnAccelerationWhatItIs) {
  const auto label = [&](const std::string& unit) {
    return Plotted(Definition(R"({"Fsamp": 1000, "UnitAmpl": ")" + unit +
                              R"(", "Single": {"Period": 0.05, "PeakLevel": 2, "Nsamp": 100}})"));
  };
  EXPECT_TRUE(Has(label("g"), "Acceleration [g]"));
  EXPECT_TRUE(Has(label("m/s^2"), "Acceleration [m/s^2]"));
  EXPECT_TRUE(Has(label("V"), "Amplitude [V]"));
}

/// A half-sine of 128 samples, which with one to each side is 130 intervals long.
std::string HalfSine(int nsamp, double shift = 0.0) {
  return R"({"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50,
             "MainWidth": 0.01, "Fmax": 5000, "TolKind": "TOL_FIXED_4", "Nsamp": )" +
         std::to_string(nsamp) + R"(, "MainShift": )" + std::to_string(shift) + "}}";
}

TEST_F(Pictures, ShowTheMainPulseOnceMoreWhereItTakesLessThanAThirdOfTheFrame) {
  EXPECT_FALSE(Has(Plotted(Definition(HalfSine(390))), "Main pulse: time [ms]"));
  EXPECT_TRUE(Has(Plotted(Definition(HalfSine(391))), "Main pulse: time [ms]"));
  const auto compensated = Plotted(kExamples + "compensated_cosine.json");
  for (const char* const text :
       {"Main pulse: time [ms]", "Time [ms]", "Velocity [m/s]", "Displacement [mm]"}) {
    EXPECT_TRUE(Has(compensated, text)) << text;
  }
  // What has no main pulse is drawn once.
  EXPECT_FALSE(Has(Plotted(kExamples + "damped_sine.json"), "Main pulse: time [ms]"));
}

TEST_F(Pictures, TheZoomedStretchHoldsThePulseAndStaysInTheFrame) {
  for (const double shift : {-0.42, -0.2, 0.0, 0.42}) {
    const auto def = command::LoadDefinition(Definition(HalfSine(2048, shift)));
    const auto zoom = command::ZoomOf(def);
    ASSERT_TRUE(zoom);
    EXPECT_LT(zoom->last, 2048U);
    EXPECT_GE(zoom->last - zoom->first, 180U);
    EXPECT_LE(zoom->last - zoom->first, 240U);
    for (std::size_t i = 0; i < 2048; ++i) {
      if (def.GetWave()[i] == 0.0) continue;
      EXPECT_TRUE(i >= zoom->first && i <= zoom->last) << shift << " " << i;
    }
  }
}

// ---- Spectra
// -------------------------------------------------------------------------------------

/// The numbers among the texts.
std::vector<double> NumbersIn(const std::vector<std::string>& texts) {
  std::vector<double> numbers;
  for (const std::string& text : texts) {
    double v = 0.0;
    if (text::ParseNumber(text, &v)) numbers.push_back(v);
  }
  return numbers;
}

TEST_F(Pictures, SpectraHaveTicksAtOneTwoAndFive) {
  const std::string shock = kExamples + "half_sine_fixed.json";
  const auto ticks = [&](std::vector<std::string> options) {
    options.insert(options.begin(), {"srs", shock, "--plot", folder / "s.svg"});
    const auto result = RunCommand(options);
    EXPECT_EQ(result.code, 0) << result.err;
    return NumbersIn(TextsOf(folder / "s.svg"));
  };
  // From 5 to 1280 Hz, and the responses from 10.7 to 82.5 g.
  EXPECT_EQ(ticks({}), (std::vector<double>{10, 20, 50, 100, 5, 10, 20, 50, 100, 200, 500, 1000}));
  // Powers of ten alone, where there is no room.
  const auto many = ticks({"--from", "0.001", "--to", "1000"});
  EXPECT_NE(std::find(many.begin(), many.end(), 0.001), many.end());
  EXPECT_EQ(std::find(many.begin(), many.end(), 0.002), many.end());
  // Something in any case.
  EXPECT_GE(ticks({"--from", "103", "--to", "140"}).size(), 4U);
}

TEST_F(Pictures, SpectraShowThePrimaryResponseOnTheMaximax) {
  ASSERT_EQ(
      RunCommand({"srs", kExamples + "half_sine_fixed.json", "--plot", folder / "s.svg"}).code, 0);
  const std::string svg = ReadText(folder / "s.svg");
  // Each curve is a group that holds its name, and has its own line width.
  const auto curve = [&](int i) {
    const auto at = svg.find("<g id=\"gnuplot_plot_" + std::to_string(i));
    EXPECT_NE(at, std::string::npos) << i;
    return svg.substr(at, svg.find("gnuplot_plot_" + std::to_string(i + 1), at) - at);
  };
  const auto width = [](const std::string& group) {
    double widest = 0.0;
    for (const std::string& text : TextsAfter(group, "stroke-width=\"", "\"")) {
      widest = std::max(widest, std::stod(text));
    }
    return widest;
  };
  EXPECT_NE(curve(1).find("maximax"), std::string::npos) << "drawn first";
  EXPECT_NE(curve(2).find("primary"), std::string::npos);
  EXPECT_GE(width(curve(1)), 3.0 * width(curve(2)));
}

}  // namespace
}  // namespace qarv::test
