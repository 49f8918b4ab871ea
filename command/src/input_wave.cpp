// The waveform of a file, whatever kind of file it is.
#include "input_wave.h"

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

InputWave LoadInputWave(const std::string& file) {
  if (ExtensionOf(file) == ".csv") {
    MeasuredCsv csv = ReadCsv(file);
    const double fsamp = SampleRateOf(csv);
    return {std::move(csv.values), fsamp, ""};
  }
  const wave_def::CWaveDef def = LoadDefinitionOrRecord(file);
  return {def.GetWave(), SampleRateOf(def), def.GetUnitAmpl().GetText()};
}

}  // namespace qarv::command
