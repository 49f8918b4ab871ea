// Samples as lines of text with separated columns.
#include "exchange/csv.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "exchange/error.h"
#include "line_reader.h"
#include "piece_writer.h"
#include "text/text.h"

namespace qarv::exchange {

using common::uint64;
using text::kByteOrderMark;
using text::NumberText;
using text::ParseNumber;
using text::Plain;
using text::Trimmed;

namespace {

// ---- Reading -----------------------------------------------------------------------------------

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

Signal ReadLines(LineReader* lines) {
  Signal out;
  std::vector<double> numbers;
  std::string text;
  std::size_t width = 0;  // [columns] of the first line with numbers
  char separator = 0;
  bool first = true;
  bool withBands = false;
  while (lines->Next(&text)) {
    const uint64 line = lines->GetNumber();
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
    if (!ParseColumns(columns, separator, &numbers)) throw Error("is not a line of numbers", line);
    if (width == 0) width = numbers.size();
    if (width > 2 && !(withBands && width == 4)) {
      throw Error("has more than a time and a value", line);
    }
    if (numbers.size() != width) throw Error("has another number of columns", line);
    out.values.push_back(width == 1 ? numbers.front() : numbers[1]);
    out.lines.push_back(line);
    if (width > 1) out.times.push_back(numbers.front());
  }
  if (lines->GetNumber() == 0) throw Error("is empty");
  if (out.values.empty()) throw Error("has no samples");
  if (!out.times.empty()) out.begin = out.times.front();
  return out;
}

}  // namespace

Signal ReadCsv(Bytes bytes) {
  LineReader lines(TextOf(bytes));
  return ReadLines(&lines);
}

Signal ReadCsv(std::istream& in) {
  LineReader lines(in);
  return ReadLines(&lines);
}

// ---- Writing -----------------------------------------------------------------------------------

void WriteWaveCsv(const Waveform& waveform, const Sink& sink) {
  RequireBands(waveform);
  PieceWriter out(sink);
  out.Print("{}\n", kWaveCsvHeader);
  for (std::size_t i = 0; i < waveform.waveform.size(); ++i) {
    out.Print("{},{},{},{}\n", Plain(static_cast<double>(i) / waveform.fsamp),
              Plain(waveform.waveform[i]), Plain(waveform.lower[i]), Plain(waveform.upper[i]));
  }
  out.Flush();
}

void WriteSamplesCsv(std::span<const double> samples, const Sink& sink) {
  PieceWriter out(sink);
  out.Append("value\n");
  for (const double v : samples) out.Print("{}\n", NumberText(v));
  out.Flush();
}

}  // namespace qarv::exchange
