// Samples as lines of text: the forms that are taken and those that are not, and what is written.
#include "exchange/csv.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "sample_files.h"

namespace qarv::test {
namespace {

using common::uint64;
using exchange::BytesOf;
using exchange::Signal;

/// A stream's buffer that gives byte by byte, as one without a buffer does, and may break.
class Slow : public std::streambuf {
 public:
  explicit Slow(std::string text, bool breaks = false) : text_(std::move(text)), breaks_(breaks) {}

 protected:
  int_type underflow() override {
    if (at_ != text_.size()) return traits_type::to_int_type(text_[at_]);
    if (breaks_) throw std::runtime_error("unplugged");
    return traits_type::eof();
  }
  int_type uflow() override {
    const int_type c = underflow();
    if (!traits_type::eq_int_type(c, traits_type::eof())) ++at_;
    return c;
  }

 private:
  std::string text_;
  bool breaks_;
  std::size_t at_ = 0;
};

Signal Read(const std::string& text) { return exchange::ReadCsv(BytesOf(text)); }

Signal ReadStream(const std::string& text) {
  Slow buffer(text);
  std::istream in(&buffer);
  return exchange::ReadCsv(in);
}

void ExpectValues(const std::string& text, const std::vector<double>& values) {
  EXPECT_EQ(Read(text).values, values) << text;
  EXPECT_EQ(ReadStream(text).values, values) << text;
}

/// Expects an error of reading or of the rate, from the bytes and from a stream.
void ExpectRefused(const std::string& text, uint64 line, const std::string& what) {
  ExpectError([&] { SampleRateOf(Read(text)); }, what, line);
  ExpectError([&] { SampleRateOf(ReadStream(text)); }, what, line);
}

std::uint64_t BitsOf(double v) { return std::bit_cast<std::uint64_t>(v); }

TEST(CsvReader, TakesOneColumnOrTwo) {
  ExpectValues("1\n2.5\n-3e-2\n", {1, 2.5, -3e-2});
  ExpectValues("0,1\n1,2\n", {1, 2});
  EXPECT_TRUE(Read("1\n2\n").times.empty());
  EXPECT_EQ(Read("1\n2\n").begin, 0.0);
  const Signal timed = Read("0.5,1\n1.5,2\n");
  EXPECT_EQ(timed.times, (std::vector<double>{0.5, 1.5}));
  EXPECT_EQ(timed.begin, 0.5);
  EXPECT_EQ(timed.fsamp, 0.0);
  EXPECT_EQ(timed.unit, "");
}

TEST(CsvReader, SaysWhereEachValueStands) {
  EXPECT_EQ(Read("t,a\n\n0,1\n\r\n1,2").lines, (std::vector<uint64>{3, 5}));
}

TEST(CsvReader, TakesAWaveformWithItsBands) {
  const std::string text = "time,waveform,lower,upper\n0,1,0,2\n0.5,3,-1,4\n";
  ExpectValues(text, {1, 3});
  EXPECT_EQ(SampleRateOf(Read(text)), 2.0);
  ExpectRefused("time,waveform,lower,other\n0,1,0,2\n", 2, "has more than a time and a value");
  ExpectRefused("0,1,0,2\n", 1, "has more than a time and a value");
  ExpectRefused("time,waveform,lower,upper\n0,1,0\n", 2, "has more than a time and a value");
  ExpectRefused("time,waveform,lower,upper\n0,1,0,2\n1,2\n", 3, "has another number of columns");
}

TEST(CsvReader, TakesCommaSemicolonAndTab) {
  ExpectValues("0,1\n1,2\n", {1, 2});
  ExpectValues("0;1\n1;2\n", {1, 2});
  ExpectValues("0\t1\n1\t2\n", {1, 2});
  ExpectValues("0,0;1,5\n0,1;2,5\n", {1.5, 2.5});  // decimal commas
  ExpectValues(" 0 , +1 \n 1 , 2 \n", {1, 2});
}

TEST(CsvReader, TakesAHeaderByteOrderMarkLineEndsAndEmptyLines) {
  ExpectValues("\xEF\xBB\xBFtime,value\r\n0,1\r\n\r\n1,2\r\n", {1, 2});
  ExpectValues("\n\na [g]\n1\n2", {1, 2});
  ExpectValues("t;a\n0;1\n", {1});
}

TEST(CsvReader, TakesNumbersThatAreNone) {
  const Signal csv = Read("nan\ninf\n-inf\n");
  ASSERT_EQ(csv.values.size(), 3U);
  EXPECT_TRUE(std::isnan(csv.values[0]));
  EXPECT_EQ(csv.values[1], HUGE_VAL);
  EXPECT_EQ(csv.values[2], -HUGE_VAL);
  ExpectError([&] { RequireNumbers(csv); }, "the value is no number", 1);
  ExpectError([&] { RequireNumbers(Read("a\n1\n\ninf\n")); }, "the value is no number", 4);
  RequireNumbers(Read("1\n-1e308\n"));
}

TEST(CsvReader, NamesTheLineThatIsNotOfTheForm) {
  ExpectRefused("1\nx\n", 2, "is not a line of numbers");
  ExpectRefused("time,value\nanother,header\n0,1\n", 2, "is not a line of numbers");
  ExpectRefused("time,value\n0,1\n0.1,\n", 3, "is not a line of numbers");
  ExpectRefused("0,1\n0.1\n", 2, "has another number of columns");
  ExpectRefused("1\n0.1,2\n", 2, "is not a line of numbers");
  ExpectRefused("0,1,2\n", 1, "has more than a time and a value");
  ExpectRefused("time,1\n0,1\n", 1, "is not a line of numbers");  // half a header
  ExpectRefused("1\n1 2\n", 2, "is not a line of numbers");
  ExpectRefused("", 0, "is empty");
  ExpectRefused("time,value\n", 0, "has no samples");
}

TEST(CsvReader, KeepsNoMoreThanALine) {
  const std::string longest(65536 - 1, ' ');
  ExpectValues("1" + longest + "\n2\n", {1, 2});
  ExpectRefused("1\n1 " + longest + "\n", 0, "has a line of more than 65536 bytes");
}

TEST(CsvReader, PassesOnWhatAStreamThrows) {
  Slow buffer("1\n2\n", true);
  std::istream in(&buffer);
  EXPECT_THROW(exchange::ReadCsv(in), std::runtime_error);
  std::ifstream none("/no/such/file");
  ExpectError([&] { exchange::ReadCsv(none); }, "cannot be read");
}

TEST(CsvReader, TakesTheRateFromTheMeanStep) {
  EXPECT_EQ(SampleRateOf(Read("0,1\n0.001,2\n0.002,3\n")), 1000.0);
  EXPECT_EQ(SampleRateOf(Read("5.0,1\n5.1,2\n5.2,3\n5.3,3\n")), 10.0);
  EXPECT_EQ(SampleRateOf(Read("0,0\n0.00039,0\n")), 2564.10256410);
  // 0.05 % off the mean is within what clocks and printed digits leave.
  EXPECT_NEAR(SampleRateOf(Read("0,1\n1.0005,2\n2,3\n")), 1.0, 1e-12);
}

TEST(CsvReader, RefusesUnevenStepsWithTheirLine) {
  ExpectRefused("t,a\n0,1\n1,2\n2.01,3\n3.01,3\n", 3,
                "the time step of 1 s is not the mean step of 1.0033333333333332 s");
  ExpectRefused("0,1\n1,2\n1,3\n2,3\n", 2,
                "the time step of 1 s is not the mean step of 0.6666666666666666 s");
  ExpectRefused("0,1\n-1,2\n", 2, "the time step of -1 s is not the mean step of -1 s");
  ExpectRefused("0,1\nnan,2\n", 2, "the time step of nan s is not the mean step of nan s");
  ExpectRefused("0,1\ninf,2\n", 2, "the time step of inf s is not the mean step of inf s");
}

TEST(CsvReader, NeedsTwoTimesForARate) {
  ExpectRefused("1\n2\n", 0, "has no time column: Fsamp is needed");
  ExpectRefused("0,2\n", 0, "one sample has no time step: Fsamp is needed");
}

TEST(SampleRate, IsWhatTheFileSaysAndNamesTheSampleWhereThereAreNoLines) {
  Signal signal;
  signal.values = {1, HUGE_VAL, 3};
  signal.times = {0, 1, 3};
  ExpectError([&] { SampleRateOf(signal); },
              "sample 1: the time step of 1 s is not the mean step of 1.5 s");
  ExpectError([&] { RequireNumbers(signal); }, "sample 1 is no number");
  signal.fsamp = 44100.5;
  EXPECT_EQ(SampleRateOf(signal), 44100.5);
}

// ---- Written -----------------------------------------------------------------------------------

TEST(CsvWriter, SamplesComeBackWithTheSameBits) {
  RandomValues random(5);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 1000, 20001}) {
    std::vector<double> samples = RandomSamples(&random, n, true);
    samples[n / 2] = std::bit_cast<double>(std::uint64_t{0xFFF8000000001234});
    const std::string text =
        Written([&](const exchange::Sink& sink) { exchange::WriteSamplesCsv(samples, sink); });
    for (const Signal& back : {Read(text), ReadStream(text)}) {
      ASSERT_EQ(back.values.size(), n);
      for (std::size_t i = 0; i < n; ++i) EXPECT_EQ(BitsOf(back.values[i]), BitsOf(samples[i]));
    }
  }
}

