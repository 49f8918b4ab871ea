// The waveform of a file, whatever kind of file it is.
#include "input_wave.h"

#include <cmath>
#include <filesystem>

#include "csv_reader.h"
#include "definition.h"
#include "export/uff.h"
#include "record_file.h"

namespace qarv::command {

namespace {

std::string ExtensionOf(const std::string& file) {
  return std::filesystem::path(file).extension().string();
}

bool IsUniversalFile(const std::string& file) {
  return ExtensionOf(file) == ".uff" || ExtensionOf(file) == ".unv";
}

[[noreturn]] void FailWithOwnRate(const std::string& file) {
  Fail(file, "has its sampling frequency: --fsamp is not for it");
}

}  // namespace

wave_def::CWaveDef LoadDefinitionOrRecord(const std::string& file) {
  return ExtensionOf(file) == ".json" ? LoadDefinition(file) : ReadRecord(file);
}

InputWave LoadMeasured(const std::string& file, std::optional<double> fsamp) {
  if (IsUniversalFile(file)) {
    if (fsamp) FailWithOwnRate(file);
    UffFunction function = std::move(ReadUff(file).front());
    return {std::move(function.samples), function.fsamp, function.unit, function.begin};
  }
  MeasuredCsv csv = ReadCsv(file);
  if (csv.times.empty() && !fsamp) {
    Fail(file, "has no time column: --fsamp is needed");
  }
  if (!csv.times.empty() && fsamp) FailWithOwnRate(file);
  if (fsamp && !(*fsamp > 0.0 && std::isfinite(*fsamp))) {
    Fail("--fsamp", "is not above 0");
  }
  const double rate = fsamp ? *fsamp : SampleRateOf(csv);
  return {std::move(csv.values), rate, "", csv.times.empty() ? 0.0 : csv.times.front()};
}

InputWave LoadInputWave(const std::string& file, std::optional<double> fsamp) {
  if (ExtensionOf(file) == ".csv" || IsUniversalFile(file)) return LoadMeasured(file, fsamp);
  if (fsamp) FailWithOwnRate(file);
  const wave_def::CWaveDef def = LoadDefinitionOrRecord(file);
  return {def.GetWave(), SampleRateOf(def), def.GetUnitAmpl().GetText(), 0.0};
}

}  // namespace qarv::command
