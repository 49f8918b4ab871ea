// Functions of time in universal files, dataset 58.
//
// A dataset stands between two lines of -1.  58 has eleven header lines in fixed columns: five of
// identification, one of function and nodes, one of numbers, four of axes; then the values, four of
// 20 columns (double) or six of 13 columns (single precision) a line.  58b has the same header, and
// as many bytes of values as the line of its number says.
#include "exchange/uff.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

#include "common/numeric/index_conv.h"
#include "exchange/error.h"
#include "piece_writer.h"
#include "text/text.h"

namespace qarv::exchange {

using common::uint64;
using text::OneLine;
using text::ParseNumber;
using text::Plain;
using text::Trimmed;

namespace {

constexpr std::string_view kRate = "Fsamp = ";  // the increment has six digits only

// ---- Writing -----------------------------------------------------------------------------------

/// A text for a line of the header: one of 80 columns.
std::string Identification(const std::string& text) {
  const std::string line = OneLine(text).substr(0, 80);
  return line.empty() ? "NONE" : line;
}

void PrintAxis(int type, const std::string& label, const std::string& unit, PieceWriter* out) {
  out->Print("{:10}{:5}{:5}{:5} {:<20.20} {:<20.20}\n", type, 0, 0, 0, label, unit);
}

void PrintFunction(int number, const char* role, std::span<const double> samples,
                   const Waveform& waveform, PieceWriter* out) {
  constexpr int kTimeResponse = 1;
  constexpr int kDouble = 4;
  constexpr int kEven = 1;
  constexpr int kTime = 17;
  constexpr int kAcceleration = 12;
  constexpr int kUnknown = 0;
  const bool acceleration = waveform.quantity == Quantity::Acceleration;
  out->Print("{}\n{:6}\n{}\n{}\nNONE\n{}{} Hz\nNONE\n", kUffDelimiter, 58, role,
             Identification(waveform.name), kRate, waveform.fsamp);
  out->Print("{:5}{:10}{:5}{:10} {:<10}{:10}{:4} {:<10}{:10}{:4}\n", kTimeResponse, number, 0, 0,
             "NONE", 1, 0, "NONE", 0, 0);
  out->Print("{:10}{:10}{:10}{:13.5E}{:13.5E}{:13.5E}\n", kDouble, samples.size(), kEven, 0.0,
             1.0 / waveform.fsamp, 0.0);
  PrintAxis(kTime, "Time", "s", out);
  PrintAxis(acceleration ? kAcceleration : kUnknown, acceleration ? "Acceleration" : "Amplitude",
            waveform.unit.empty() ? "NONE" : waveform.unit, out);
  PrintAxis(kUnknown, "NONE", "NONE", out);
  PrintAxis(kUnknown, "NONE", "NONE", out);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const bool endsLine = i % 4 == 3 || i + 1 == samples.size();
    out->Print("{:20.12E}{}", Plain(samples[i]), endsLine ? "\n" : "");
  }
  out->Print("{}\n", kUffDelimiter);
}

// ---- Reading -----------------------------------------------------------------------------------

/// The lines of a file, one after the other.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }
  /// The bytes that come next, which are no lines.
  std::string_view Take(double count) {
    if (!(count >= 0.0 && count <= static_cast<double>(rest_.size()))) {
      throw Error(fmt::format("ends within a dataset, behind line {}", number_));
    }
    const auto size = static_cast<std::size_t>(common::TruncToIndex(count));
    const std::string_view bytes = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return bytes;
  }
  std::string_view Next() {
    if (AtEnd()) throw Error(fmt::format("ends within a dataset, behind line {}", number_));
    ++number_;
    const auto end = rest_.find('\n');
    const std::string_view line = rest_.substr(0, end);
    rest_ = end == std::string_view::npos ? std::string_view{} : rest_.substr(end + 1);
    return line;
  }
  /// The number in columns of the last line.
  double Number(std::string_view line, std::size_t first, std::size_t width) const {
    double v = 0.0;
    const std::string text(first < line.size() ? Trimmed(line.substr(first, width)) : "");
    if (!ParseNumber(text, &v)) {
      throw Error(fmt::format("no number in columns {} to {}", first + 1, first + width), number_);
    }
    return v;
  }

 private:
  std::string_view rest_;
  uint64 number_ = 0;
};

/// The sampling frequency: of the increment, or of the line that has more digits of the same.
double RateOf(double increment, std::string_view line) {
  if (!(increment > 0.0 && std::isfinite(1.0 / increment))) throw Error("has no time increment");
  double exact = 0.0;
  const std::string_view text = Trimmed(line);
  constexpr std::string_view kUnit = " Hz";
  if (text.starts_with(kRate) && text.ends_with(kUnit)) {
    const std::size_t begin = kRate.size();
    ParseNumber(std::string(text.substr(begin, text.size() - begin - kUnit.size())), &exact);
  }
  return std::fabs(exact * increment - 1.0) < 1e-5 ? exact : 1.0 / increment;
}

/// What the header of a function says of its values.
struct Numbers {
  double type, count;
};

