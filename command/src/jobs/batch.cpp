// qarv-wave batch: every definition of a folder, and one table of them.
//
// The table is a list of rows; text, CSV and a page are three ways to write it.
#include "jobs/batch.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>
#include <vector>

#include "assess/entries.h"
#include "assess/report.h"
#include "command_error.h"
#include "definition/check.h"
#include "definition/title.h"
#include "files/definition_file.h"
#include "files/export_files.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "jobs/srs.h"
#include "pages/index_page.h"
#include "pages/report_page.h"
#include "pictures/plot.h"
#include "pictures/spectrum_plot.h"
#include "progress.h"
#include "text/text.h"

namespace qarv::command {

using assess::AsText;
using assess::Entries;
using assess::Entry;
using assess::ReportOf;
using assess::Spectrum;
using assess::ValueText;
using definition::Definition;
using definition::Findings;
using definition::FindingText;
using definition::HasFailure;
using definition::TitleOf;
using text::OneLine;

namespace fs = std::filesystem;
using wave_def::CWaveDef;

namespace {

/// A definition in the table.
struct Row {
  std::string name;
  ExitCode state;      // kDone, kWarned or kRefused
  std::string remark;  // what is wrong; empty if nothing is
  std::string title;   // what the waveform is
  bool hasSpectrum;    // as a picture
  Entries entries;     // none if there is no waveform
};

/// A column of the table, by its key in a report.
struct Column {
  const char* key;
  const char* label;
  bool hasUnit;
};
// clang-format off
constexpr std::array<Column, 10> kColumns{{
    {"family",                "family",                         false},
    {"samples",               "samples",                        false},
    {"duration",              "duration",                       true},
    {"peak",                  "peak",                           true},
    {"upper_margin",          "least margin to the upper band", true},
    {"lower_margin",          "least margin to the lower band", true},
    {"peak_velocity",         "peak velocity",                  true},
    {"peak_displacement",     "peak displacement",              true},
    {"residual_velocity",     "velocity at the end",            true},
    {"residual_displacement", "displacement at the end",        true},
}};
// clang-format on
constexpr std::size_t kInText = 4;  // of these

const char* StateText(ExitCode state) {
  switch (state) {
    case kDone:
      return "clean";
    case kWarned:
      return "warning";
    default:
      return "fails";
  }
}

const Entry* Find(const Row& row, const char* key) {
  const auto found = std::find_if(row.entries.begin(), row.entries.end(),
                                  [&](const Entry& entry) { return entry.key == key; });
  return found == row.entries.end() ? nullptr : &*found;
}

std::string CellText(const Row& row, const char* key) {
  const Entry* const entry = Find(row, key);
  return entry == nullptr ? "-" : ValueText(*entry);
}

// ---- One definition ----------------------------------------------------------------------------

struct Suffix {
  const char *csv, *plot, *record, *report, *spectrum, *definition;
};
constexpr Suffix kSuffix{".csv", ".png", ".rec", ".html", ".srs.png", ".json"};
constexpr const char* kTable = "summary.csv";

/// Where a definition's files go.
std::string TargetOf(const std::string& name, const char* suffix, const std::string& folder) {
  return (fs::path(folder) / (name + suffix)).string();
}

/// @return whether there is a spectrum
bool WriteFilesOf(CWaveDef& def, const std::string& name, const std::string& folder,
                  OutputFiles* files) {
  const auto target = [&](const char* suffix) { return TargetOf(name, suffix, folder); };
  WriteWaveCsv(def, files->Reserve(target(kSuffix.csv)));
  WriteRecord(def, files->Reserve(target(kSuffix.record)));
  // A measured waveform has its samples beside it.
  WriteFile(files->Reserve(target(kSuffix.definition)),
            ToJson(definition::DefinitionOf(def), name + kSuffix.csv));
  PlotDefinition(def, name, PlotFormat::Png, files->Reserve(target(kSuffix.plot)));
  const std::optional<Spectrum> spectrum = SpectrumOf(def, name);
  if (spectrum) {
    PlotSpectrum(*spectrum, name + ": " + TitleOf(def), Axes::Plain, PlotFormat::Png,
                 files->Reserve(target(kSuffix.spectrum)));
  }
  WriteReportPage(def, spectrum, {}, name, target(kSuffix.report), files);
  return spectrum.has_value();
}

/// Why a definition cannot have its files: two names may lead to one, or be too long with their
/// endings.  Empty if it can.
std::string WhyNoFiles(const std::string& name, const std::string& folder,
                       const OutputFiles& files) {
  for (const char* const suffix : {kSuffix.csv, kSuffix.plot, kSuffix.record, kSuffix.report,
                                   kSuffix.spectrum, kSuffix.definition}) {
    const std::string why = files.WhyNot(TargetOf(name, suffix, folder));
    if (!why.empty()) return fmt::format("{}{}: {}", name, suffix, why);
  }
  return "";
}

/// The definition of a file, and what is wrong with it.
Row RowOf(const fs::path& file, CWaveDef* def) {
  Row row{file.stem().string(), kDone, "", "", false, {}};
  try {
    std::error_code error;
    // What else has such a name in a folder may never end, or never begin.
    if (fs::exists(file, error) && !fs::is_regular_file(file, error)) {
      Fail(file.string(), "is not a regular file");
    }
    const Definition definition = ReadDefinition(file.string());
    const Findings findings = definition::Check(definition, def);
    if (HasFailure(findings)) {
      row.state = kRefused;
      row.remark = RefusalLine(definition, file.string(), FindingText(findings.front()));
      return row;
    }
    if (!findings.empty()) {
      row.state = kWarned;
      row.remark = FindingText(findings.front());
    }
  } catch (const CommandError& e) {
    row.state = kRefused;
    row.remark = e.what();
    return row;
  }
  row.title = TitleOf(*def);
  row.entries = ReportOf(*def);
  return row;
}

// ---- The table ---------------------------------------------------------------------------------

std::string AsText(const std::vector<Row>& rows) {
  std::vector<std::vector<std::string>> cells{{"definition"}};
  for (std::size_t i = 0; i < kInText; ++i) cells.front().push_back(kColumns[i].label);
  for (const Row& row : rows) {
    cells.push_back({OneLine(row.name)});
    for (std::size_t i = 0; i < kInText; ++i)
      cells.back().push_back(CellText(row, kColumns[i].key));
  }
  std::vector<std::size_t> widths(kInText + 1);
  for (const auto& line : cells) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  std::string text;
  for (std::size_t r = 0; r < cells.size(); ++r) {
    for (std::size_t i = 0; i < cells[r].size(); ++i) {
      text += fmt::format("{:<{}}  ", cells[r][i], widths[i]);
    }
    if (r == 0) {
      text += "state\n";
      continue;
    }
    const Row& row = rows[r - 1];
    text += StateText(row.state);
    if (!row.remark.empty()) text.append(": ").append(OneLine(row.remark));
    text += "\n";
  }
  return text;
}

std::string CsvCell(const std::string& text) {
  if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string out = "\"";
  for (const char c : text) out += c == '"' ? "\"\"" : std::string(1, c);
  return out + '"';
}

std::string AsCsv(const std::vector<Row>& rows) {
  std::string text = "definition";
  for (const Column& column : kColumns) {
    text += fmt::format(",{}", column.key);
    if (column.hasUnit) text += fmt::format(",{}_unit", column.key);
  }
  text += ",state,remark\n";
  for (const Row& row : rows) {
    text += CsvCell(row.name);
    for (const Column& column : kColumns) {
      const Entry* const entry = Find(row, column.key);
      text += fmt::format(",{}", CsvCell(entry == nullptr ? "" : BareText(*entry)));
      if (column.hasUnit) text += fmt::format(",{}", CsvCell(entry == nullptr ? "" : entry->unit));
    }
    text += fmt::format(",{},{}\n", StateText(row.state), CsvCell(OneLine(row.remark)));
  }
  return text;
}

std::string AsPage(const std::vector<Row>& rows) {
  std::vector<Card> cards;
  for (const Row& row : rows) {
    Card card{row.name, row.title, StateText(row.state), row.remark, {}, "", {}, {}};
    const auto file = [&](const char* suffix) { return row.name + suffix; };
    if (!row.entries.empty()) {
      for (const Column& column : kColumns) {
        card.values.emplace_back(column.label, CellText(row, column.key));
      }
      card.report = file(kSuffix.report);
      card.pictures = {{"waveform", file(kSuffix.plot)}};
      if (row.hasSpectrum) {
        card.pictures.emplace_back("shock response spectrum", file(kSuffix.spectrum));
      }
      card.data = {{"CSV", file(kSuffix.csv)},
                   {"record", file(kSuffix.record)},
                   {"definition (JSON)", file(kSuffix.definition)}};
    }
    cards.push_back(card);
  }
  return IndexPage(cards, kTable);
}

std::vector<fs::path> DefinitionsIn(const std::string& folder) {
  std::error_code error;
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (ExtensionOf(entry.path().string()) == ".json") files.push_back(entry.path());
  }
  if (error) {
    Fail(folder, error == std::errc::no_such_file_or_directory
                     ? "does not exist"
                     : fmt::format("cannot be read: {}", error.message()));
  }
  if (files.empty()) Fail(folder, "has no definitions (.json)");
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

ExitCode Batch(const BatchOptions& options) {
  const std::vector<fs::path> definitions = DefinitionsIn(options.folder);
  OutputFiles files;
  std::error_code error;
  if (!options.output.empty() && fs::equivalent(options.output, options.folder, error)) {
    Fail("--output", "is the folder of the definitions");
  }
  const bool withFiles = !options.output.empty();
  // The names of the batch's own files come first: a definition that would take one has none.
  const auto own = [&](const char* name) {
    return files.Reserve((fs::path(options.output) / name).string());
  };
  if (withFiles) files.MakeFolder(options.output);
  const std::string summary = withFiles ? own(kTable) : "";
  const std::string page = withFiles ? own("index.html") : "";
  const std::string table = options.csv.empty() ? "" : files.Reserve(options.csv);
  std::vector<Row> rows;
  {
    Progress progress(definitions.size());
    for (const fs::path& file : definitions) {
      progress.Show(rows.size(), file.stem().string());
      CWaveDef def;
      rows.push_back(RowOf(file, &def));
      Row& row = rows.back();
      if (!withFiles || row.entries.empty()) continue;
      const std::string why = WhyNoFiles(row.name, options.output, files);
      if (why.empty()) {
        row.hasSpectrum = WriteFilesOf(def, row.name, options.output, &files);
      } else {
        row = {row.name, kRefused, why, "", false, {}};
      }
    }
  }
  if (!table.empty()) WriteFile(table, AsCsv(rows));
  if (withFiles) {
    WriteFile(summary, AsCsv(rows));
    WriteFile(page, AsPage(rows));
  }
  files.Commit(AsText(rows));
  const auto has = [&](ExitCode state) {
    return std::any_of(rows.begin(), rows.end(), [=](const Row& r) { return r.state == state; });
  };
  return has(kRefused) ? kRefused : has(kWarned) ? kWarned : kDone;
}

}  // namespace qarv::command
