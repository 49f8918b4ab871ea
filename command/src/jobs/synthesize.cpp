// qarv-wave synthesize: from a required shock response spectrum to a definition.
#include "jobs/synthesize.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <utility>
#include <vector>

#include "assess/entries.h"
#include "assess/requirement.h"
#include "assess/synthesis.h"
#include "com_def/com_def_const.h"
#include "definition/definition.h"
#include "diagnostics.h"
#include "files/export_files.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "pictures/synthesis_plot.h"
#include "progress.h"
#include "synthesis/synthesize.h"
#include "text/text.h"

namespace qarv::command {

using assess::Requirement;
using synthesis::SrsFailure;
using synthesis::SrsResult;
using synthesis::SrsSettings;

namespace {

template <class E>
using Names = std::array<std::pair<const char*, E>, 3>;

constexpr Names<com_def::comdefconst::SYNC_WAVE_TYPE> kMethods{{
    {"wavelet", com_def::comdefconst::SYNC_WAVE_WAVELET},
    {"damped", com_def::comdefconst::SYNC_WAVE_DAMPED_SINE},
    {"modified", com_def::comdefconst::SYNC_WAVE_DAMPED_SINE_MODIFIED},
}};
constexpr Names<synthesis::SrsShape> kShapes{{
    {"shock", synthesis::SrsShape::Shock},
    {"sweep", synthesis::SrsShape::Sweep},
    {"random", synthesis::SrsShape::Random},
}};
constexpr Names<synthesis::SrsAim> kAims{{
    {"displacement", synthesis::SrsAim::LeastDisplacement},
    {"velocity", synthesis::SrsAim::LeastVelocity},
    {"acceleration", synthesis::SrsAim::LeastAcceleration},
}};

template <class E>
std::string NamesOf(const Names<E>& names, const std::string& separator) {
  std::string out;
  for (const auto& [name, value] : names) out += (out.empty() ? "" : separator) + name;
  return out;
}

template <class E>
E ValueOf(const Names<E>& names, const char* option, const std::string& text) {
  for (const auto& [name, value] : names) {
    if (text == name) return value;
  }
  Fail(option, "is none of " + NamesOf(names, ", "));
}

SrsSettings SettingsOf(const SynthesizeOptions& options, const Requirement& requirement) {
  SrsSettings settings = assess::SettingsFor(requirement);
  settings.method = ValueOf(kMethods, "--method", options.method);
  settings.shape = ValueOf(kShapes, "--shape", options.shape);
  if (!options.minimize.empty()) settings.aim = ValueOf(kAims, "--minimize", options.minimize);
  if (!(options.within >= 0.0 && std::isfinite(options.within))) {
    Fail("--within", "is not 0 or above");
  }
  settings.within = options.within;
  settings.seed = options.seed;
  settings.quick = options.quick;
  return settings;
}

SrsResult Run(const Requirement& requirement, SrsSettings settings) {
  constexpr double kParts = 100.0;
  Progress progress(static_cast<std::size_t>(kParts));
  settings.progress = [&](double share) {
    progress.Show(static_cast<std::size_t>(kParts * share), "percent of the synthesis");
    return true;
  };
  return synthesis::SynthesizeSrs(requirement.spectrum, settings);
}

/// Whether there is no waveform because of what was asked, rather than of what can be reached.
bool IsBadInput(SrsFailure failure) {
  return failure == SrsFailure::BadRequirement || failure == SrsFailure::RecordTooShort ||
         failure == SrsFailure::SamplingTooLow;
}

}  // namespace

std::string MethodNames(const std::string& separator) { return NamesOf(kMethods, separator); }
std::string ShapeNames(const std::string& separator) { return NamesOf(kShapes, separator); }
std::string AimNames(const std::string& separator) { return NamesOf(kAims, separator); }

ExitCode Synthesize(const SynthesizeOptions& options) {
  const Requirement requirement = LoadRequirement(options.requirement);
  const SrsSettings settings = SettingsOf(options, requirement);
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

  const SrsResult result = Run(requirement, settings);
  const std::string failure = assess::FailureText(requirement, settings, result);
  if (IsBadInput(result.failure)) Fail(options.requirement, failure);
  if (!failure.empty() && !options.force) {
    throw CommandError(kRefused, text::OneLine(options.requirement + ": " + failure));
  }
  const definition::Definition definition = assess::DefinitionOf(requirement, result);
  const wave_def::CWaveDef def = definition::Generate(definition);
  std::vector<std::string> warnings = assess::SynthesisWarnings(requirement, settings, result);
  if (!failure.empty()) warnings.insert(warnings.begin(), failure);
  assess::Entries entries = assess::SynthesisEntries(requirement, settings, result);
  const std::string text = assess::AsText(entries);
  entries.push_back({"warnings", "warnings", warnings, ""});
  if (!output.empty()) WriteFile(output, definition::ToJson(definition));
  if (!csv.empty()) WriteWaveCsv(def, csv);
  if (!json.empty()) WriteFile(json, assess::AsJson(entries));
  if (!plot.empty()) {
    const std::string name = requirement.name.empty()
                                 ? std::filesystem::path(options.requirement).stem().string()
                                 : requirement.name;
    PlotSynthesis(requirement, settings.limits, def, name, format, plot);
  }
  for (const std::string& warning : warnings) Warn(options.requirement, warning);
  files.Commit(text);
  if (!failure.empty()) return kRefused;
  return warnings.empty() ? kDone : kWarned;
}

}  // namespace qarv::command
