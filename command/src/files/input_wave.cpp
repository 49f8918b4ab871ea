// The waveform of a file, whatever kind of file it is.
#include "files/input_wave.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <string_view>
#include <utility>

#include "command_error.h"
#include "definition/title.h"
#include "exchange/kind.h"
#include "exchange/recording.h"
#include "exchange/table.h"
#include "exchange/uff.h"
#include "exchange/units.h"
#include "files/definition_file.h"
#include "progress.h"
#include "text/text.h"

namespace qarv::command {

using definition::Definition;
using definition::SampleRateOf;
using definition::TitleOf;
using text::kByteOrderMark;

namespace {

enum class Kind { Definition, Record, Samples };

/// What kind of file it is: by its content, unless the extension says that it is ours.
Kind KindOf(InputFile* file) {
  const std::string extension = ExtensionOf(file->GetName());
  if (extension == ".json") return Kind::Definition;
  if (extension == ".rec") return Kind::Record;
  std::string_view head = file->Head();
  const exchange::Kind kind = exchange::DetectKind(exchange::BytesOf(head));
  const bool called = extension == ".csv" || extension == ".uff" || extension == ".unv";
  if (kind != exchange::Kind::Unknown || called) return Kind::Samples;
  if (head.starts_with(kByteOrderMark)) head.remove_prefix(kByteOrderMark.size());
  const std::size_t first = head.find_first_not_of(" \t\r\n");
  if (first != std::string_view::npos && head[first] == '{') return Kind::Definition;
  // The version of a record is a small number of four bytes, of which no text has the like.
  return head.find('\0') != std::string_view::npos ? Kind::Record : Kind::Samples;
}

[[noreturn]] void FailWithOwnRate(const std::string& file) {
  Fail(file, "has its sampling frequency: --fsamp is not for it");
}

wave_def::CWaveDef Load(Kind kind, InputFile file) {
  return kind == Kind::Definition ? LoadDefinition(std::move(file)) : ReadRecord(std::move(file));
}

std::vector<std::string> SplitNames(const std::string& text) {
  std::vector<std::string> names;
  for (std::size_t begin = 0; !text.empty();) {
    const auto end = text.find(',', begin);
    names.emplace_back(text::Trimmed(std::string_view(text).substr(begin, end - begin)));
    if (end == std::string::npos) break;
    begin = end + 1;
  }
  return names;
}

/// Whether it is a universal file, or is called one and says nothing else.
bool IsUniversal(InputFile* in) {
  const exchange::Kind kind = exchange::DetectKind(exchange::BytesOf(in->Head()));
  const std::string extension = ExtensionOf(in->GetName());
  const bool called = extension == ".uff" || extension == ".unv";
  return kind == exchange::Kind::Uff ||
         (called && (kind == exchange::Kind::Csv || kind == exchange::Kind::Unknown));
}

exchange::Recording ReadRecording(InputFile* in, const exchange::ChannelChoice& choice) {
  const std::string_view head = in->Head();
  const exchange::Kind kind = exchange::DetectKind(exchange::BytesOf(head));
  if (IsUniversal(in)) return exchange::RecordingOf(exchange::ReadUff(in->ReadAll()), choice);
  const bool binary = kind != exchange::Kind::Csv && kind != exchange::Kind::Unknown;
  if (binary) return exchange::ReadRecording(in->ReadAll(), choice);
  // Text, piece by piece; what is none has no line of numbers.
  Progress progress(100, std::chrono::seconds(2));
  const std::string what = "percent of " + in->GetName();
  const auto next = [&] {
    const std::span<const char> piece = in->ReadPiece();
    progress.Show(in->GetPercent(), what);
    return piece;
  };
  return exchange::ReadTable(next, choice);
}

/// The unit and the scale that were given, where the file leaves them open.
void TakeUnit(const std::string& file, const MeasuredChoice& choice, exchange::Signal* signal,
              std::vector<std::string>* remarks) {
  if (choice.scale) {
    for (double& v : signal->values) v *= *choice.scale;
    remarks->push_back(fmt::format("values are scaled by {:g}", *choice.scale));
  }
  if (choice.unit.empty()) return;
  const std::string unit = exchange::PlainUnit(choice.unit);
  if (!signal->unit.empty() && signal->unit != unit && !choice.scale) {
    Fail(file, fmt::format("its unit is {}: --unit {} is not for it without --scale", signal->unit,
                           choice.unit));
  }
  signal->unit = unit;
  remarks->push_back(fmt::format("the unit {} was given", unit));
}

std::vector<InputWave> LoadSamples(InputFile in, const MeasuredChoice& choice) {
  const std::string file = in.GetName();
  if (choice.fsamp && !(*choice.fsamp > 0.0 && std::isfinite(*choice.fsamp))) {
    Fail("--fsamp", "is not above 0");
  }
  if (choice.scale && !(std::isfinite(*choice.scale) && *choice.scale != 0.0)) {
    Fail("--scale", "is no number other than 0");
  }
  const bool universal = IsUniversal(&in);
  try {
    exchange::Recording recording = ReadRecording(&in, {.time = choice.time,
                                                        .channels = SplitNames(choice.channels),
                                                        .skipBad = choice.skipBad,
                                                        .fsamp = choice.fsamp});
    if (choice.resultant) recording.channels = {exchange::ResultantOf(recording.channels)};
    std::vector<InputWave> waves;
    for (exchange::Signal& signal : recording.channels) {
      if (signal.fsamp == 0.0) Fail(file, "has no time column: --fsamp is needed");
      std::vector<std::string> remarks = recording.remarks;
      TakeUnit(file, choice, &signal, &remarks);
      InputWave& wave = waves.emplace_back();
      wave.samples.SetData(signal.values.size(), signal.values.data(), false);
      signal.values = {};
      wave.fsamp = signal.fsamp;
      wave.unit = signal.unit;
      wave.begin = signal.begin;
      if (recording.names.size() > 2 || recording.channels.size() > 1) wave.channel = signal.name;
      wave.remarks = std::move(remarks);
    }
    return waves;
  } catch (const exchange::Error& error) {
    if (!universal || error.GetLine() == 0) Fail(file, error);
    Fail(file, fmt::format("line {}: {}", error.GetLine(), error.what()));
  }
}

}  // namespace

InputWave InputWaveOf(const wave_def::CWaveDef& def) {
  return {def.GetWave(), SampleRateOf(def), def.GetUnitAmpl().GetText(), 0.0, TitleOf(def)};
}

wave_def::CWaveDef LoadDefinitionOrRecord(InputFile file) {
  const Kind kind = KindOf(&file);
  return Load(kind, std::move(file));
}

std::vector<InputWave> LoadMeasured(InputFile file, const MeasuredChoice& choice) {
  return LoadSamples(std::move(file), choice);
}

std::vector<InputWave> LoadInputWaves(InputFile file, const MeasuredChoice& choice) {
  const Kind kind = KindOf(&file);
  if (kind == Kind::Samples) return LoadSamples(std::move(file), choice);
  if (choice.fsamp) FailWithOwnRate(file.GetName());
  std::vector<InputWave> waves;
  waves.push_back(InputWaveOf(Load(kind, std::move(file))));
  return waves;
}

}  // namespace qarv::command
