// The exports: NumPy, sound and universal files, read back by what reads them.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <string>

#include "files/definition_file.h"
#include "files/export_files.h"
#include "run_command.h"

namespace qarv::test {
namespace {

using wave_def::CWaveDef;

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
  ASSERT_EQ(RunCommand({"generate", kExamples + "sine_burst.json", "--npy", folder / "w.npy",
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

// ---- Sound files -------------------------------------------------------------------------------

TEST(Wav, IsReadBackInTheAmplitudeUnit) {
  const TempFolder folder;
  const std::string definition = kExamples + "half_sine_fixed.json";
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
  const std::string definition = kExamples + "single.json";
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

TEST(Uff, RefusesSamplesThatAreNoNumbersByTheNameOfTheDefinition) {
  const TempFolder folder;
  WriteText(folder / "d.json",
            R"({"Fsamp": 100, "Single": {"Period": 0, "PeakLevel": 1, "Nsamp": 10}})");
  const auto result = RunCommand({"generate", folder / "d.json", "--uff", folder / "w.uff"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "qarv-wave: d: a universal file cannot hold what is no number\n");
  EXPECT_EQ(folder.List(), std::vector<std::string>{"d.json"});
}

TEST(Uff, IsRefusedWithTheFileAndTheLine) {
  const TempFolder folder;
  const std::string file = folder / "w.uff";
  ASSERT_EQ(RunCommand({"generate", kExamples + "single.json", "--uff", file}).code, 0);
  std::string text = ReadText(file);
  const auto refused = [&](const std::string& what) {
    WriteText(file, text);
    const auto result = RunCommand({"srs", file});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "qarv-wave: " + file + ": " + what + "\n");
  };
  std::size_t values = 0;  // behind the thirteen lines before them
  for (int line = 0; line < 13; ++line) values = text.find('\n', values) + 1;
  text[values + 4] = '#';
  refused("line 14: no number in columns 1 to 20");
  text.resize(values);
  refused("ends within a dataset, behind line 13");
  text.clear();
  refused("has no function (dataset 58)");
}

TEST(Uff, IsJudgedAndTransformedLikeTheSamplesItHolds) {
  const TempFolder folder;
  const std::string definition = kExamples + "half_sine_fixed.json";  // in g
  ASSERT_EQ(RunCommand({"generate", definition, "--uff", folder / "w.uff"}).code, 0);
  const auto verdict = RunCommand({"judge", definition, folder / "w.uff"});
  EXPECT_EQ(verdict.code, 0) << verdict.out << verdict.err;
  EXPECT_EQ(RunCommand({"srs", definition, "--to", "50"}).out,
            RunCommand({"srs", folder / "w.uff", "--to", "50"}).out);
  // At the rate of another logger each sample of the pulse could be a shock.
  const auto slow = RunCommand({"judge", definition, folder / "w.uff", "--fsamp", "5"});
  EXPECT_EQ(slow.code, 2);
  EXPECT_EQ(std::count(slow.err.begin(), slow.err.end(), '\n'), 1) << slow.err;
  EXPECT_NE(slow.err.find("is sampled at 5 Hz, below the 12800 Hz"), std::string::npos) << slow.err;
  EXPECT_EQ(slow.out, "");

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