TEST(CsvWriter, AWaveformHasFourColumnsOfPlainNumbers) {
  const OwnedWaveform wave{{-0.0, -std::nan(""), 0.1}, {-1, -HUGE_VAL, -2}, {1, 2, 1e300}, 8};
  const auto write = [&](const exchange::Sink& sink) { WriteWaveCsv(wave.View(), sink); };
  EXPECT_EQ(Written(write),
            "time,waveform,lower,upper\n0,0,-1,1\n0.125,nan,-inf,2\n0.25,0.1,-2,1e+300\n");
  std::ostringstream out;
  write(exchange::ToStream(out));
  EXPECT_EQ(out.str(), Written(write));
}

TEST(CsvWriter, AWaveformComesBack) {
  RandomValues random(6);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 20001}) {
    const OwnedWaveform wave = RandomWaveform(&random, n, false);
    const Signal back = Read(
        Written([&](const exchange::Sink& sink) { exchange::WriteWaveCsv(wave.View(), sink); }));
    EXPECT_EQ(back.values, wave.waveform);
    EXPECT_EQ(n > 1 ? SampleRateOf(back) : wave.fsamp, wave.fsamp);
  }
}

TEST(CsvWriter, NothingIsAHeaderAlone) {
  const auto header = Written([](const exchange::Sink& sink) { exchange::WriteWaveCsv({}, sink); });
  EXPECT_EQ(header, "time,waveform,lower,upper\n");
  ExpectRefused(header, 0, "has no samples");
}

