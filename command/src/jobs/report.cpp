// qarv-wave report: what a waveform asks of the shaker, and how it lies in its bands.
//
// The report is one list of entries; text, JSON and a page are three ways to write it.
#include "jobs/report.h"

#include <filesystem>

#include "assess/report.h"
#include "assessment.h"
#include "files/definition_file.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "jobs/srs.h"
#include "pages/report_page.h"

namespace qarv::command {

void Report(const ReportOptions& options) {
  const wave_def::CWaveDef def = LoadDefinitionOrRecord(options.input);
  RequireBands(def, options.input);
  const std::optional<assess::Machine> machine = LoadMachine(options.machine);
  const assess::Entries entries =
      Assessed(options.input, [&] { return assess::ReportOf(def, machine); });
  OutputFiles files;
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), AsJson(entries));
  if (!options.html.empty()) {
    const std::string name = std::filesystem::path(options.input).stem().string();
    WriteReportPage(def, SpectrumOf(def, name), machine, name, options.html, &files);
  }
  files.Commit(AsText(entries));
}

}  // namespace qarv::command
