// The waveform of a file, whatever kind of file it is.
#include "input_wave.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "command_error.h"
#include "csv_reader.h"
#include "definition/title.h"
#include "definition_file.h"
#include "export/uff.h"
#include "text/text.h"

namespace qarv::command {

using definition::Definition;
using definition::SampleRateOf;
using definition::TitleOf;
using text::kByteOrderMark;
using text::Trimmed;

namespace {

enum class Kind { Definition, Record, Csv, UniversalFile };

/// What kind of file it is, by its extension, and where that says nothing by how it begins.
Kind KindOf(InputFile* file) {
  const std::string extension = ExtensionOf(file->GetName());
  if (extension == ".json") return Kind::Definition;
  if (extension == ".rec") return Kind::Record;
  if (extension == ".csv") return Kind::Csv;
  if (extension == ".uff" || extension == ".unv") return Kind::UniversalFile;
  std::string_view head = file->Head();
  if (head.starts_with(kByteOrderMark)) head.remove_prefix(kByteOrderMark.size());
  const std::string_view line = head.substr(0, head.find('\n'));
  if (line.starts_with(kUffDelimiter) && Trimmed(line) == Trimmed(kUffDelimiter))
    return Kind::UniversalFile;
  const std::size_t first = head.find_first_not_of(" \t\r\n");
  if (first != std::string_view::npos && head[first] == '{') return Kind::Definition;
  // The version of a record is a small number of four bytes, of which no text has the like.
  return head.find('\0') != std::string_view::npos ? Kind::Record : Kind::Csv;
}

[[noreturn]] void FailWithOwnRate(const std::string& file) {
  Fail(file, "has its sampling frequency: --fsamp is not for it");
}

wave_def::CWaveDef Load(Kind kind, InputFile file) {
  return kind == Kind::Definition ? LoadDefinition(std::move(file)) : ReadRecord(std::move(file));
}

InputWave LoadSamples(Kind kind, InputFile in, std::optional<double> fsamp) {
  const std::string file = in.GetName();
  if (kind == Kind::UniversalFile) {
    if (fsamp) FailWithOwnRate(file);
    UffFunction function = std::move(ReadUff(std::move(in)).front());
    return {std::move(function.samples), function.fsamp, function.unit, function.begin, ""};
  }
  MeasuredCsv csv = ReadCsv(std::move(in));
  if (csv.times.empty() && !fsamp) {
    Fail(file, "has no time column: --fsamp is needed");
  }
  if (!csv.times.empty() && fsamp) FailWithOwnRate(file);
  if (fsamp && !(*fsamp > 0.0 && std::isfinite(*fsamp))) {
    Fail("--fsamp", "is not above 0");
  }
  RequireNumbers(csv);
  const double rate = fsamp ? *fsamp : SampleRateOf(csv);
  return {std::move(csv.values), rate, "", csv.times.empty() ? 0.0 : csv.times.front(), ""};
}

}  // namespace

InputWave InputWaveOf(const wave_def::CWaveDef& def) {
  return {def.GetWave(), SampleRateOf(def), def.GetUnitAmpl().GetText(), 0.0, TitleOf(def)};
}

wave_def::CWaveDef LoadDefinitionOrRecord(InputFile file) {
  const Kind kind = KindOf(&file);
  return Load(kind, std::move(file));
}

InputWave LoadMeasured(InputFile file, std::optional<double> fsamp) {
  const Kind kind = KindOf(&file);
  return LoadSamples(kind, std::move(file), fsamp);
}

InputWave LoadInputWave(InputFile file, std::optional<double> fsamp) {
  const Kind kind = KindOf(&file);
  if (kind == Kind::Csv || kind == Kind::UniversalFile) {
    return LoadSamples(kind, std::move(file), fsamp);
  }
  if (fsamp) FailWithOwnRate(file.GetName());
  return InputWaveOf(Load(kind, std::move(file)));
}

}  // namespace qarv::command
