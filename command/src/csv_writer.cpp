// Samples as CSV files.
#include "csv_writer.h"

#include <fmt/format.h>

#include <iterator>

#include "definition_file.h"
#include "output_files.h"
#include "text/text.h"

namespace qarv::command {

using definition::SampleRateOf;
using text::NumberText;
using text::Plain;

using common::uint64;

namespace {

/// Writes a header and n lines; `line(i, out)` appends the i-th.  The text goes out in pieces, so
/// that its size does not depend on n.
template <class Line>
void WriteLines(const std::string& file, const std::string& header, uint64 n, Line line) {
  constexpr std::size_t kPiece = std::size_t{1} << 16;
  FilePtr out = OpenForWriting(file);
  fmt::memory_buffer text;
  text.append(header);
  for (uint64 i = 0; i < n; ++i) {
    line(i, std::back_inserter(text));
    if (text.size() < kPiece) continue;
    WriteBytes(out.get(), text.data(), text.size(), file);
    text.clear();
  }
  WriteBytes(out.get(), text.data(), text.size(), file);
  Close(std::move(out), file);
}

}  // namespace

void WriteWaveCsv(const wave_def::CWaveDef& def, const std::string& file) {
  const double fsamp = SampleRateOf(def);
  const double* const wave = def.GetWave().GetData();
  const double* const lower = def.GetTolL().GetData();
  const double* const upper = def.GetTolU().GetData();
  WriteLines(file, std::string(kWaveCsvHeader) + "\n", def.GetNsamp(), [&](uint64 i, auto out) {
    fmt::format_to(out, "{},{},{},{}\n", Plain(static_cast<double>(i) / fsamp), Plain(wave[i]),
                   Plain(lower[i]), Plain(upper[i]));
  });
}

void WriteSamplesCsv(const wave_def::CWaveDef& def, const std::string& file) {
  const double* const wave = def.GetWave().GetData();
  WriteLines(file, "value\n", def.GetNsamp(),
             [&](uint64 i, auto out) { fmt::format_to(out, "{}\n", NumberText(wave[i])); });
}

}  // namespace qarv::command
