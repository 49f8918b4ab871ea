// Measured samples from CSV files: what the command says of them.
#include "files/csv_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "command_error.h"
#include "temp_folder.h"

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
  /// Expects an error whose message is the file, then `rest`.
  template <class Call>
  void ExpectError(Call call, const std::string& rest) const {
    try {
      call();
      ADD_FAILURE() << rest;
    } catch (const CommandError& e) {
      EXPECT_EQ(e.GetCode(), command::kBadInput);
      EXPECT_EQ(std::string(e.what()), (folder / "m.csv") + rest);
    }
  }
  TempFolder folder;
};

TEST_F(CsvReader, GivesValuesTimesAndLines) {
  const MeasuredCsv csv = Read("time,value\n0.5,1\n\n1.5,2");
  EXPECT_EQ(std::vector<double>(csv.values.begin(), csv.values.end()), (std::vector<double>{1, 2}));
  EXPECT_EQ(csv.times, (std::vector<double>{0.5, 1.5}));
  EXPECT_EQ(csv.lines, (std::vector<common::uint64>{2, 4}));
  EXPECT_EQ(SampleRateOf(csv), 1.0);
}

TEST_F(CsvReader, ReadsWhatIsLongerThanAPieceOfTheFile) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += std::to_string(i) + ".25\n";
  const MeasuredCsv csv = Read(text);
  ASSERT_EQ(csv.values.GetSize(), 100000U);
  for (unsigned int i = 0; i < 100000; ++i) EXPECT_EQ(csv.values[i], i + 0.25);
}

TEST_F(CsvReader, PutsTheFileAndItsLineBeforeWhatIsWrong) {
  ExpectError([&] { Read(""); }, ": is empty");
  ExpectError([&] { Read("time,value\n"); }, ": has no samples");
  ExpectError([&] { Read("1\nx\n"); }, ":2: is not a line of numbers");
  ExpectError([&] { Read("1\n" + std::string(65537, '1')); },
              ": has a line of more than 65536 bytes");
  ExpectError([&] { RequireNumbers(Read("value\n1\nnan\n")); }, ":3: the value is no number");
  ExpectError([&] { SampleRateOf(Read("1\n2\n")); }, ": has no time column: Fsamp is needed");
  ExpectError([&] { SampleRateOf(Read("0,1\n1,2\n1,3\n2,3\n")); },
              ":2: the time step of 1 s is not the mean step of 0.6666666666666666 s");
  EXPECT_THROW(command::ReadCsv(folder / "none.csv"), CommandError);
  EXPECT_THROW(command::ReadCsv(folder.GetPath().string()), CommandError);
}

}  // namespace
}  // namespace qarv::test
