// Functions of time in universal files, dataset 58.
//
// A dataset stands between two lines of -1.  58 has eleven header lines in fixed columns: five of
// identification, one of function and nodes, one of numbers, four of axes; then the values, four of
// 20 columns (double) or six of 13 columns (single precision) a line.
#include "export/uff.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <string_view>

#include "assess/motion.h"
#include "command_error.h"
#include "definition_file.h"
#include "output_files.h"
#include "text/text.h"

namespace qarv::command {

using assess::MotionUnitsOf;
using definition::SampleRateOf;
using text::OneLine;
using text::ParseNumber;
using text::Plain;
using text::Trimmed;

using common::uint64;
using Samples = common::CDataArrayFloatT<double>;

namespace {

constexpr const char* kRate = "Fsamp = ";  // the increment has six digits only

// ---- Writing -----------------------------------------------------------------------------------

/// A text for a line of the header: one of 80 columns.
std::string Identification(const std::string& text) {
  const std::string line = OneLine(text).substr(0, 80);
  return line.empty() ? "NONE" : line;
}

std::string Axis(int type, const std::string& label, const std::string& unit) {
  return fmt::format("{:10}{:5}{:5}{:5} {:<20.20} {:<20.20}\n", type, 0, 0, 0, label, unit);
}

void AppendFunction(int number, const char* role, const Samples& samples,
                    const wave_def::CWaveDef& def, const std::string& name,
                    fmt::memory_buffer* text) {
  constexpr int kTimeResponse = 1;
  constexpr int kDouble = 4;
  constexpr int kEven = 1;
  constexpr int kTime = 17;
  constexpr int kAcceleration = 12;
  constexpr int kUnknown = 0;
  const double fsamp = SampleRateOf(def);
  const std::string unit = def.GetUnitAmpl().GetText();
  const bool acceleration = MotionUnitsOf(unit).known;
  const auto out = std::back_inserter(*text);
  fmt::format_to(out, "{}\n{:6}\n{}\n{}\nNONE\n{}{} Hz\nNONE\n", kUffDelimiter, 58, role,
                 Identification(name), kRate, fsamp);
  fmt::format_to(out, "{:5}{:10}{:5}{:10} {:<10}{:10}{:4} {:<10}{:10}{:4}\n", kTimeResponse, number,
                 0, 0, "NONE", 1, 0, "NONE", 0, 0);
  fmt::format_to(out, "{:10}{:10}{:10}{:13.5E}{:13.5E}{:13.5E}\n", kDouble, samples.GetSize(),
                 kEven, 0.0, 1.0 / fsamp, 0.0);
  text->append(Axis(kTime, "Time", "s"));
  text->append(Axis(acceleration ? kAcceleration : kUnknown,
                    acceleration ? "Acceleration" : "Amplitude", unit.empty() ? "NONE" : unit));
  text->append(Axis(kUnknown, "NONE", "NONE"));
  text->append(Axis(kUnknown, "NONE", "NONE"));
  for (uint64 i = 0; i < samples.GetSize(); ++i) {
    const bool endsLine = i % 4 == 3 || i + 1 == samples.GetSize();
    fmt::format_to(out, "{:20.12E}{}", Plain(samples[i]), endsLine ? "\n" : "");
  }
  fmt::format_to(out, "{}\n", kUffDelimiter);
}

// ---- Reading -----------------------------------------------------------------------------------

/// The lines of a file, one after the other.
class Lines {
 public:
  Lines(const std::string& file, std::string_view text) : file_(file), rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }
  std::string_view Next() {
    if (AtEnd()) Fail(file_, fmt::format("ends within a dataset, behind line {}", number_));
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
      Fail(file_, fmt::format("line {}: no number in columns {} to {}", number_, first + 1,
                              first + width));
    }
    return v;
  }

 private:
  std::string file_;
  std::string_view rest_;
  uint64 number_ = 0;
};

/// The sampling frequency: of the increment, or of the line that has more digits of the same.
double RateOf(double increment, std::string_view line, const std::string& file) {
  if (!(increment > 0.0 && std::isfinite(1.0 / increment))) Fail(file, "has no time increment");
  double exact = 0.0;
  const std::string_view text = Trimmed(line);
  if (text.starts_with(kRate) && text.ends_with(" Hz")) {
    const std::size_t begin = std::string_view(kRate).size();
    ParseNumber(std::string(text.substr(begin, text.size() - begin - 3)), &exact);
  }
  return std::fabs(exact * increment - 1.0) < 1e-5 ? exact : 1.0 / increment;
}

/// A function, behind the line of its dataset's number.
UffFunction ReadFunction(const std::string& file, Lines* lines) {
  UffFunction out;
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
  out.fsamp = RateOf(lines->Number(numbers, 43, 13), rate, file);
  if (type != 2.0 && type != 4.0) Fail(file, "its values are not real numbers");
  if (spacing != 1.0) Fail(file, "its values are not evenly spaced");
  if (!(count >= 1.0 && count < 1e10)) Fail(file, "has no samples");
  lines->Next();  // abscissa
  const std::string_view ordinate = lines->Next();
  if (ordinate.size() > 47) out.unit = Trimmed(ordinate.substr(47, 20));
  if (out.unit == "NONE") out.unit.clear();
  lines->Next();  // denominator
  lines->Next();  // third axis
  const std::size_t width = type == 4.0 ? 20 : 13;
  const std::size_t perLine = type == 4.0 ? 4 : 6;
  std::vector<double> samples;
  while (static_cast<double>(samples.size()) < count) {
    const std::string_view line = lines->Next();
    for (std::size_t i = 0; i < perLine && static_cast<double>(samples.size()) < count; ++i) {
      samples.push_back(lines->Number(line, i * width, width));
    }
  }
  if (Trimmed(lines->Next()) != "-1") Fail(file, "has more values than it says");
  out.samples.SetData(samples.size(), samples.data(), false);
  return out;
}

}  // namespace

void WriteUff(const wave_def::CWaveDef& def, const std::string& name, const std::string& file) {
  fmt::memory_buffer text;
  int number = 0;
  for (const auto& [role, samples] :
       {std::pair{"waveform", &def.GetWave()}, std::pair{"lower band", &def.GetTolL()},
        std::pair{"upper band", &def.GetTolU()}}) {
    for (const double v : *samples) {
      if (!std::isfinite(v)) Fail(name, "a universal file cannot hold what is no number");
    }
    AppendFunction(++number, role, *samples, def, name, &text);
  }
  WriteFile(file, {text.data(), text.size()});
}

std::vector<UffFunction> ReadUff(InputFile in) {
  const std::string& file = in.GetName();
  const std::vector<unsigned char> bytes = in.ReadAll();
  const std::string text(bytes.begin(), bytes.end());
  Lines lines(file, text);
  std::vector<UffFunction> functions;
  while (!lines.AtEnd()) {
    if (Trimmed(lines.Next()) != "-1") continue;
    const std::string_view dataset = Trimmed(lines.Next());
    if (dataset == "58") {
      functions.push_back(ReadFunction(file, &lines));
      continue;
    }
    if (dataset.starts_with("58b")) Fail(file, "has a binary dataset, which is not read");
    while (Trimmed(lines.Next()) != "-1") {
    }
  }
  if (functions.empty()) Fail(file, "has no function (dataset 58)");
  return functions;
}

}  // namespace qarv::command
