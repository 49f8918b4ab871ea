// qarv-wave judge: whether measured records pass.
#include "jobs/judge.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <utility>
#include <vector>

#include "assess/frame.h"
#include "assess/judgement.h"
#include "assess/synthesis.h"
#include "assessment.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "definition/title.h"
#include "diagnostics.h"
#include "files/definition_file.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "jobs/judged.h"
#include "jobs/spectrum_of.h"
#include "pictures/verdict_plot.h"
#include "platform/platform.h"
#include "text/text.h"

namespace qarv::command {

namespace fs = std::filesystem;
using definition::SpanOf;
using text::OneLine;
using wave_def::CWaveDef;

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

/// The files: a folder stands for those in it.
std::vector<std::string> FilesOf(const std::vector<std::string>& names) {
  std::vector<std::string> files;
  for (const std::string& name : names) {
    std::error_code ignored;
    if (IsStream(name) || !fs::is_directory(name, ignored)) {
      files.push_back(name);
      continue;
    }
    std::vector<std::string> inside;
    for (const auto& entry : fs::directory_iterator(name, ignored)) {
      const std::string file = entry.path().filename().string();
      const std::string extension = ExtensionOf(file);
      const bool ours = extension == ".json" || extension == ".rec" || extension == ".html" ||
                        extension == ".png" || extension == ".svg";
      if (entry.is_regular_file(ignored) && !file.starts_with('.') && !ours) {
        inside.push_back(entry.path().string());
      }
    }
    if (inside.empty()) Fail(name, "has no files of samples");
    std::sort(inside.begin(), inside.end());
    files.insert(files.end(), inside.begin(), inside.end());
  }
  return files;
}

/// The day on which a file was written last; empty for a stream.
std::string DateOf(const std::string& file) {
  const auto facts = IsStream(file) ? std::nullopt : platform::FactsOf(file);
  if (!facts) return "";
  namespace chrono = std::chrono;
  const chrono::sys_seconds written{chrono::seconds{facts->written}};
  const chrono::year_month_day day{chrono::floor<chrono::days>(written)};
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(day.year()),
                     static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
}

assess::SeriesSettings SettingsOf(const JudgeOptions& options) {
  using assess::Polarity;
  using assess::VelocityReference;
  assess::SeriesSettings settings = options.series;
  if (!options.at.empty()) settings.at = NumbersOf(options.at, "--at");
  const auto pick = [](const std::string& text, auto usual, auto choices, const char* option) {
    if (text.empty()) return usual;
    for (const auto& [name, value] : choices) {
      if (text == name) return value;
    }
    Fail(option, "'" + text + "' is none of its values");
  };
  settings.judge.dvOf = pick(options.dvOf, VelocityReference::Usual,
                             std::array<std::pair<const char*, VelocityReference>, 3>{
                                 {{"nominal", VelocityReference::Nominal},
                                  {"waveform", VelocityReference::Waveform},
                                  {"both", VelocityReference::Both}}},
                             "--dv-of");
  settings.polarity = pick(options.polarity, Polarity::Usual,
                           std::array<std::pair<const char*, Polarity>, 2>{
                               {{"both", Polarity::Both}, {"own", Polarity::Own}}},
                           "--polarity");
  return settings;
}

/// The unit in which a record is judged, and why.
std::string UnitText(const CWaveDef& def, const std::string& unit) {
  const std::string own = def.GetUnitAmpl().GetText();
  if (own.empty()) return unit.empty() ? "none" : unit;
  if (unit.empty()) return own + ", that of the definition: the record names none";
  return unit == own ? own : fmt::format("{}, converted from {}", own, unit);
}

/// The samples of a record that the frame of a judged shock covers.
InputWave ShockIn(const CWaveDef& def, const assess::Judgement& judgement, const InputWave& wave) {
  const auto samples = SpanOf(wave.samples);
  const assess::Stretch stretch =
      assess::CoveredBy(def, judgement, {samples, wave.fsamp, wave.unit, wave.begin});
  const auto part = samples.subspan(stretch.first, stretch.last - stretch.first + 1);
  InputWave shock{{}, wave.fsamp, wave.unit};
  shock.samples.SetData(part.size(), part.data(), false);
  if (shock.unit.empty()) shock.unit = def.GetUnitAmpl().GetText();
  return shock;
}

/// The spectrum of a shock on the lines of a requirement.
JudgedSpectrum SpectrumBeside(const assess::Requirement& requirement, const std::string& file,
                              InputWave shock) {
  ConvertTo(requirement.unit, "the requirement's", file, &shock);
  Upsample(requirement.spectrum.points.back().frequency, file, &shock);
  const synthesis::SrsComparison comparison = Compare(requirement, shock, file);
  return {SpectrumOf(file, shock, RequiredSettings(requirement)),
          assess::VerdictEntries(requirement, comparison), comparison.Meets(requirement.spectrum),
          shock.remarks};
}

/// Judges the channels of a file.
void JudgeFile(const CWaveDef& def, const std::string& file, const JudgeOptions& options,
               const assess::SeriesSettings& settings,
               const std::optional<assess::Requirement>& requirement,
               std::vector<JudgedRecord>* records) {
  const assess::Conditioning steps = ConditioningOf(options.steps);
  const bool isDrawn = !options.html.empty() || !options.plot.empty();
  for (InputWave& wave : LoadMeasured(file, options.choice)) {
    JudgedRecord judged;
    judged.file = file;
    judged.channel = wave.channel;
    judged.unit = UnitText(def, wave.unit);
    const assess::OwnedRecord before = isDrawn ? OwnedRecordOf(wave) : assess::OwnedRecord{};
    const bool isChanged = TakeSteps(steps, file, &wave);
    judged.steps = wave.remarks;
    judged.series = Assessed(file, [&] {
      return assess::JudgeSeries(def, {SpanOf(wave.samples), wave.fsamp, wave.unit, wave.begin},
                                 settings);
    });
    for (const assess::ShockVerdict& shock : judged.series.shocks) {
      ShownShock& shown = judged.shown.emplace_back();
      if (!shock.judgement) continue;
      if (isDrawn && isChanged) {
        shown.before = Assessed(file, [&] {
          return assess::OnFrame(def, *shock.judgement,
                                 {before.samples, before.fsamp, before.unit, before.begin});
        });
      }
      if (requirement) {
        shown.spectrum = SpectrumBeside(*requirement, file, ShockIn(def, *shock.judgement, wave));
      }
    }
    records->push_back(std::move(judged));
  }
}

/// The shock that a picture shows where only one is drawn: the first that fails, else the first.
struct Drawn {
  const JudgedRecord* record;
  const assess::ShockVerdict* shock;
  const ShownShock* shown;
};

Drawn ToDraw(const JudgedRun& run) {
  Drawn first{nullptr, nullptr, nullptr};
  for (const JudgedRecord& record : run.records) {
    for (std::size_t i = 0; i < record.series.shocks.size(); ++i) {
      const assess::ShockVerdict& shock = record.series.shocks[i];
      if (!shock.judgement) continue;
      if (!shock.Passes()) return {&record, &shock, &record.shown[i]};
      if (first.shock == nullptr) first = {&record, &shock, &record.shown[i]};
    }
  }
  return first;
}

}  // namespace

