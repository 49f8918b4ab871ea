// qarv-wave show: a record as a JSON definition.
#include "show.h"

#include <cstdio>
#include <filesystem>

#include "csv_writer.h"
#include "definition.h"
#include "output_files.h"
#include "record_file.h"

namespace qarv::command {

namespace fs = std::filesystem;

namespace {

/// The samples' file as the definition names it: from the definition's folder, or wherever the
/// definition is going to be put, if that is not known here.
std::string NameInDefinition(const std::string& samples, const std::string& definition) {
  const fs::path file = fs::absolute(samples).lexically_normal();
  if (definition.empty()) return file.string();
  return file.lexically_proximate(fs::absolute(definition).parent_path().lexically_normal())
      .string();
}

}  // namespace

void Show(const ShowOptions& options) {
  const wave_def::CWaveDef def = ReadRecord(options.record);
  OutputFiles files;
  std::string samplesName;
  if (def.GetWaveType() == wave_def::CWaveDef::WAVE_TYPE_MEASURE) {
    const std::string samples =
        options.samples.empty() ? options.record + ".samples.csv" : options.samples;
    WriteSamplesCsv(def, files.Reserve(samples));
    samplesName = NameInDefinition(samples, options.output);
  }
  const std::string text = DefinitionText(def, samplesName);
  if (!options.output.empty()) {
    WriteFile(files.Reserve(options.output), text);
  } else {
    Print(text);
  }
  files.Commit();
}

}  // namespace qarv::command
