// Records as loggers write them: which texts are understood, and what is refused with which line.
#include "exchange/table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "exchange/units.h"
#include "sample_files.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::ChannelChoice;
using exchange::Recording;

Recording Read(const std::string& text, const ChannelChoice& choice = {}) {
  return exchange::ReadTable(BytesOf(text), choice);
}

/// The same, in pieces of one to three bytes.
Recording ReadInPieces(const std::string& text, const ChannelChoice& choice = {}) {
  std::size_t at = 0;
  const exchange::Pieces next = [&] {
    const std::size_t begin = at;
    at = std::min(text.size(), at + 1 + at % 3);
    return std::span<const char>(text.data() + begin, at - begin);
  };
  return exchange::ReadTable(next, choice);
}

/// Expects values, and times of `step` from 0 on, or none where it is 0.
void Expect(const std::string& text, const std::vector<double>& values, double step,
            const std::string& unit = "", const ChannelChoice& choice = {}) {
  for (const Recording& table : {Read(text, choice), ReadInPieces(text, choice)}) {
    ASSERT_FALSE(table.channels.empty());
    EXPECT_EQ(table.channels.front().values, values) << text;
    EXPECT_NEAR(table.channels.front().fsamp, step == 0.0 ? 0.0 : 1.0 / step, 1e-9 / (step + 1e-9))
        << text;
    EXPECT_EQ(table.channels.front().unit, unit) << text;
  }
}

void ExpectRefused(const std::string& text, common::uint64 line, const std::string& what,
                   const ChannelChoice& choice = {}) {
  ExpectError([&] { Read(text, choice); }, what, line);
  ExpectError([&] { ReadInPieces(text, choice); }, what, line);
}

std::string Utf16(const std::string& ascii, bool big) {
  std::string out = big ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : ascii) {
    if (big) out += '\0';
    out += c;
    if (!big) out += '\0';
  }
  return out;
}

std::string Digits(double v) {
  std::ostringstream text;
  text.precision(17);
  text << v;
  return text.str();
}

bool Says(const Recording& table, const std::string& text) {
  return std::any_of(table.remarks.begin(), table.remarks.end(), [&](const std::string& remark) {
    return remark.find(text) != std::string::npos;
  });
}

// ---- Lines and columns
// ---------------------------------------------------------------------------

TEST(Table, TakesOneColumnOrTwoWithoutAHeader) {
  Expect("1\n2.5\n-3e-2\n", {1, 2.5, -3e-2}, 0);
  Expect("0,1\n1,2\n", {1, 2}, 1);
  Expect("0,1", {1}, 0, "", {.fsamp = 0.0});
}

TEST(Table, TakesEverySeparator) {
  Expect("0,1\n1,2\n2,4\n", {1, 2, 4}, 1);
  Expect("0;1\n1;2\n2;4\n", {1, 2, 4}, 1);
  Expect("0\t1\n1\t2\n2\t4\n", {1, 2, 4}, 1);
  Expect("0|1\n1|2\n2|4\n", {1, 2, 4}, 1);
  Expect("0 1\n1 2\n2 4\n", {1, 2, 4}, 1);
  Expect("  0.0E+00   1.0E+00  \n  1.0E+00  -2.0E+00\n", {1, -2}, 1);
  Expect(" 0 , +1 \n 1 , 2 \n", {1, 2}, 1);
}

TEST(Table, TakesDecimalCommasBesideAllButTheComma) {
  Expect("0,0;1,5\n0,1;2,5\n", {1.5, 2.5}, 0.1);
  Expect("0,0\t1,5\n0,1\t2,5\n", {1.5, 2.5}, 0.1);
  Expect("0,0 1,5\n0,1 2,5\n", {1.5, 2.5}, 0.1);
  Expect("0;1\n1;2\n2;2,5\n3;-0,5\n", {1, 2, 2.5, -0.5}, 1);
  Expect("\"0,0\",\"1,5\"\n\"0,1\",\"2,5\"\n", {1.5, 2.5}, 0.1);
}

TEST(Table, TakesAnyNumberOfHeaderLines) {
  std::string text = "Logger XY 17;\nSerial;1234\n2024-03-05 12:00\n;\n";
  for (int i = 0; i < 100; ++i) text += "Note " + std::to_string(i) + ";a;b;c\n";
  text += "1000\n4711;1;2\nTime [s];Acc [g]\n0;1\n0,5;2\n1;3\n";
  Expect(text, {1, 2, 3}, 0.5, "g");
}

TEST(Table, ALineOrTwoThatLookLikeSamplesMayBelongToTheHeader) {
  Expect("1;100\n2;100\nTime;Acc\n0;1;5\n1;2;6\n2;4;7\n", {1, 2, 4}, 1);
  Expect("51200\n3\nTime;Acc\n0;1\n1;2\n", {1, 2}, 1);
}

