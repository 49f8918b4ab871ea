// qarv-wave show: a record as a JSON definition.
#include "jobs/show.h"

#include <filesystem>

#include "command_error.h"
#include "files/definition_file.h"
#include "files/export_files.h"
#include "files/output_files.h"

namespace qarv::command {

namespace fs = std::filesystem;

namespace {

/// The samples' file as the definition names it: from the definition's folder, or wherever the
/// definition is going to be put, if that is not known here.  With slashes, which every system
/// reads.
std::string NameInDefinition(const std::string& samples, const std::string& definition) {
  const fs::path file = fs::absolute(samples).lexically_normal();
  if (IsStream(definition)) return file.generic_string();
  return file.lexically_proximate(fs::absolute(definition).parent_path().lexically_normal())
      .generic_string();
}

std::string SamplesFileOf(const ShowOptions& options) {
  if (!options.samples.empty()) return options.samples;
  if (IsStream(options.record)) Fail("--samples", "is needed where the record is a stream");
  return options.record + ".samples.csv";
}

}  // namespace

void Show(const ShowOptions& options) {
  const wave_def::CWaveDef def = ReadRecord(options.record);
  OutputFiles files;
  std::string samplesName;
  if (def.GetWaveType() == wave_def::CWaveDef::WAVE_TYPE_MEASURE) {
    const std::string samples = SamplesFileOf(options);
    WriteSamplesCsv(def, files.Reserve(samples));
    samplesName = NameInDefinition(samples, options.output);
  }
  WriteFile(files.Reserve(options.output), ToJson(definition::DefinitionOf(def), samplesName));
  files.Commit();
}

}  // namespace qarv::command
