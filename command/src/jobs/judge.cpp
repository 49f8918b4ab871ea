// qarv-wave judge: whether a measured record passes.
#include "jobs/judge.h"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <vector>

#include "analysis/judge.h"
#include "assess/entries.h"
#include "assess/judgement.h"
#include "assessment.h"
#include "definition/check.h"
#include "definition/title.h"
#include "diagnostics.h"
#include "files/definition_file.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "pictures/plot.h"
#include "text/text.h"

namespace qarv::command {

using assess::AsJson;
using assess::AsText;
using assess::Overlay;
using definition::SampleRateOf;
using definition::SpanOf;
using text::OneLine;

using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

/// What the bands are of.  A definition that the library refuses is no reason to fail a record.
CWaveDef LoadReference(const std::string& file) {
  const CWaveDef def = [&] {
    try {
      return LoadDefinitionOrRecord(file);
    } catch (const CommandError& e) {
      throw CommandError(kBadInput, e.what());
    }
  }();
  RequireBands(def, file);
  return def;
}

void PlotVerdict(const CWaveDef& def, const Overlay& overlay, const std::string& title,
                 PlotFormat format, const std::string& file) {
  const std::size_t N = overlay.wave.GetSize();
  Samples measured(N);
  Samples violations(N);
  for (std::size_t i = 0; i < N; ++i) {
    const bool covered = i >= overlay.first && i <= overlay.last;
    const bool outside =
        analysis::Beyond(overlay.wave[i], def.GetTolU()[i], def.GetTolL()[i]) > 0.0;
    measured[i] = covered ? overlay.wave[i] : std::nan("");
    violations[i] = covered && outside ? overlay.wave[i] : std::nan("");
  }
  Plot({title,
        SampleRateOf(def),
        ZoomOf(def),
        {{AmplitudeLabel(def),
          {{"upper band", Role::Upper, &def.GetTolU()},
           {"reference", Role::Reference, &def.GetWave()},
           {"measured", Role::Wave, &measured},
           {"lower band", Role::Lower, &def.GetTolL()},
           {"outside", Role::Violation, &violations}}}}},
       format, file);
}

}  // namespace

ExitCode Judge(const JudgeOptions& options) {
  const CWaveDef def = LoadReference(options.definition);
  std::vector<std::string> remarks;  // on the definition
  for (const definition::Finding& finding : definition::CheckWave(def)) {
    remarks.push_back(OneLine(finding.text));
  }
  const InputWave measured = LoadMeasured(options.measured, options.fsamp);
  const assess::Record record{SpanOf(measured.samples), measured.fsamp, measured.unit,
                              measured.begin};
  const assess::Judgement judgement = Assessed(options.measured, [&] {
    return assess::Judge(def, record, {.dvTol = options.dvTol, .force = options.force});
  });
  std::vector<std::string> warnings = remarks;
  warnings.insert(warnings.end(), judgement.warnings.begin(), judgement.warnings.end());
  assess::Entries entries = judgement.entries;
  const std::string text = AsText(entries);
  entries.push_back({"warnings", "warnings", warnings, ""});

  OutputFiles files;
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), AsJson(entries));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string title =
        fmt::format("{}: {} ({})", std::filesystem::path(options.measured).stem().string(),
                    judgement.Passes() ? "pass" : "fail", definition::TitleOf(def));
    PlotVerdict(def, judgement.overlay, title, format, files.Reserve(options.plot));
  }
  for (const std::string& remark : remarks) Warn(options.definition, remark);
  for (const std::string& warning : judgement.warnings) Warn(options.measured, warning);
  files.Commit(text);
  return judgement.Passes() ? kDone : kRefused;
}

}  // namespace qarv::command