TEST(Table, TakesCommentsEmptyLinesAndFooters) {
  Expect("# t a\n%\n0 1\n\n# break\n1 2\n\n; end\n2 3\nEnd of data\nTotal: 3\n", {1, 2, 3}, 1);
  Expect("# time [ms], acc [m/s2]\n0,1\n1,2\n2,3\n", {1, 2, 3}, 0.001, "m/s^2");
  Expect(";comment\n0;1\n1;2\n", {1, 2}, 1);
}

TEST(Table, TakesTrailingSeparatorsAndQuotes) {
  Expect("t;a;\n0;1;\n1;2;\n2;3\n", {1, 2, 3}, 1);
  Expect("\"Time, relative\",\"Acc, x [g]\",\"Note\"\n\"0\",\"1\",\"a,b\"\n\"1\",\"2\",\"c,d\"\n",
         {1, 2}, 1, "g", {.time = "1"});
}

TEST(Table, TakesEveryLineEndAndEncoding) {
  const std::string text = "t [s];a [g]\n0;1\n1;2\n2;4\n";
  const auto with = [&](const std::string& end) {
    std::string out;
    for (const char c : text) c == '\n' ? out += end : out += c;
    return out;
  };
  for (const std::string& each : {text, with("\r\n"), with("\r"), "\xEF\xBB\xBF" + text,
                                  Utf16(text, true), Utf16(with("\r\n"), false)}) {
    Expect(each, {1, 2, 4}, 1, "g");
  }
  Expect(Utf16(text, false).substr(2), {1, 2, 4}, 1, "g");  // without the mark
}

TEST(Table, ReadsTheSameWhateverThePiecesAre) {
  RandomValues random(3);
  std::string text = "t,a\r\n";
  std::vector<double> values;
  for (int i = 0; i < 3000; ++i) {
    values.push_back(random.Between(-1e3, 1e3));
    text += Digits(i * 0.25) + "," + Digits(values.back()) + "\r\n";
  }
  Expect(text, values, 0.25);
}

// ---- Titles, units, channels
// ---------------------------------------------------------------------

TEST(Table, FindsUnitsInTheTitlesOrBelowThem) {
  for (const char* const header :
       {"Time [ms];Acc [m/s^2]", "t/ms;a/(m/s²)", "Zeit (ms);a (m/s2)", "time_ms;acc_m/s2",
        "Time;Acc\nms;m/s²", "Time;Acc\n[ms];[M/S**2]", "time in ms;acc in m/s\xB2"}) {
    Expect(std::string(header) + "\n0;1\n0,5;2\n1;3\n", {1, 2, 3}, 0.0005, "m/s^2");
  }
  Expect("Time [ms] Acc [g]\n0 1\n1 2\n", {1, 2}, 0.001, "g");
}

TEST(Table, KnowsTheSpellingsOfUnits) {
  for (const char* const text : {"g", "G", "gn", "g0", "gee", " g "})
    EXPECT_EQ(exchange::PlainUnit(text), "g");
  for (const char* const text : {"m/s2", "m/s^2", "m/s²", "m/s\xB2", "M/S**2", "m/s/s", "m s-2",
                                 "m·s^-2", "m*s^-2", "m/sec^2"}) {
    EXPECT_EQ(exchange::PlainUnit(text), "m/s^2") << text;
  }
  EXPECT_EQ(exchange::PlainUnit("in/s**2"), "in/s^2");
  EXPECT_EQ(exchange::PlainUnit(" mV "), "mV");
  EXPECT_EQ(exchange::SecondsOf("µs"), 1e-6);
  EXPECT_EQ(exchange::SecondsOf("g"), 0.0);
}

const std::string kThree =
    "Index,Time (s),X [g],Y [g],Z [m/s2]\n0,0.0,1,2,3\n1,0.1,4,5,6\n2,0.2,7,8,9\n";

TEST(Table, ChoosesChannelsByNumberOrName) {
  Expect(kThree, {1, 4, 7}, 0.1, "g");
  EXPECT_TRUE(Says(Read(kThree), "the first channel of X, Y, Z was taken"));
  Expect(kThree, {2, 5, 8}, 0.1, "g", {.channels = {"Y"}});
  Expect(kThree, {2, 5, 8}, 0.1, "g", {.channels = {"y"}});
  Expect(kThree, {3, 6, 9}, 0.1, "m/s^2", {.channels = {"5"}});
  const Recording both = Read(kThree, {.channels = {"Z", "X"}});
  ASSERT_EQ(both.channels.size(), 2U);
  EXPECT_EQ(both.channels[0].name, "Z");
  EXPECT_EQ(both.channels[0].values, (std::vector<double>{3, 6, 9}));
  EXPECT_EQ(both.channels[1].values, (std::vector<double>{1, 4, 7}));
  EXPECT_EQ(both.names, (std::vector<std::string>{"Index", "Time", "X", "Y", "Z"}));
  ExpectRefused(kThree, 0, "has no column W, but 5: Index, Time, X, Y, Z", {.channels = {"W"}});
  ExpectRefused(kThree, 0, "has no column 6, but 5: Index, Time, X, Y, Z", {.channels = {"6"}});
}

