// Sound files: what is written is what libsndfile writes, and all it can write is read.
#include "exchange/wav.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <limits>

#include "sample_files.h"
#include "temp_folder.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::Signal;
using exchange::Sink;

std::vector<Signal> Read(const std::string& bytes) { return exchange::ReadWav(BytesOf(bytes)); }

std::string WriteWav(const std::vector<double>& samples, double fsamp) {
  return Written([&](const Sink& sink) { exchange::WriteWav(samples, fsamp, sink); });
}

/// The file that libsndfile makes of frames.
std::string FileOf(const std::vector<double>& samples, int channels, int rate, int format,
                   const char* title = nullptr) {
  const TempFolder folder;
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = channels;
  info.format = format;
  SNDFILE* const file = sf_open((folder / "w.wav").c_str(), SFM_WRITE, &info);
  if (file == nullptr) {
    ADD_FAILURE() << sf_strerror(nullptr);
    return "";
  }
  sf_command(file, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  if (title != nullptr) sf_set_string(file, SF_STR_TITLE, title);
  const auto n = static_cast<sf_count_t>(samples.size());
  EXPECT_EQ(sf_write_double(file, samples.data(), n), n);
  sf_close(file);
  return ReadText(folder / "w.wav");
}

TEST(Wav, WritesTheBytesThatLibsndfileWrites) {
  RandomValues random(8);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 1001, 100001}) {
    std::vector<double> samples = RandomSamples(&random, n, false);
    samples[n / 2] = random.Pick({-0.0, 1e-40, -1e-50, 3.4e38, 0x1p-149});
    for (const int rate : {1, 12800, 2147483647}) {
      EXPECT_TRUE(WriteWav(samples, rate) ==
                  FileOf(samples, 1, rate, SF_FORMAT_WAV | SF_FORMAT_FLOAT))
          << n;
    }
  }
  EXPECT_EQ(WriteWav({}, 1000).size(), WriteWav({1.0}, 1000).size() - 4);
}

TEST(Wav, ComesBackInTheAmplitudeUnit) {
  RandomValues random(9);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 1001, 100001}) {
    const std::vector<double> samples = RandomSamples(&random, n, false);
    const auto back = Read(WriteWav(samples, 12800));
    ASSERT_EQ(back.size(), 1U);
    EXPECT_EQ(back[0].fsamp, 12800.0);
    EXPECT_EQ(back[0].name, "");
    ASSERT_EQ(back[0].values.size(), n);
    for (std::size_t i = 0; i < n; ++i) {
      EXPECT_EQ(back[0].values[i], double{static_cast<float>(samples[i])});
    }
  }
}

TEST(Wav, RefusesWhatItCannotHoldBeforeItWrites) {
  const auto refused = [](double sample, double fsamp, const std::string& what) {
    EXPECT_EQ(Written([&](const Sink& sink) {
                const std::vector<double> samples{1.0, sample};
                ExpectError([&] { exchange::WriteWav(samples, fsamp, sink); }, what);
              }),
              "");
  };
  const std::string rate = "a sound file needs a whole sampling frequency, not ";
  refused(1, 100.5, rate + "100.5 Hz");
  refused(1, -100, rate + "-100 Hz");
  refused(1, 0, rate + "0 Hz");
  refused(1, 1e18, rate + "1e+18 Hz");
  refused(1, 2147483648.0, rate + "2.14748e+09 Hz");
  refused(1, HUGE_VAL, rate + "inf Hz");
  refused(1, std::nan(""), rate + "nan Hz");
  refused(1e300, 100, "a sound file cannot hold 1e+300");
  refused(-HUGE_VAL, 100, "a sound file cannot hold -inf");
  refused(std::nan(""), 100, "a sound file cannot hold nan");
}

TEST(Wav, WritesInPieces) {
  const std::vector<double> samples(100000, 1.0);
  ExpectPieces([&](const Sink& sink) { exchange::WriteWav(samples, 1000, sink); }, 400000);
}

TEST(Wav, IntegersLieWithinOne) {
  // By hand: 16 bits, two channels, 8000 Hz: (0, -32768), (16384, 32767).
  const std::string bytes(
      "RIFF\x2C\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0\x40\x1F\0\0\0\x7D\0\0\x04\0\x10\0"
      "data\x08\0\0\0\0\0\0\x80\0\x40\xFF\x7F",
      52);
  const auto back = Read(bytes);
  ASSERT_EQ(back.size(), 2U);
  EXPECT_EQ(back[0].values, (std::vector<double>{0.0, 0.5}));
  EXPECT_EQ(back[1].values, (std::vector<double>{-1.0, 32767.0 / 32768.0}));
  EXPECT_EQ(back[1].fsamp, 8000.0);
}

