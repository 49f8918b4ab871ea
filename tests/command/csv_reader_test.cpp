// Measured samples from CSV files: the forms that are taken and those that are not.
#include "csv_reader.h"

#include <gtest/gtest.h>

#include <cmath>

#include "command_error.h"
#include "temp_folder.h"
#include "text/text.h"

namespace qarv::test {
namespace {

using command::CommandError;
using command::MeasuredCsv;

class CsvReader : public ::testing::Test {
 protected:
  MeasuredCsv Read(const std::string& text) const {
    WriteText(folder / "m.csv", text);
    return command::ReadCsv(folder / "m.csv");
  }
  void ExpectValues(const std::string& text, const std::vector<double>& values) const {
    const MeasuredCsv csv = Read(text);
    EXPECT_EQ(std::vector<double>(csv.values.begin(), csv.values.end()), values) << text;
  }
  /// Expects an error whose message is the file, then `rest`.
  void ExpectError(const std::string& text, const std::string& rest) const {
    try {
      SampleRateOf(Read(text));
      ADD_FAILURE() << text;
    } catch (const CommandError& e) {
      EXPECT_EQ(e.GetCode(), command::kBadInput);
      EXPECT_EQ(std::string(e.what()), (folder / "m.csv") + rest);
    }
  }
  TempFolder folder;
};

TEST_F(CsvReader, TakesOneColumnOrTwo) {
  ExpectValues("1\n2.5\n-3e-2\n", {1, 2.5, -3e-2});
  ExpectValues("0,1\n1,2\n", {1, 2});
  EXPECT_TRUE(Read("1\n2\n").times.empty());
  EXPECT_EQ(Read("0.5,1\n1.5,2\n").times, (std::vector<double>{0.5, 1.5}));
}

TEST_F(CsvReader, TakesAWaveformWithItsBands) {
  const std::string text = "time,waveform,lower,upper\n0,1,0,2\n0.5,3,-1,4\n";
  ExpectValues(text, {1, 3});
  EXPECT_EQ(SampleRateOf(Read(text)), 2.0);
  ExpectError("time,waveform,lower,other\n0,1,0,2\n", ":2: has more than a time and a value");
  ExpectError("0,1,0,2\n", ":1: has more than a time and a value");
  ExpectError("time,waveform,lower,upper\n0,1,0\n", ":2: has more than a time and a value");
  ExpectError("time,waveform,lower,upper\n0,1,0,2\n1,2\n", ":3: has another number of columns");
}

TEST_F(CsvReader, TakesCommaSemicolonAndTab) {
  ExpectValues("0,1\n1,2\n", {1, 2});
  ExpectValues("0;1\n1;2\n", {1, 2});
  ExpectValues("0\t1\n1\t2\n", {1, 2});
  ExpectValues("0,0;1,5\n0,1;2,5\n", {1.5, 2.5});  // decimal commas
  ExpectValues(" 0 , +1 \n 1 , 2 \n", {1, 2});
}

TEST_F(CsvReader, TakesAHeaderByteOrderMarkLineEndsAndEmptyLines) {
  ExpectValues("\xEF\xBB\xBFtime,value\r\n0,1\r\n\r\n1,2\r\n", {1, 2});
  ExpectValues("\n\na [g]\n1\n2", {1, 2});
  ExpectValues("t;a\n0;1\n", {1});
}

TEST_F(CsvReader, TakesNumbersThatAreNone) {
  const MeasuredCsv csv = Read("nan\ninf\n-inf\n");
  ASSERT_EQ(csv.values.GetSize(), 3U);
  EXPECT_TRUE(std::isnan(csv.values[0]));
  EXPECT_EQ(csv.values[1], HUGE_VAL);
  EXPECT_EQ(csv.values[2], -HUGE_VAL);
}

TEST_F(CsvReader, NamesTheLineThatIsNotOfTheForm) {
  ExpectError("1\nx\n", ":2: is not a line of numbers");
  ExpectError("time,value\nanother,header\n0,1\n", ":2: is not a line of numbers");
  ExpectError("time,value\n0,1\n0.1,\n", ":3: is not a line of numbers");
  ExpectError("0,1\n0.1\n", ":2: has another number of columns");
  ExpectError("1\n0.1,2\n", ":2: is not a line of numbers");
  ExpectError("0,1,2\n", ":1: has more than a time and a value");
  ExpectError("time,1\n0,1\n", ":1: is not a line of numbers");  // half a header
  ExpectError("1\n1 2\n", ":2: is not a line of numbers");
  ExpectError("", ": is empty");
  ExpectError("time,value\n", ": has no samples");
  EXPECT_THROW(command::ReadCsv(folder / "none.csv"), CommandError);
  EXPECT_THROW(command::ReadCsv(folder.GetPath().string()), CommandError);
}

TEST_F(CsvReader, TakesTheRateFromTheMeanStep) {
  EXPECT_EQ(SampleRateOf(Read("0,1\n0.001,2\n0.002,3\n")), 1000.0);
  EXPECT_EQ(SampleRateOf(Read("5.0,1\n5.1,2\n5.2,3\n5.3,3\n")), 10.0);
  EXPECT_EQ(SampleRateOf(Read("0,0\n0.00039,0\n")), 2564.10256410);
  // 0.05 % off the mean is within what clocks and printed digits leave.
  EXPECT_NEAR(SampleRateOf(Read("0,1\n1.0005,2\n2,3\n")), 1.0, 1e-12);
}

TEST_F(CsvReader, RefusesUnevenStepsWithTheirLine) {
  ExpectError("t,a\n0,1\n1,2\n2.01,3\n3.01,3\n",
              ":3: the time step of 1 s is not the mean step of 1.0033333333333332 s");
  ExpectError("0,1\n1,2\n1,3\n2,3\n",
              ":2: the time step of 1 s is not the mean step of 0.6666666666666666 s");
  ExpectError("0,1\n-1,2\n", ":2: the time step of -1 s is not the mean step of -1 s");
  ExpectError("0,1\nnan,2\n", ":2: the time step of nan s is not the mean step of nan s");
  ExpectError("0,1\ninf,2\n", ":2: the time step of inf s is not the mean step of inf s");
}

TEST_F(CsvReader, NeedsTwoTimesForARate) {
  ExpectError("1\n2\n", ": has no time column: Fsamp is needed");
  ExpectError("0,2\n", ": one sample has no time step: Fsamp is needed");
}

}  // namespace
}  // namespace qarv::test