TEST(Table, TakesTheIndexOfADataFrameForNoChannel) {
  Expect(",time,acc\n0,0.0,1\n1,0.5,2\n2,1.0,3\n", {1, 2, 3}, 0.5);
  Expect(",stamp,acc\n0,2024-03-05 10:15:00.0,1\n1,2024-03-05 10:15:00.5,2\n", {1, 2}, 0.5);
}

TEST(Table, TheTimeMayStandAnywhere) {
  Expect("a,t\n1,0\n2,0.5\n", {1, 2}, 0.5);
  Expect("a,b\n1,0\n2,0.5\n", {1, 2}, 0.5, "", {.time = "b"});
}

TEST(Table, AGivenRateOverridesATimeColumn) {
  const Recording table = Read("t,a\n0,1\n5,2\n6,3\n", {.fsamp = 100.0});
  EXPECT_EQ(table.channels[0].fsamp, 100.0);
  EXPECT_EQ(table.channels[0].values, (std::vector<double>{1, 2, 3}));
  EXPECT_TRUE(Says(table, "the time column is passed over"));
}

// ---- Times
// ---------------------------------------------------------------------------------------

TEST(Table, FitsTheRateOfRoundedStamps) {
  // 12800 Hz in steps of 78.125 us, of which 10 us are printed.
  std::string text = "t,a\n";
  for (int i = 0; i < 5000; ++i) {
    text += Digits(std::round(i / 12800.0 * 1e5) / 1e5) + "," + Digits(i % 7) + "\n";
  }
  EXPECT_EQ(Read(text).channels[0].fsamp, 12800.0);
}

TEST(Table, FitsTheRateOfJitteringStamps) {
  RandomValues random(8);
  std::string text;
  for (int i = 0; i < 20000; ++i) {
    text += Digits((i + random.Between(-0.1, 0.1)) / 5000.0) + ",1\n";
  }
  EXPECT_NEAR(Read(text).channels[0].fsamp, 5000.0, 0.01);
}

TEST(Table, RefusesAStepThatIsHalfASampleOffWithItsLine) {
  std::string text = "t,a\n";
  for (int i = 0; i < 100; ++i) text += Digits((i < 60 ? i : i + 1) / 1000.0) + ",1\n";
  try {
    Read(text);
    ADD_FAILURE();
  } catch (const exchange::Error& e) {
    EXPECT_EQ(e.GetLine(), 62U);
    EXPECT_NE(std::string(e.what()).find("the time step of 0.002 s is 1.9"), std::string::npos)
        << e.what();
  }
  ExpectRefused("0,1\n0,2\n0,3\n", 0, "its times do not rise");
  ExpectRefused("0,1\n-1,2\n", 0, "its times do not rise");
  ExpectRefused("t,a\n0,2\n", 0, "one sample has no time step: Fsamp is needed");
}

TEST(Table, TakesStampsOfDateAndTime) {
  for (const char* const text :
       {"stamp;a\n2024-02-29T23:59:59.5Z;1\n2024-03-01T00:00:00.0Z;2\n2024-03-01T00:00:00.5Z;3\n",
        "2024-02-29 23:59:59,5;1\n2024-03-01 00:00:00,0;2\n2024-03-01 00:00:00,5;3\n",
        "2024-02-29 23:59:59.5 1\n2024-03-01 00:00:00.0 2\n2024-03-01 00:00:00.5 3\n",
        "Date,Time,a\n29.02.2024,23:59:59.5,1\n01.03.2024,00:00:00.0,2\n01.03.2024,00:00:00.5,3\n",
        "Time,a\n23:59:59.5,1\n00:00:00.0,2\n00:00:00.5,3\n"}) {
    Expect(text, {1, 2, 3}, 0.5);
    EXPECT_TRUE(Says(Read(text), "count from the first stamp")) << text;
    EXPECT_EQ(Read(text).channels[0].begin, 0.0);
  }
}