TEST(Wav, ReadsEverySampleType) {
  struct Type {
    int format;
    double error;  // of one step of it
  };
  const Type types[] = {
      {SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 1.0 / 64},
      {SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1.0 / 16384},
      {SF_FORMAT_WAV | SF_FORMAT_PCM_24, 1.0 / 4194304},
      {SF_FORMAT_WAV | SF_FORMAT_PCM_32, 1.0 / 1073741824},
      {SF_FORMAT_WAV | SF_FORMAT_FLOAT, 6e-8},
      {SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 0.0},
      {SF_FORMAT_WAV | SF_FORMAT_ULAW, 0.03},
      {SF_FORMAT_WAV | SF_FORMAT_ALAW, 0.03},
      {SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 1.0 / 4194304},
      {SF_FORMAT_WAVEX | SF_FORMAT_DOUBLE, 0.0},
      {SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 1.0 / 16384},
      {SF_FORMAT_RF64 | SF_FORMAT_DOUBLE, 0.0},
      {SF_FORMAT_WAV | SF_ENDIAN_BIG | SF_FORMAT_PCM_16, 1.0 / 16384},
      {SF_FORMAT_WAV | SF_ENDIAN_BIG | SF_FORMAT_DOUBLE, 0.0},
  };
  RandomValues random(10);
  for (const Type& type : types) {
    for (const int channels : {1, 2, 5}) {
      const auto count = static_cast<std::size_t>(channels);
      constexpr std::size_t kFrames = 7001;
      std::vector<double> frames(kFrames * count);
      for (double& v : frames) v = random.Between(-0.99, 0.99);
      const auto back = Read(FileOf(frames, channels, 48000, type.format));
      ASSERT_EQ(back.size(), count) << type.format;
      for (std::size_t c = 0; c < count; ++c) {
        EXPECT_EQ(back[c].fsamp, 48000.0);
        ASSERT_EQ(back[c].values.size(), kFrames);
        double error = 0.0;
        for (std::size_t i = 0; i < kFrames; ++i) {
          error = std::max(error, std::fabs(back[c].values[i] - frames[i * count + c]));
        }
        EXPECT_LE(error, type.error) << std::hex << type.format;
      }
    }
  }
}

TEST(Wav, ReadsFloatingPointNumbersAsTheyStand) {
  const std::vector<double> samples{1e9, -123.25, HUGE_VAL, 0.1};
  EXPECT_EQ(Read(FileOf(samples, 1, 10, SF_FORMAT_WAV | SF_FORMAT_DOUBLE))[0].values, samples);
}

TEST(Wav, HasItsTitleForAName) {
  const std::string bytes = FileOf({1, 2}, 2, 1000, SF_FORMAT_WAV | SF_FORMAT_FLOAT, "Shock 3");
  for (const Signal& signal : Read(bytes)) EXPECT_EQ(signal.name, "Shock 3");
}

TEST(Wav, NoTruncationIsTakenForTheWhole) {
  for (const int format : {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                           SF_FORMAT_WAV | SF_ENDIAN_BIG | SF_FORMAT_PCM_24,
                           SF_FORMAT_WAVEX | SF_FORMAT_DOUBLE, SF_FORMAT_RF64 | SF_FORMAT_PCM_32}) {
    const std::string whole = FileOf({0.5, -0.25, 0.125, 0.75}, 1, 1000, format);
    const std::vector<double> samples = Read(whole)[0].values;
    ASSERT_EQ(samples.size(), 4U) << std::hex << format;
    for (std::size_t n = 0; n < whole.size(); ++n) {
      try {
        // What follows the samples may be missing: then they are all there.
        EXPECT_EQ(Read(whole.substr(0, n))[0].values, samples) << std::hex << format << " " << n;
      } catch (const exchange::Error&) {
      }
    }
  }
  const std::string ours = WriteWav({1, 2, 3}, 1000);
  for (std::size_t n = 0; n < ours.size(); ++n) {
    EXPECT_THROW(Read(ours.substr(0, n)), exchange::Error) << n;
  }
}

TEST(Wav, ReadsAFileThatDoesNotKnowItsLength) {
  std::string bytes = WriteWav({1, 2, 3}, 1000);
  for (const char* const id : {"RIFF", "data"}) {
    bytes.replace(bytes.find(id) + 4, 4, "\xFF\xFF\xFF\xFF");
  }
  EXPECT_EQ(Read(bytes)[0].values, (std::vector<double>{1, 2, 3}));
}

TEST(Wav, RefusesWhatIsNone) {
  ExpectError([] { Read(""); }, "is no sound file");
  ExpectError([] { Read("time,value\n0,1\n"); }, "is no sound file");
  ExpectError([] { Read("RIFF\x04\0\0\0AVI LIST"); }, "is no sound file");
  ExpectError([] { Read(WriteWav({}, 1000)); }, "has no samples");
  // Other kinds of sound files that libsndfile would read.
  EXPECT_THROW(Read(FileOf({1, 2}, 1, 1000, SF_FORMAT_AIFF | SF_FORMAT_PCM_16)), exchange::Error);
}

}  // namespace
}  // namespace qarv::test
