// Universal files: what is written in their fixed columns, and what is read of those of others.
#include "exchange/uff.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "sample_files.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::Signal;
using exchange::Sink;

std::vector<Signal> Read(const std::string& text) { return exchange::ReadUff(BytesOf(text)); }

std::string WriteUff(const OwnedWaveform& wave) {
  return Written([&](const Sink& sink) { exchange::WriteUff(wave.View(), sink); });
}

const OwnedWaveform kShort{{1, 2, 3, 4, 5}, {0, 1, 2, 3, 4}, {2, 3, 4, 5, 6}};

TEST(Uff, RoundTripsInThirteenDigits) {
  RandomValues random(91);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 4, 5, 8, 257, 30001}) {
    OwnedWaveform wave = RandomWaveform(&random, n, false);
    for (auto* const samples : {&wave.waveform, &wave.lower, &wave.upper}) {
      for (double& v : *samples) v *= std::pow(10.0, std::floor(random.Between(-250, 250)));
    }
    wave.fsamp = random.Pick({12800.0, 44100.0, 1e-3, 1.0 / 3.0, 2.56e7});
    wave.unit = "m/s^2";
    const auto functions = Read(WriteUff(wave));
    ASSERT_EQ(functions.size(), 3U);
    EXPECT_EQ(functions[0].name, "waveform");
    EXPECT_EQ(functions[1].name, "lower band");
    EXPECT_EQ(functions[2].name, "upper band");
    const std::vector<double>* const written[] = {&wave.waveform, &wave.lower, &wave.upper};
    for (std::size_t f = 0; f < 3; ++f) {
      EXPECT_EQ(functions[f].fsamp, wave.fsamp);
      EXPECT_EQ(functions[f].unit, "m/s^2");
      EXPECT_EQ(functions[f].begin, 0.0);
      EXPECT_TRUE(functions[f].times.empty());
      ASSERT_EQ(functions[f].values.size(), n);
      for (std::size_t i = 0; i < n; ++i) {
        const double v = (*written[f])[i];
        EXPECT_LE(std::fabs(functions[f].values[i] - v), 5.1e-13 * std::fabs(v));
      }
    }
  }
}