TEST(Table, TakesEpochsOfEveryUnit) {
  for (const char* const text :
       {"1709210000.5,1\n1709210001,2\n1709210001.5,3\n",
        "1709210000500,1\n1709210001000,2\n1709210001500,3\n",
        "1709210000500000,1\n1709210001000000,2\n1709210001500000,3\n",
        "1709210000500000000,1\n1709210001000000000,2\n1709210001500000000,3\n"}) {
    Expect(text, {1, 2, 3}, 0.5);
    EXPECT_TRUE(Says(Read(text), "of an epoch")) << text;
  }
  EXPECT_EQ(Read("5.0,1\n5.1,2\n").channels[0].begin, 5.0);
}

// ---- Values that are missing
// ---------------------------------------------------------------------

TEST(Table, RefusesAMissingValueWithItsLine) {
  ExpectRefused("t,a\n0,1\n1,\n2,3\n", 3, "the value is missing");
  ExpectRefused("t,a\n0,1\n1,OL\n2,3\n", 3, "the value is no number");
  ExpectRefused("1\nnan\n3\n", 2, "the value is no number");
  ExpectRefused("value\nnan\n2\n3\n", 2, "the value is no number");
  ExpectRefused("1\n2\n\ninf\n", 4, "the value is no number");
  ExpectRefused("t,a\n0,OL\n1,2\n2,3\n", 2, "the value is no number");
}

TEST(Table, BridgesAsManyMissingValuesAsAreAllowed) {
  const std::string text = "t,a\n0,1\n1,OL\n2,\n3,4\n4,5\n";
  const Recording table = Read(text, {.skipBad = 2});
  EXPECT_EQ(table.channels[0].values, (std::vector<double>{1, 2, 3, 4, 5}));
  EXPECT_EQ(table.channels[0].fsamp, 1.0);
  EXPECT_TRUE(Says(table, "2 lines without a value are passed over, 2 samples are bridged"));
  ExpectRefused(text, 4, "the value is missing", {.skipBad = 1});
  // A line that is no sample at all leaves no hole in the times.
  EXPECT_EQ(Read("t,a\n0,1\n1,2\nevent\n2,3\n3,4\n", {.skipBad = 1}).channels[0].values,
            (std::vector<double>{1, 2, 3, 4}));
}

TEST(Table, NamesTheLineThatIsNotOfTheForm) {
  ExpectRefused("", 0, "is empty");
  ExpectRefused("time,value\n", 0, "has no samples");
  ExpectRefused("1\nx\n", 2, "is not a line of numbers");
  ExpectRefused("0,1\n1,2\nx\n2,3\n", 3, "is not a line of numbers");
  ExpectRefused("0,1\n1,2\n2\n3,3\n", 3, "has another number of columns");
  ExpectRefused("0,1\n1,2\n2,3,4\n3,3\n", 3, "has another number of columns");
  ExpectRefused("0,1\n1,2\n2,x\n", 3, "is not a line of numbers");
  std::string longer;
  for (int i = 0; i < 100; ++i) longer += std::to_string(i) + ",1\n";
  ExpectRefused(longer + "100,x\n", 101, "is not a line of numbers");
  ExpectRefused("1\n1 " + std::string(65536, ' ') + "\n", 0, "has a line of more than 65536 bytes");
}

TEST(Table, DamagedTextsAreErrorsOrSamples) {
  RandomValues random(21);
  int read = 0;
  int refused = 0;
  const std::string stamps =
      "Date;Time;a [g]\n2024-03-05;12:00:00,0;1,5\n2024-03-05;12:00:00,5;2\n";
  for (const std::string& whole :
       {kThree, stamps, Utf16(kThree, true), "# t a\n0 1\n1 2\n2 3\nend\n" + kThree}) {
    for (int round = 0; round < 3000; ++round) {
      std::string text = whole;
      for (unsigned int hits = 1 + random.Below(4); hits != 0; --hits) {
        text[random.Below(static_cast<unsigned int>(text.size()))] =
            random.OneIn(2)
                ? random.Pick({'\0', '\xFF', ',', ';', '"', '\n', '\r', ' ', '9', '-', ':'})
                : static_cast<char>(random.Below(256));
      }
      if (random.OneIn(4)) text.resize(random.Below(static_cast<unsigned int>(text.size())));
      try {
        const Recording table = Read(text, {.skipBad = random.Below(3)});
        ASSERT_FALSE(table.channels.empty());
        for (const double v : table.channels[0].values) EXPECT_TRUE(std::isfinite(v));
        EXPECT_FALSE(table.channels[0].values.empty());
        ++read;
      } catch (const exchange::Error& e) {
        EXPECT_STRNE(e.what(), "");
        ++refused;
      }
    }
  }
  EXPECT_GT(read, 1000);
  EXPECT_GT(refused, 1000);
}

}  // namespace
}  // namespace qarv::test