ExitCode Judge(const JudgeOptions& options) {
  const CWaveDef def = LoadReference(options.definition);
  JudgedRun run;
  run.definition = options.definition;
  if (!options.requirement.empty()) run.requirement = LoadRequirement(options.requirement);
  for (const definition::Finding& finding : definition::CheckWave(def)) {
    run.remarks.push_back(OneLine(finding.text));
  }
  const assess::SeriesSettings settings = SettingsOf(options);
  const std::vector<std::string> measured = FilesOf(options.measured);
  for (const std::string& file : measured) {
    if (measured.size() == 1) {
      JudgeFile(def, file, options, settings, run.requirement, &run.records);
      continue;
    }
    try {
      JudgeFile(def, file, options, settings, run.requirement, &run.records);
    } catch (const CommandError& e) {
      JudgedRecord& record = run.records.emplace_back();
      record.file = file;
      record.error = e.what();
    }
  }

  OutputFiles files;
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), JsonOf(run));
  if (!options.html.empty()) {
    const std::string date = options.date.empty() ? DateOf(measured.front()) : options.date;
    WriteJudgePage(def, run, date, options.html, &files);
  }
  if (const Drawn drawn = ToDraw(run); !options.plot.empty() && drawn.shock != nullptr) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string title =
        fmt::format("{}: {} ({})", fs::path(drawn.record->file).stem().string(),
                    drawn.shock->Passes() ? "pass" : "fail", definition::TitleOf(def));
    PlotVerdict(def, drawn.shock->judgement->overlay, drawn.shock->negative, drawn.shown->before,
                title, format, files.Reserve(options.plot));
  }
  for (const std::string& remark : run.remarks) Warn(options.definition, remark);
  for (const JudgedRecord& record : run.records) {
    for (const std::string& warning : WarningsOf(record)) Warn(record.file, warning);
  }
  files.Commit(TextOf(def, run));
  return run.Fails() ? kRefused : run.IsOpen() ? kBadInput : kDone;
}

}  // namespace qarv::command