TEST(CsvWriter, WritesInPiecesAndStopsWhereTheSinkThrows) {
  const std::vector<double> samples(100000, 1.0 / 3);
  const auto write = [&](const exchange::Sink& sink) { exchange::WriteSamplesCsv(samples, sink); };
  ExpectPieces(write, 1800000);
  int calls = 0;
  EXPECT_THROW(write([&](std::string_view) {
                 if (++calls == 2) throw std::runtime_error("full");
               }),
               std::runtime_error);
  EXPECT_EQ(calls, 2);
  std::ofstream none("/no/such/file");
  ExpectError([&] { write(exchange::ToStream(none)); }, "cannot be written");
}

TEST(CsvWriter, RefusesBandsOfAnotherLength) {
  for (const OwnedWaveform& wave :
       {OwnedWaveform{{1, 2}, {1}, {1, 2}}, {{1, 2}, {1, 2}, {1, 2, 3}}}) {
    EXPECT_EQ(Written([&](const exchange::Sink& sink) {
                ExpectError([&] { exchange::WriteWaveCsv(wave.View(), sink); },
                            "its bands are not as long as the waveform");
              }),
              "");
  }
}

TEST(CsvReader, ATruncationIsRefusedOrKeepsWhatStandsBeforeIt) {
  const std::string whole = "time,waveform,lower,upper\n0,1.5,0,2\n0.5,-3.25,-1,4\n1,7.125,0,1\n";
  const std::vector<double> values = Read(whole).values;
  for (std::size_t n = 0; n < whole.size(); ++n) {
    const std::string text = whole.substr(0, n);
    const auto complete = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    try {
      const std::vector<double> cut = Read(text).values;
      ASSERT_GE(cut.size() + 1, complete) << n;
      ASSERT_LE(cut.size(), complete) << n;
      for (std::size_t i = 0; i + 1 < complete; ++i) EXPECT_EQ(cut[i], values[i]) << n;
    } catch (const exchange::Error&) {
    }
  }
}

}  // namespace
}  // namespace qarv::test
