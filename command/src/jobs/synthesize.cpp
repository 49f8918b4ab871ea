// qarv-wave synthesize: from a required shock response spectrum to a definition.
#include "jobs/synthesize.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "assess/requirement.h"
#include "assess/synthesis.h"
#include "assessment.h"
#include "definition/definition.h"
#include "diagnostics.h"
#include "files/export_files.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "pictures/synthesis_plot.h"
#include "progress.h"
#include "text/text.h"

namespace qarv::command {

using assess::Requirement;

namespace {

assess::Synthesis Run(const Requirement& requirement, const std::optional<assess::Machine>& machine,
                      const SynthesizeOptions& options) {
  constexpr double kParts = 100.0;
  Progress progress(static_cast<std::size_t>(kParts));
  return Assessed(options.requirement, [&] {
    return assess::Synthesize(requirement, options.request, machine, [&](double share) {
      progress.Show(static_cast<std::size_t>(kParts * share), "percent of the synthesis");
      return true;
    });
  });
}

}  // namespace

ExitCode Synthesize(const SynthesizeOptions& options) {
  const Requirement requirement = LoadRequirement(options.requirement);
  const std::optional<assess::Machine> machine = LoadMachine(options.machine);
  // Before the work: what cannot be written is known then.
  OutputFiles files;
  const auto reserve = [&](const std::string& target) {
    return target.empty() ? std::string() : files.Reserve(target);
  };
  const PlotFormat format = options.plot.empty() ? PlotFormat::Png : PlotFormatOf(options.plot);
  const std::string output = reserve(options.output);
  const std::string plot = reserve(options.plot);
  const std::string csv = reserve(options.csv);
  const std::string json = reserve(options.json);

  assess::Synthesis made = Run(requirement, machine, options);
  if (!made.failure.empty() && !options.force) {
    throw CommandError(kRefused, text::OneLine(options.requirement + ": " + made.failure));
  }
  if (!output.empty()) WriteFile(output, definition::ToJson(made.definition));
  if (!csv.empty()) WriteWaveCsv(made.wave, csv);
  if (!plot.empty()) {
    const std::string name = requirement.name.empty()
                                 ? std::filesystem::path(options.requirement).stem().string()
                                 : requirement.name;
    PlotSynthesis(requirement, made.settings.limits, made.wave, name, format, plot);
  }
  for (const std::string& warning : made.warnings) Warn(options.requirement, warning);
  const ExitCode code = !made.failure.empty() ? kRefused : made.warnings.empty() ? kDone : kWarned;
  const std::string text = assess::AsText(made.entries);
  if (!json.empty()) WriteFile(json, assess::SynthesisJson(std::move(made)));
  files.Commit(text);
  return code;
}

}  // namespace qarv::command
