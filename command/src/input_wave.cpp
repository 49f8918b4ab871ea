// The waveform of a file, whatever kind of file it is.
#include "input_wave.h"

#include <cmath>
#include <filesystem>

#include "csv_reader.h"
#include "definition.h"
#include "record_file.h"

namespace qarv::command {

namespace {

std::string ExtensionOf(const std::string& file) {
  return std::filesystem::path(file).extension().string();
}

}  // namespace

wave_def::CWaveDef LoadDefinitionOrRecord(const std::string& file) {
  return ExtensionOf(file) == ".json" ? LoadDefinition(file) : ReadRecord(file);
}

InputWave LoadMeasured(const std::string& file, std::optional<double> fsamp) {
  MeasuredCsv csv = ReadCsv(file);
  if (csv.times.empty() && !fsamp) {
    throw CommandError(kBadInput, OneLine(file + ": has no time column: --fsamp is needed"));
  }
  if (!csv.times.empty() && fsamp) {
    throw CommandError(kBadInput, OneLine(file + ": has a time column: --fsamp is not for it"));
  }
  if (fsamp && !(*fsamp > 0.0 && std::isfinite(*fsamp))) {
    throw CommandError(kBadInput, "--fsamp: is not above 0");
  }
  const double rate = fsamp ? *fsamp : SampleRateOf(csv);
  return {std::move(csv.values), rate, ""};
}

InputWave LoadInputWave(const std::string& file, std::optional<double> fsamp) {
  if (ExtensionOf(file) == ".csv") return LoadMeasured(file, fsamp);
  if (fsamp) {
    throw CommandError(kBadInput, OneLine(file + ": has its sampling frequency: --fsamp is not "
                                                 "for it"));
  }
  const wave_def::CWaveDef def = LoadDefinitionOrRecord(file);
  return {def.GetWave(), SampleRateOf(def), def.GetUnitAmpl().GetText()};
}

}  // namespace qarv::command
