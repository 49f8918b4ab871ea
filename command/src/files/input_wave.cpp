// The waveform of a file, whatever kind of file it is.
#include "files/input_wave.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>
#include <utility>

#include "command_error.h"
#include "definition/title.h"
#include "exchange/kind.h"
#include "exchange/uff.h"
#include "files/csv_reader.h"
#include "files/definition_file.h"
#include "text/text.h"

namespace qarv::command {

using definition::Definition;
using definition::SampleRateOf;
using definition::TitleOf;
using text::kByteOrderMark;

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
  if (exchange::DetectKind(exchange::BytesOf(head)) == exchange::Kind::Uff)
    return Kind::UniversalFile;
  if (head.starts_with(kByteOrderMark)) head.remove_prefix(kByteOrderMark.size());
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

/// The first function of a universal file.
InputWave LoadUniversalFile(InputFile in) {
  const std::string file = in.GetName();
  try {
    const exchange::Signal signal = std::move(exchange::ReadUff(in.ReadAll()).front());
    InputWave out{{}, signal.fsamp, signal.unit, signal.begin, ""};
    out.samples.SetData(signal.values.size(), signal.values.data(), false);
    return out;
  } catch (const exchange::Error& error) {
    if (error.GetLine() == 0) Fail(file, error);
    Fail(file, fmt::format("line {}: {}", error.GetLine(), error.what()));
  }
}

InputWave LoadSamples(Kind kind, InputFile in, std::optional<double> fsamp) {
  const std::string file = in.GetName();
  if (kind == Kind::UniversalFile) {
    if (fsamp) FailWithOwnRate(file);
    return LoadUniversalFile(std::move(in));
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
