// The exports: NumPy, sound and universal files, read back by what reads them.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <limits>

#include "command_error.h"
#include "csv_reader.h"
#include "definition_file.h"
#include "export/uff.h"
#include "random_values.h"
#include "run_command.h"

namespace qarv::test {
namespace {

using command::CommandError;
using command::UffFunction;
using wave_def::CWaveDef;

const std::string kDefinitions = QARV_SOURCE_DIR "/examples/definitions/";

/// Samples that are given, with bands around them.
CWaveDef DefineSamples(const std::vector<double>& samples, double fsamp, const char* unit) {
  CWaveDef def;
  common::CUnitCtrl code;
  EXPECT_TRUE(common::CUnitCtrl::FromText(unit, &code));
  def.SetUnitAmpl(code);
  def.SetFsamp(fsamp);
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  common::CDataArrayFloatT<double> array;
  array.SetData(samples.size(), samples.data(), false);
  EXPECT_TRUE(def.SetDefMeasure({}, array));
  return def;
}

// ---- NumPy -------------------------------------------------------------------------------------

TEST(Npy, IsReadByNumPyAsTheCsvIs) {
  const TempFolder folder;
  ASSERT_EQ(RunCommand({"generate", kDefinitions + "sine_burst.json", "--npy", folder / "w.npy",
                        "--csv", folder / "w.csv"})
                .code,
            0);
  WriteText(folder / "compare.py", R"(
import sys
import numpy
array = numpy.load(sys.argv[1])
text = numpy.genfromtxt(sys.argv[2], delimiter=",", names=True)
assert array.dtype.names == ("time", "waveform", "lower", "upper"), array.dtype
assert array.shape == text.shape and array.size > 100, array.shape
for name in array.dtype.names:
    assert array[name].dtype == numpy.float64
    assert (array[name] == text[name]).all(), name
)");
  const std::string line = "/usr/bin/python3 " + ShellQuoted(folder / "compare.py") + " " +
                           ShellQuoted(folder / "w.npy") + " " + ShellQuoted(folder / "w.csv");
  EXPECT_EQ(std::system(line.c_str()), 0);
}

TEST(Npy, TheArrayBeginsAtAMultipleOf64Bytes) {
  const TempFolder folder;
  for (const int n : {1, 9, 10, 4095, 4096, 4097}) {
    WriteText(folder / "d.json",
              R"({"Fsamp": 100, "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": )" +
                  std::to_string(n) + "}}");
    ASSERT_EQ(RunCommand({"generate", folder / "d.json", "--npy", folder / "w.npy"}).code, 0);
    const std::string bytes = ReadText(folder / "w.npy");
    const auto array = bytes.find('\n') + 1;
    EXPECT_EQ(array % 64, 0U);
    EXPECT_EQ(bytes.size() - array, 32U * static_cast<unsigned int>(n));
  }
}

// ---- Sound files -------------------------------------------------------------------------------

TEST(Wav, IsReadBackInTheAmplitudeUnit) {
  const TempFolder folder;
  const std::string definition = kDefinitions + "half_sine_fixed.json";
  const CWaveDef def = command::LoadDefinition(definition);
  ASSERT_EQ(RunCommand({"generate", definition, "--wav", folder / "w.wav"}).code, 0);
  SF_INFO info{};
  SNDFILE* const file = sf_open((folder / "w.wav").c_str(), SFM_READ, &info);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(info.samplerate, 12800);
  EXPECT_EQ(info.channels, 1);
  EXPECT_EQ(info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
  ASSERT_EQ(info.frames, 512);
  std::vector<float> samples(512);
  EXPECT_EQ(sf_readf_float(file, samples.data(), 512), 512);
  sf_close(file);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    EXPECT_EQ(samples[i], static_cast<float>(def.GetWave()[i]));
  }
}

TEST(Wav, TheSameWaveformGivesTheSameBytes) {
  const TempFolder folder;
  const std::string definition = kDefinitions + "single.json";
  ASSERT_EQ(RunCommand({"generate", definition, "--wav", folder / "a.wav"}).code, 0);
  std::system("sleep 1.1");  // the clock of a file's date moves on
  ASSERT_EQ(RunCommand({"generate", definition, "--wav", folder / "b.wav"}).code, 0);
  EXPECT_EQ(ReadText(folder / "a.wav"), ReadText(folder / "b.wav"));
}

TEST(Wav, RefusesWhatItCannotHold) {
  const TempFolder folder;
  const auto refused = [&](const std::string& json, const std::string& reason) {
    WriteText(folder / "d.json", json);
    const auto result = RunCommand({"generate", folder / "d.json", "--wav", folder / "w.wav"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(reason), std::string::npos) << result.err;
    EXPECT_EQ(folder.List(), std::vector<std::string>{"d.json"});
  };
  refused(R"({"Fsamp": 100.5, "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": 10}})",
          "a whole sampling frequency, not 100.5 Hz");
  refused(R"({"Fsamp": -100, "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": 10}})", "a whole");
  refused(R"({"Fsamp": 1e18, "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": 10}})", "a whole");
  refused(R"({"Fsamp": 100, "Single": {"Period": 1, "PeakLevel": 1e300, "Nsamp": 10}})",
          "cannot hold");
  refused(R"({"Fsamp": 100, "Single": {"Period": 0, "PeakLevel": 1, "Nsamp": 10}})", "cannot hold");
}

// ---- Universal files ---------------------------------------------------------------------------

TEST(Uff, RoundTripsInThirteenDigits) {
  const TempFolder folder;
  RandomValues random(91);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 4, 5, 8, 257}) {
    std::vector<double> samples(n);
    for (double& v : samples) {
      v = random.Between(-1, 1) * std::pow(10.0, std::floor(random.Between(-250, 250)));
    }
    const double fsamp = random.Pick({12800.0, 44100.0, 1e-3, 1.0 / 3.0, 2.56e7});
    const CWaveDef def = DefineSamples(samples, fsamp, "m/s^2");
    command::WriteUff(def, "name", folder / "w.uff");
    const auto functions = command::ReadUff(folder / "w.uff");
    ASSERT_EQ(functions.size(), 3U);
    EXPECT_EQ(functions[0].name, "waveform");
    EXPECT_EQ(functions[1].name, "lower band");
    EXPECT_EQ(functions[2].name, "upper band");
    const common::CDataArrayFloatT<double>* const written[] = {&def.GetWave(), &def.GetTolL(),
                                                               &def.GetTolU()};
    for (std::size_t f = 0; f < 3; ++f) {
      EXPECT_EQ(functions[f].fsamp, fsamp);
      EXPECT_EQ(functions[f].unit, "m/s^2");
      ASSERT_EQ(functions[f].samples.GetSize(), n);
      for (std::size_t i = 0; i < n; ++i) {
        const double v = (*written[f])[i];
        EXPECT_LE(std::fabs(functions[f].samples[i] - v), 5.1e-13 * std::fabs(v));
      }
    }
  }
}

TEST(Uff, KeepsTheFixedColumns) {
  const TempFolder folder;
  command::WriteUff(DefineSamples({1, -2.5, 1e-100, 4, -5e200}, 12800, "g"), "a\nb", folder / "w");
  const std::string text = ReadText(folder / "w");
  EXPECT_EQ(text.substr(0, text.find("lower band")),
            "    -1\n"
            "    58\n"
            "waveform\n"
            "a\\x0ab\n"
            "NONE\n"
            "Fsamp = 12800 Hz\n"
            "NONE\n"
            "    1         1    0         0 NONE               1   0 NONE               0   0\n"
            "         4         5         1  0.00000E+00  7.81250E-05  0.00000E+00\n"
            "        17    0    0    0 Time                 s                   \n"
            "        12    0    0    0 Acceleration         g                   \n"
            "         0    0    0    0 NONE                 NONE                \n"
            "         0    0    0    0 NONE                 NONE                \n"
            "  1.000000000000E+00 -2.500000000000E+00 1.000000000000E-100  4.000000000000E+00\n"
            "-5.000000000000E+200\n"
            "    -1\n"
            "    -1\n"
            "    58\n");
}

TEST(Uff, ReadsWhatOthersWrite) {
  const TempFolder folder;
  // Another dataset before it, line ends of another system, single precision, no rate line.
  WriteText(folder / "m.uff",
            "    -1\r\n   151\r\nmodel\r\nNONE\r\n    -1\r\n    -1\r\n    58\r\nPoint 3\r\nNONE\r\n"
            "21-Nov-26\r\nNONE\r\nNONE\r\n"
            "    1         0    0         0       NONE         3   3       NONE         0   0\r\n"
            "         2         7         1  0.00000E+00  1.00000E-03  0.00000E+00\r\n"
            "        17    0    0    0                 NONE                 NONE\r\n"
            "        12    0    0    0                 NONE                 NONE\r\n"
            "         0    0    0    0                 NONE                 NONE\r\n"
            "         0    0    0    0                 NONE                 NONE\r\n"
            "  0.00000E+00  1.00000E+00 -2.00000E+00  3.00000E+00  4.00000E+00  5.00000E+00\r\n"
            "  6.50000E+00\r\n    -1\r\n");
  const auto functions = command::ReadUff(folder / "m.uff");
  ASSERT_EQ(functions.size(), 1U);
  EXPECT_EQ(functions[0].name, "Point 3");
  EXPECT_EQ(functions[0].fsamp, 1000.0);
  EXPECT_EQ(functions[0].unit, "");
  ASSERT_EQ(functions[0].samples.GetSize(), 7U);
  EXPECT_EQ(functions[0].samples[2], -2.0);
  EXPECT_EQ(functions[0].samples[6], 6.5);
}

TEST(Uff, RefusesWhatIsNoFunctionOfEvenlySpacedRealNumbers) {
  const TempFolder folder;
  const std::string file = folder / "w.uff";
  command::WriteUff(DefineSamples({1, 2, 3, 4, 5}, 1000, "g"), "name", file);
  const std::string whole = ReadText(file);
  const auto refused = [&](const std::string& from, const std::string& to) {
    std::string text = whole;
    const auto at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    WriteText(file, text.replace(at, from.size(), to));
    EXPECT_THROW(command::ReadUff(file), CommandError) << to;
  };
  refused("         4         5         1", "         6         5         1");  // complex
  refused("         4         5         1", "         4         5         0");  // uneven
  refused("         4         5         1", "         4         9         1");
  refused("         4         5         1", "         4         4         1");
  refused("         4         5         1", "         4        -1         1");
  refused("         4         5         1", "         4       nan         1");
  refused("         4         5         1", "         4    999999         1");
  refused("1.00000E-03", "0.00000E+00");
  refused("1.00000E-03", "-1.0000E-03");
  refused("  2.000000000000E+00", "  2.0000000#0000E+00");
  refused("    58\n", "   58b     1     2          11        64     0     0           0\n");
  WriteText(file, "");
  EXPECT_THROW(command::ReadUff(file), CommandError);
  WriteText(file, "time,value\n0,1\n");
  EXPECT_THROW(command::ReadUff(file), CommandError);
  EXPECT_THROW(command::ReadUff(folder / "none"), CommandError);
}

TEST(Uff, NoTruncationIsTakenForTheWhole) {
  const TempFolder folder;
  const std::string file = folder / "w.uff";
  command::WriteUff(DefineSamples({1, 2, 3, 4, 5}, 1000, "g"), "name", file);
  const std::string whole = ReadText(file);
  for (std::size_t n = 0; n + 1 < whole.size(); ++n) {
    WriteText(file, whole.substr(0, n));
    // What ends between two functions holds those before it.
    std::size_t delimiters = 0;
    for (auto at = whole.find("    -1"); at + 6 <= n; at = whole.find("    -1", at + 1))
      ++delimiters;
    try {
      EXPECT_EQ(command::ReadUff(file).size(), delimiters / 2) << n;
      EXPECT_EQ(delimiters % 2, 0U) << n;
    } catch (const CommandError&) {
      EXPECT_TRUE(delimiters % 2 == 1 || delimiters == 0) << n;
    }
  }
}

TEST(Uff, RefusesSamplesThatAreNoNumbers) {
  const TempFolder folder;
  EXPECT_THROW(command::WriteUff(DefineSamples({1, std::nan("")}, 1000, "g"), "d", folder / "w"),
               CommandError);
  EXPECT_TRUE(folder.List().empty());
}

TEST(Uff, IsJudgedAndTransformedLikeTheSamplesItHolds) {
  const TempFolder folder;
  const std::string definition = kDefinitions + "half_sine_fixed.json";  // in g
  ASSERT_EQ(RunCommand({"generate", definition, "--uff", folder / "w.uff"}).code, 0);
  const auto verdict = RunCommand({"judge", definition, folder / "w.uff"});
  EXPECT_EQ(verdict.code, 0) << verdict.out << verdict.err;
  EXPECT_EQ(RunCommand({"srs", definition, "--to", "500"}).out,
            RunCommand({"srs", folder / "w.uff", "--to", "500"}).out);
  EXPECT_EQ(RunCommand({"judge", definition, folder / "w.uff", "--fsamp", "5"}).code, 2);

  // The same in another unit of acceleration, and in one that is none.
  CWaveDef def = command::LoadDefinition(definition);
  std::vector<double> samples(def.GetWave().begin(), def.GetWave().end());
  for (double& v : samples) v *= 9.80665;
  command::WriteUff(DefineSamples(samples, 12800, "m/s^2"), "m", folder / "m.uff");
  EXPECT_EQ(RunCommand({"judge", definition, folder / "m.uff"}).code, 0);
  command::WriteUff(DefineSamples(samples, 12800, "mm"), "m", folder / "m.uff");
  const auto refused = RunCommand({"judge", definition, folder / "m.uff"});
  EXPECT_EQ(refused.code, 2);
  EXPECT_NE(refused.err.find("its unit is mm, not g"), std::string::npos) << refused.err;
}

}  // namespace
}  // namespace qarv::test
