// What has been judged: the records with their shocks, as text, as JSON and as a page.
#include "jobs/judged.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "definition/title.h"
#include "jobs/spectra.h"
#include "pages/html.h"
#include "pages/parts.h"
#include "pictures/spectrum_plot.h"
#include "pictures/verdict_plot.h"

namespace qarv::command {

using assess::Entries;
using assess::Entry;
using assess::ShockVerdict;
using assess::ValueText;
using Json = nlohmann::ordered_json;

namespace {

const Entry* Find(const ShockVerdict& shock, const std::string& key) {
  if (!shock.judgement) return nullptr;
  const Entries& entries = shock.judgement->entries;
  const auto at = std::find_if(entries.begin(), entries.end(),
                               [&](const Entry& entry) { return entry.key == key; });
  return at == entries.end() ? nullptr : &*at;
}

std::string Shown(const ShockVerdict& shock, const std::string& key) {
  const Entry* const entry = Find(shock, key);
  return entry == nullptr ? "" : ValueText(*entry);
}

std::string VerdictOf(const ShockVerdict& shock) {
  return !shock.judgement ? "no verdict" : shock.Passes() ? "pass" : "fail";
}

constexpr std::size_t kSummaryColumns = 11;
using TableRow = std::array<std::string, kSummaryColumns>;

/// The table of all shocks: its titles, then a row for each.
std::vector<TableRow> RowsOf(const wave_def::CWaveDef& def, const JudgedRun& run) {
  std::vector<TableRow> rows{{"record", "shock", "time", "polarity", "peak", "width",
                              "velocity change", "deviation", "outside", "worst", "verdict"}};
  for (const JudgedRecord& record : run.records) {
    if (!record.error.empty()) {
      rows.push_back({record.GetName(), "", "", "", "", "", "", "", "", "", "no verdict"});
    }
    int number = 0;
    for (const ShockVerdict& shock : record.series.shocks) {
      rows.push_back({record.GetName(), std::to_string(++number),
                      fmt::format("{:.6g} s", shock.time), shock.peak < 0.0 ? "-" : "+",
                      ValueText({"", "", shock.peak, def.GetUnitAmpl().GetText()}),
                      Shown(shock, "pulse_width"), Shown(shock, "velocity_change"),
                      Shown(shock, "velocity_change_deviation"), Shown(shock, "outside"),
                      Shown(shock, "worst_excess"), VerdictOf(shock)});
    }
  }
  return rows;
}

/// The reasons of what has no verdict, a line each.
std::vector<std::string> ReasonsOf(const JudgedRun& run) {
  std::vector<std::string> reasons;
  for (const JudgedRecord& record : run.records) {
    if (!record.error.empty()) reasons.push_back(record.GetName() + ": " + record.error);
    int number = 0;
    for (const ShockVerdict& shock : record.series.shocks) {
      ++number;
      if (shock.judgement) continue;
      reasons.push_back(fmt::format("{}, shock {}: {}", record.GetName(), number, shock.reason));
    }
  }
  return reasons;
}

/// What stands before the verdicts of a record.
Entries HeadOf(const JudgedRecord& record) {
  Entries head;
  head.push_back({"unit", "unit", record.unit, ""});
  if (!record.steps.empty()) head.push_back({"steps", "steps", record.steps, ""});
  return head;
}

Json JsonOf(const Entries& entries) { return Json::parse(AsJson(entries)); }

/// The spectra of the shocks beside the required one, a line each.
std::vector<std::string> SpectrumTextsOf(const JudgedRun& run) {
  std::vector<std::string> texts;
  for (const JudgedRecord& record : run.records) {
    for (std::size_t i = 0; i < record.shown.size(); ++i) {
      if (!record.shown[i].spectrum) continue;
      texts.push_back(fmt::format("{}, shock {}: its spectrum is {}", record.GetName(), i + 1,
                                  record.shown[i].spectrum->GetText()));
    }
  }
  return texts;
}

/// A spectrum beside the required one: what follows, and the lists to draw it.
Json JsonOf(const JudgedSpectrum& judged) {
  Json json = JsonOf(judged.entries);
  json["record"] = judged.remarks;
  json["unit"] = judged.spectrum.unit;
  for (const analysis::SrsPoint& point : judged.spectrum.points) {
    json["frequency"].push_back(point.frequency);
    json["maximax"].push_back(NumberJson(judged.spectrum.factor * point.Total().Maximax()));
  }
  return json;
}

std::string Dumped(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// The picture of a spectrum, and what it says.
std::string SpectrumPart(const JudgedSpectrum& judged, const assess::Requirement& requirement,
                         const std::string& target, OutputFiles* files) {
  std::string text = "Spectrum: " + judged.GetText();
  for (const std::string& remark : judged.remarks) text += "; " + remark;
  return "<p class=\"caption\">" + HtmlText(text) + "</p>\n" +
         Figure(target, files, [&](const std::string& file) {
           SpectrumPicture picture = PictureOf(std::vector{judged.spectrum}, "", Axes::Plain);
           picture.curves.front().title = "shock, Q " + QText(judged.spectrum.zeta);
           AddRequirement(requirement.spectrum, &picture);
           PlotCurves(picture, PlotFormat::Svg, file);
         });
}

std::string StepsText(const JudgedRecord& record) {
  std::string text = fmt::format("{:<34} {}\n", "unit", record.unit);
  for (const std::string& step : record.steps) text += fmt::format("{:<34} {}\n", "step", step);
  return text;
}

}  // namespace

std::string JudgedSpectrum::GetText() const {
  const auto text = [&](const char* key) {
    const auto at = std::find_if(entries.begin(), entries.end(),
                                 [&](const Entry& entry) { return entry.key == key; });
    return at == entries.end() ? std::string() : ValueText(*at);
  };
  return fmt::format("{} the required one: worst {} at {} on the lines, {} at {} in between",
                     meets ? "inside" : "outside", text("gridWorst"), text("gridWorstFrequency"),
                     text("betweenWorst"), text("betweenWorstFrequency"));
}

std::string JudgedRecord::GetName() const {
  const std::string name = std::filesystem::path(file).filename().string();
  return channel.empty() ? name : name + " " + channel;
}

bool JudgedRun::Fails() const {
  return std::any_of(records.begin(), records.end(),
                     [](const JudgedRecord& r) { return r.series.Fails(); });
}

bool JudgedRun::IsOpen() const {
  return std::any_of(records.begin(), records.end(),
                     [](const JudgedRecord& r) { return !r.error.empty() || r.series.IsOpen(); });
}

std::string JudgedRun::GetVerdict() const {
  return Fails() ? "fail" : IsOpen() ? "no verdict" : "pass";
}

const ShockVerdict* JudgedRun::GetOnly() const {
  const bool one = records.size() == 1 && records[0].series.shocks.size() == 1;
  return one ? &records[0].series.shocks[0] : nullptr;
}

std::vector<std::string> WarningsOf(const JudgedRecord& record) {
  std::vector<std::string> warnings = record.series.warnings;
  const std::vector<ShockVerdict>& shocks = record.series.shocks;
  for (std::size_t i = 0; i < shocks.size(); ++i) {
    if (!shocks[i].judgement) continue;
    const auto warn = [&](const std::string& warning) {
      warnings.push_back(shocks.size() > 1 ? fmt::format("shock {}: {}", i + 1, warning) : warning);
    };
    for (const std::string& warning : shocks[i].judgement->warnings) warn(warning);
    const auto& spectrum = record.shown[i].spectrum;
    if (spectrum && !spectrum->meets) warn("its spectrum is " + spectrum->GetText());
  }
  return warnings;
}

std::string TextOf(const wave_def::CWaveDef& def, const JudgedRun& run) {
  const ShockVerdict* const only = run.GetOnly();
  if (only != nullptr && only->judgement) {
    std::string text = AsText(only->judgement->entries) + StepsText(run.records[0]);
    const auto& spectrum = run.records[0].shown[0].spectrum;
    if (spectrum) text += fmt::format("{:<34} {}\n", "spectrum", spectrum->GetText());
    return text;
  }
  const std::vector<TableRow> rows = RowsOf(def, run);
  std::array<std::size_t, kSummaryColumns> widths{};
  for (const TableRow& row : rows) {
    for (std::size_t i = 0; i < kSummaryColumns; ++i)
      widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (const TableRow& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < kSummaryColumns; ++i)
      line += fmt::format("{:<{}}  ", row[i], widths[i]);
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  for (const std::string& reason : ReasonsOf(run)) text += reason + "\n";
  for (const std::string& spectrum : SpectrumTextsOf(run)) text += spectrum + "\n";
  for (const JudgedRecord& record : run.records) {
    if (!record.error.empty()) continue;
    text += fmt::format("{}: unit {}\n", record.GetName(), record.unit);
    for (const std::string& step : record.steps) {
      text += fmt::format("{}: {}\n", record.GetName(), step);
    }
  }
  return text + "verdict: " + run.GetVerdict() + "\n";
}

std::string JsonOf(const JudgedRun& run) {
  const ShockVerdict* const only = run.GetOnly();
  if (only != nullptr && only->judgement) {
    Entries entries = only->judgement->entries;
    const Entries head = HeadOf(run.records[0]);
    entries.insert(entries.end(), head.begin(), head.end());
    std::vector<std::string> warnings = run.remarks;
    const std::vector<std::string> own = WarningsOf(run.records[0]);
    warnings.insert(warnings.end(), own.begin(), own.end());
    entries.push_back({"warnings", "warnings", warnings, ""});
    Json json = JsonOf(entries);
    const auto& spectrum = run.records[0].shown[0].spectrum;
    if (spectrum) json["spectrum"] = JsonOf(*spectrum);
    return Dumped(json);
  }
  Json json =
      JsonOf({{"verdict", "verdict", run.GetVerdict(), ""}, {"warnings", "", run.remarks, ""}});
  json["records"] = Json::array();
  for (const JudgedRecord& record : run.records) {
    Entries head = HeadOf(record);
    head.insert(head.begin(), {"file", "file", record.file, ""});
    if (!record.channel.empty()) head.push_back({"channel", "channel", record.channel, ""});
    if (!record.error.empty()) head.push_back({"reason", "reason", record.error, ""});
    head.push_back({"warnings", "warnings", WarningsOf(record), ""});
    Json item = JsonOf(head);
    item["shocks"] = Json::array();
    for (std::size_t i = 0; i < record.series.shocks.size(); ++i) {
      const ShockVerdict& shock = record.series.shocks[i];
      Entries entries{{"time", "time", shock.time, "s"},
                      {"polarity", "polarity", shock.peak < 0.0 ? "negative" : "positive", ""}};
      if (shock.judgement) {
        entries.insert(entries.end(), shock.judgement->entries.begin(),
                       shock.judgement->entries.end());
      } else {
        entries.push_back({"verdict", "verdict", "no verdict", ""});
        entries.push_back({"reason", "reason", shock.reason, ""});
      }
      item["shocks"].push_back(JsonOf(entries));
      const auto& spectrum = record.shown[i].spectrum;
      if (spectrum) item["shocks"].back()["spectrum"] = JsonOf(*spectrum);
    }
    json["records"].push_back(item);
  }
  return Dumped(json);
}

void WriteJudgePage(const wave_def::CWaveDef& def, const JudgedRun& run, const std::string& date,
                    const std::string& target, OutputFiles* files) {
  const std::string page = files->Reserve(target);
  Entries head{
      {"verdict", "Verdict", run.GetVerdict(), ""},
      {"definition", "Definition",
       std::filesystem::path(run.definition).filename().string() + ": " + definition::TitleOf(def),
       ""},
      {"date", "Date", date, ""}};
  for (const JudgedRecord& record : run.records) {
    head.push_back({"record", "Record", record.GetName(), ""});
    if (record.error.empty()) head.push_back({"unit", "  unit", record.unit, ""});
    for (const std::string& step : record.steps) head.push_back({"step", "  step", step, ""});
    for (const std::string& warning : WarningsOf(record)) {
      head.push_back({"warning", "  warning", warning, ""});
    }
  }
  for (const std::string& remark : run.remarks) {
    head.push_back({"warning", "Warning on the definition", remark, ""});
  }
  std::string body = Table(head) + "<h2>Shocks</h2>\n<div class=\"wide\"><table>\n";
  bool title = true;
  for (const TableRow& row : RowsOf(def, run)) {
    body += "<tr>";
    for (const std::string& cell : row) {
      body += fmt::format("<{0}>{1}</{0}>", title ? "th" : "td", HtmlText(cell));
    }
    body += "</tr>\n";
    title = false;
  }
  body += "</table></div>\n";
  for (const std::string& reason : ReasonsOf(run)) body += "<p>" + HtmlText(reason) + "</p>\n";
  for (const JudgedRecord& record : run.records) {
    for (std::size_t i = 0; i < record.series.shocks.size(); ++i) {
      const ShockVerdict& shock = record.series.shocks[i];
      const ShownShock& shown = record.shown[i];
      if (!shock.judgement) continue;
      body += fmt::format("<h2>{}, shock {}: {}</h2>\n", HtmlText(record.GetName()), i + 1,
                          VerdictOf(shock));
      body += Figure(target, files, [&](const std::string& file) {
        PlotVerdict(def, shock.judgement->overlay, shock.negative, shown.before, "",
                    PlotFormat::Svg, file);
      });
      if (shown.spectrum) body += SpectrumPart(*shown.spectrum, *run.requirement, target, files);
      body += Table(shock.judgement->entries);
    }
  }
  WriteFile(page, HtmlPage(fmt::format("Shock verdict: {}", run.GetVerdict()), body));
}

}  // namespace qarv::command