TEST(Uff, KeepsTheFixedColumns) {
  OwnedWaveform wave{{1, -2.5, 1e-100, 4, -5e200}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, 12800};
  wave.name = "a\nb";
  const std::string text = WriteUff(wave);
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

TEST(Uff, AnUnknownQuantityIsAnAmplitude) {
  exchange::Waveform wave = kShort.View();
  wave.quantity = exchange::Quantity::Unknown;
  wave.unit = "";
  const std::string text = Written([&](const Sink& sink) { exchange::WriteUff(wave, sink); });
  EXPECT_NE(text.find("\n         0    0    0    0 Amplitude            NONE                \n"),
            std::string::npos);
  EXPECT_EQ(Read(text).front().unit, "");
}

TEST(Uff, ReadsWhatOthersWrite) {
  // Another dataset before it, line ends of another system, single precision, no rate line, a time
  // of the first value.
  const auto functions = Read(
      "    -1\r\n   151\r\nmodel\r\nNONE\r\n    -1\r\n    -1\r\n    58\r\nPoint 3\r\nNONE\r\n"
      "21-Nov-26\r\nNONE\r\nNONE\r\n"
      "    1         0    0         0       NONE         3   3       NONE         0   0\r\n"
      "         2         7         1  2.50000E-01  1.00000E-03  0.00000E+00\r\n"
      "        17    0    0    0                 NONE                 NONE\r\n"
      "        12    0    0    0                 NONE                 NONE\r\n"
      "         0    0    0    0                 NONE                 NONE\r\n"
      "         0    0    0    0                 NONE                 NONE\r\n"
      "  0.00000E+00  1.00000E+00 -2.00000E+00  3.00000E+00  4.00000E+00  5.00000E+00\r\n"
      "  6.50000E+00\r\n    -1\r\n");
  ASSERT_EQ(functions.size(), 1U);
  EXPECT_EQ(functions[0].name, "Point 3");
  EXPECT_EQ(functions[0].fsamp, 1000.0);
  EXPECT_EQ(functions[0].begin, 0.25);
  EXPECT_EQ(functions[0].unit, "");
  EXPECT_EQ(functions[0].values, (std::vector<double>{0, 1, -2, 3, 4, 5, 6.5}));
}

TEST(Uff, RefusesWhatIsNoFunctionOfEvenlySpacedRealNumbers) {
  const std::string whole = WriteUff(kShort);
  const auto refused = [&](const std::string& from, const std::string& to, const std::string& what,
                           common::uint64 line = 0) {
    std::string text = whole;
    const auto at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
    ExpectError([&] { Read(text); }, what, line);
  };
  const std::string numbers = "         4         5         1";
  refused(numbers, "         6         5         1", "its values are not real numbers");
  refused(numbers, "         4         5         0", "its values are not evenly spaced");
  refused(numbers, "         4         4         1", "has more values than it says");
  refused(numbers, "         4         6         1", "no number in columns 21 to 40", 15);
  refused(numbers, "         4         0         1", "has no samples");
  refused(numbers, "         4        -1         1", "has no samples");
  refused(numbers, "         4       nan         1", "has no samples");
  refused(numbers, "         4    999999         1", "no number in columns 21 to 40", 15);
  refused("1.00000E-03", "0.00000E+00", "has no time increment");
  refused("1.00000E-03", "-1.0000E-03", "has no time increment");
  refused("  2.000000000000E+00", "  2.0000000#0000E+00", "no number in columns 21 to 40", 14);
  const auto binary = [&](int order, int format, int lines, int size, const std::string& what) {
    refused("    58\n",
            fmt::format("   58b{:6}{:6}{:12}{:12}{:6}{:6}{:12}{:12}\n", order, format, lines, size,
                        0, 0, 0, 0),
            what);
  };
  binary(1, 2, 11, 64, "has more values than it says");
  binary(1, 2, 11, 39, "has fewer values than it says");
  binary(1, 2, 12, 40, "its header has not eleven lines");
  binary(1, 1, 11, 40, "its values are not of IEEE 754");
  binary(3, 2, 11, 40, "has a byte order that is none");
  binary(1, 2, 11, 99999, "ends within a dataset, behind line 13");
  ExpectError([] { Read(""); }, "has no function (dataset 58)");
  ExpectError([] { Read("time,value\n0,1\n"); }, "has no function (dataset 58)");
}

/// A function of binary values, of the type 2 (float) or 4 (double).
std::string Binary(const std::string& name, int type, bool big, const std::vector<double>& values) {
  std::string bytes;
  for (const double v : values) {
    const std::uint64_t word = type == 4 ? std::bit_cast<std::uint64_t>(v)
                                         : std::bit_cast<std::uint32_t>(static_cast<float>(v));
    const int width = type == 4 ? 8 : 4;
    for (int k = 0; k < width; ++k) {
      bytes += static_cast<char>(word >> (8 * (big ? width - 1 - k : k)) & 0xFF);
    }
  }
  return fmt::format(
      "    -1\n    58b{:6}{:6}{:12}{:12}{:6}{:6}{:12}{:12}\n{}\nNONE\nNONE\nNONE\nNONE\n"
      "    1         1    0         0 NONE               1   0 NONE               0   0\n"
      "{:10}{:10}         1  1.50000E+00  1.00000E-03  0.00000E+00\n"
      "        17    0    0    0 Time                 s                   \n"
      "        12    0    0    0 Acceleration         g                   \n"
      "         0    0    0    0 NONE                 NONE                \n"
      "         0    0    0    0 NONE                 NONE                \n{}    -1\n",
      big ? 2 : 1, 2, 11, bytes.size(), 0, 0, 0, 0, name, type, values.size(), bytes);
}

TEST(Uff, ReadsBinaryFunctionsOfBothByteOrdersAndWidths) {
  const std::vector<double> values{1.5, -2.25, 0.0, 1e10, 0.1};
  std::string all;
  for (const int type : {2, 4}) {
    for (const bool big : {false, true}) {
      all += Binary(fmt::format("{} {}", type, big), type, big, values);
    }
  }
  const auto functions = Read(all + WriteUff(kShort));
  ASSERT_EQ(functions.size(), 7U);
  for (std::size_t f = 0; f < 4; ++f) {
    EXPECT_EQ(functions[f].name, fmt::format("{} {}", f < 2 ? 2 : 4, f % 2 == 1));
    EXPECT_EQ(functions[f].fsamp, 1000.0);
    EXPECT_EQ(functions[f].begin, 1.5);
    EXPECT_EQ(functions[f].unit, "g");
    ASSERT_EQ(functions[f].values.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      EXPECT_EQ(functions[f].values[i], f < 2 ? static_cast<float>(values[i]) : values[i]);
    }
  }
  EXPECT_EQ(functions[4].name, "waveform");
}

TEST(Uff, NoTruncationIsTakenForTheWhole) {
  const std::string whole = WriteUff(kShort);
  for (std::size_t n = 0; n + 1 < whole.size(); ++n) {
    // What ends between two functions holds those before it.
    std::size_t delimiters = 0;
    for (auto at = whole.find("    -1"); at + 6 <= n; at = whole.find("    -1", at + 1))
      ++delimiters;
    try {
      EXPECT_EQ(Read(whole.substr(0, n)).size(), delimiters / 2) << n;
      EXPECT_EQ(delimiters % 2, 0U) << n;
    } catch (const exchange::Error&) {
      EXPECT_TRUE(delimiters % 2 == 1 || delimiters == 0) << n;
    }
  }
}

TEST(Uff, RefusesSamplesThatAreNoNumbersBeforeItWrites) {
  for (const double v : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    for (const int role : {0, 1, 2}) {
      OwnedWaveform wave = kShort;
      (role == 0 ? wave.waveform : role == 1 ? wave.lower : wave.upper)[4] = v;
      EXPECT_EQ(Written([&](const Sink& sink) {
                  ExpectError([&] { exchange::WriteUff(wave.View(), sink); },
                              "a universal file cannot hold what is no number");
                }),
                "");
    }
  }
  OwnedWaveform wave = kShort;
  wave.upper.pop_back();
  ExpectError([&] { WriteUff(wave); }, "its bands are not as long as the waveform");
}

TEST(Uff, WritesInPieces) {
  const std::vector<double> samples(50000, 1.0 / 3);
  const OwnedWaveform wave{samples, samples, samples};
  ExpectPieces([&](const Sink& sink) { exchange::WriteUff(wave.View(), sink); }, 3000000);
}

TEST(Uff, NothingIsWrittenAndNotRead) {
  ExpectError([] { Read(WriteUff({})); }, "has no samples");
}

}  // namespace
}  // namespace qarv::test