Numbers ReadHeader(Lines* lines, Signal* signal) {
  Signal& out = *signal;
  out.name = Trimmed(lines->Next());
  lines->Next();
  lines->Next();
  const std::string_view rate = lines->Next();
  lines->Next();
  lines->Next();  // function and nodes
  const std::string_view numbers = lines->Next();
  const double type = lines->Number(numbers, 0, 10);
  const double count = lines->Number(numbers, 10, 10);
  const double spacing = lines->Number(numbers, 20, 10);
  out.begin = lines->Number(numbers, 30, 13);
  out.fsamp = RateOf(lines->Number(numbers, 43, 13), rate);
  if (type != 2.0 && type != 4.0) throw Error("its values are not real numbers");
  if (spacing != 1.0) throw Error("its values are not evenly spaced");
  if (!(count >= 1.0 && count < 1e10)) throw Error("has no samples");
  lines->Next();  // abscissa
  const std::string_view ordinate = lines->Next();
  if (ordinate.size() > 47) out.unit = Trimmed(ordinate.substr(47, 20));
  if (out.unit == "NONE") out.unit.clear();
  lines->Next();  // denominator
  lines->Next();  // third axis
  return {type, count};
}

/// A function, behind the line of its dataset's number.
Signal ReadFunction(Lines* lines) {
  Signal out;
  const auto [type, count] = ReadHeader(lines, &out);
  const std::size_t width = type == 4.0 ? 20 : 13;
  const std::size_t perLine = type == 4.0 ? 4 : 6;
  const auto isWhole = [&, n = count] { return static_cast<double>(out.values.size()) >= n; };
  while (!isWhole()) {
    const std::string_view line = lines->Next();
    for (std::size_t i = 0; i < perLine && !isWhole(); ++i) {
      out.values.push_back(lines->Number(line, i * width, width));
    }
  }
  if (Trimmed(lines->Next()) != "-1") throw Error("has more values than it says");
  return out;
}

template <class Word, class Number>
double NumberAt(std::string_view bytes, std::size_t i, bool bigEndian) {
  Word word = 0;
  for (std::size_t k = 0; k < sizeof(Word); ++k) {
    const std::size_t place = bigEndian ? sizeof(Word) - 1 - k : k;
    word |= Word{static_cast<unsigned char>(bytes[i * sizeof(Word) + place])} << (8 * k);
  }
  return std::bit_cast<Number>(word);
}

/// A function of binary values, behind the line of its dataset's number.
/// @param[in] line  that has byte order, floating-point format, lines of the header, bytes of
/// values
Signal ReadBinaryFunction(std::string_view line, Lines* lines) {
  constexpr double kHeaderLines = 11.0;
  constexpr double kIeee = 2.0;
  const double order = lines->Number(line, 7, 6);
  const double format = lines->Number(line, 13, 6);
  if (order != 1.0 && order != 2.0) throw Error("has a byte order that is none");
  if (format != kIeee) throw Error("its values are not of IEEE 754");
  const double headerLines = lines->Number(line, 19, 12);
  if (headerLines != kHeaderLines) throw Error("its header has not eleven lines");
  Signal out;
  const double size = lines->Number(line, 31, 12);
  const auto [type, count] = ReadHeader(lines, &out);
  const double width = type == 4.0 ? 8.0 : 4.0;
  if (size < count * width) throw Error("has fewer values than it says");
  const std::string_view bytes = lines->Take(size);
  const auto n = static_cast<std::size_t>(common::TruncToIndex(count));
  out.values.resize(n);
  const bool bigEndian = order == 2.0;
  for (std::size_t i = 0; i < n; ++i) {
    out.values[i] = type == 4.0 ? NumberAt<std::uint64_t, double>(bytes, i, bigEndian)
                                : NumberAt<std::uint32_t, float>(bytes, i, bigEndian);
  }
  // Some programs end the values with a line end of their own.
  std::string_view end = lines->Next();
  if (Trimmed(end).empty()) end = lines->Next();
  if (Trimmed(end) != "-1") throw Error("has more values than it says");
  return out;
}

}  // namespace

void WriteUff(const Waveform& waveform, const Sink& sink) {
  RequireBands(waveform);
  const std::pair<const char*, std::span<const double>> functions[] = {
      {"waveform", waveform.waveform},
      {"lower band", waveform.lower},
      {"upper band", waveform.upper}};
  for (const auto& [role, samples] : functions) {
    if (!std::all_of(samples.begin(), samples.end(), [](double v) { return std::isfinite(v); })) {
      throw Error("a universal file cannot hold what is no number");
    }
  }
  PieceWriter out(sink);
  int number = 0;
  for (const auto& [role, samples] : functions) {
    PrintFunction(++number, role, samples, waveform, &out);
  }
  out.Flush();
}

std::vector<Signal> ReadUff(Bytes bytes) {
  Lines lines(TextOf(bytes));
  std::vector<Signal> functions;
  while (!lines.AtEnd()) {
    if (Trimmed(lines.Next()) != "-1") continue;
    const std::string_view line = lines.Next();
    const std::string_view dataset = Trimmed(line);
    if (dataset == "58") {
      functions.push_back(ReadFunction(&lines));
      continue;
    }
    if (dataset.starts_with("58b")) {
      functions.push_back(ReadBinaryFunction(line, &lines));
      continue;
    }
    while (Trimmed(lines.Next()) != "-1") {
    }
  }
  if (functions.empty()) throw Error("has no function (dataset 58)");
  return functions;
}

}  // namespace qarv::exchange
