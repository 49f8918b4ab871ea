// Measured samples from a CSV file.
#include "csv_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "command_error.h"
#include "csv_writer.h"
#include "text/text.h"

namespace qarv::command {

using text::kByteOrderMark;
using text::ParseNumber;
using text::Trimmed;

using common::uint64;

namespace {

constexpr double kStepTolerance = 0.001;  // of the mean step

[[noreturn]] void FailAtLine(const std::string& file, uint64 line, const std::string& what) {
  Fail(fmt::format("{}:{}", file, line), what);
}

/// The separator of a line; 0 if it has only one column.
char SeparatorOf(const std::string& line) {
  for (const char separator : {';', '\t', ','}) {
    if (line.find(separator) != std::string::npos) return separator;
  }
  return 0;
}

std::vector<std::string> Columns(const std::string& line, char separator) {
  std::vector<std::string> columns;
  std::string::size_type begin = 0;
  for (;;) {
    const auto end = separator != 0 ? line.find(separator, begin) : std::string::npos;
    columns.emplace_back(Trimmed(std::string_view(line).substr(begin, end - begin)));
    if (end == std::string::npos) return columns;
    begin = end + 1;
  }
}

/// The numbers of a line; false if one of its columns is none.
bool ParseColumns(std::vector<std::string> columns, char separator, std::vector<double>* numbers) {
  numbers->clear();
  for (std::string& column : columns) {
    if (separator != ',') std::replace(column.begin(), column.end(), ',', '.');
    if (!ParseNumber(column, &numbers->emplace_back())) return false;
  }
  return true;
}

/// Whether the line holds no number at all, as a header does.
bool IsHeader(const std::vector<std::string>& columns, char separator) {
  std::vector<double> number;
  return std::none_of(columns.begin(), columns.end(), [&](const std::string& column) {
    return ParseColumns({column}, separator, &number);
  });
}

}  // namespace

MeasuredCsv ReadCsv(InputFile in) {
  const std::string& file = in.GetName();
  std::vector<double> values;
  std::vector<double> times;
  std::vector<uint64> lines;
  std::vector<double> numbers;
  std::string text;
  std::size_t width = 0;  // [columns] of the first line with numbers
  char separator = 0;
  bool first = true;
  bool withBands = false;
  uint64 line = 0;
  while (in.ReadLine(&text)) {
    ++line;
    if (line == 1 && text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
    if (Trimmed(text).empty()) continue;
    if (width == 0) separator = SeparatorOf(text);
    const auto columns = Columns(text, separator);
    const bool header = first && IsHeader(columns, separator);
    first = false;
    if (header) {
      withBands = Trimmed(text) == kWaveCsvHeader;
      continue;
    }
    if (!ParseColumns(columns, separator, &numbers))
      FailAtLine(file, line, "is not a line of numbers");
    if (width == 0) width = numbers.size();
    if (width > 2 && !(withBands && width == 4))
      FailAtLine(file, line, "has more than a time and a value");
    if (numbers.size() != width) FailAtLine(file, line, "has another number of columns");
    values.push_back(width == 1 ? numbers.front() : numbers[1]);
    lines.push_back(line);
    if (width > 1) times.push_back(numbers.front());
  }
  if (line == 0) Fail(file, "is empty");
  if (values.empty()) Fail(file, "has no samples");
  MeasuredCsv out{file, {}, std::move(times), std::move(lines)};
  out.values.SetData(values.size(), values.data(), false);
  return out;
}

void RequireNumbers(const MeasuredCsv& csv) {
  for (uint64 i = 0; i < csv.values.GetSize(); ++i) {
    if (!std::isfinite(csv.values[i])) FailAtLine(csv.file, csv.lines[i], "the value is no number");
  }
}

double SampleRateOf(const MeasuredCsv& csv) {
  const uint64 n = csv.times.size();
  if (n < 2) {
    const char* const why = n == 0 ? "has no time column" : "one sample has no time step";
    Fail(csv.file, fmt::format("{}: Fsamp is needed", why));
  }
  const double mean = (csv.times[n - 1] - csv.times[0]) / static_cast<double>(n - 1);
  for (uint64 i = 1; i < n; ++i) {
    const double step = csv.times[i] - csv.times[i - 1];
    // Written so that a NaN is refused.
    if (!(step > 0.0 && std::fabs(step - mean) <= kStepTolerance * mean)) {
      FailAtLine(csv.file, csv.lines[i],
                 fmt::format("the time step of {} s is not the mean step of {} s", step, mean));
    }
  }
  // The text of a time column holds no more than 12 digits: 1000 Hz, not 1000.0000000000001 Hz.
  double rate = 0.0;
  ParseNumber(fmt::format("{:.12g}", 1.0 / mean), &rate);
  return rate;
}

}  // namespace qarv::command
