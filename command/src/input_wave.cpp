// The waveform of a file, whatever kind of file it is.
#include "input_wave.h"

#include <filesystem>

#include "csv_reader.h"
#include "definition.h"
#include "record_file.h"

namespace qarv::command {

InputWave LoadInputWave(const std::string& file) {
  const std::string extension = std::filesystem::path(file).extension().string();
  if (extension == ".csv") {
    MeasuredCsv csv = ReadCsv(file);
    const double fsamp = SampleRateOf(csv);
    return {std::move(csv.values), fsamp, ""};
  }
  const wave_def::CWaveDef def = extension == ".json" ? LoadDefinition(file) : ReadRecord(file);
  return {def.GetWave(), SampleRateOf(def), def.GetUnitAmpl().GetText()};
}

}  // namespace qarv::command
