// What has been judged: the records with their shocks, as text, as JSON and as a page.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assess/requirement.h"
#include "assess/series.h"
#include "assess/spectrum.h"
#include "common/data_array/data_array_float_t.h"
#include "files/output_files.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// The spectrum of a shock beside the required one.
struct JudgedSpectrum {
  assess::Spectrum spectrum;  // in the requirement's unit
  assess::Entries entries;    // the deviations and what follows from them
  bool meets;
  std::vector<std::string> remarks;  // conversions, a line each

  /// For people: inside, or outside with the worst line.
  std::string GetText() const;
};

/// What is shown of a shock beside its verdict.
struct ShownShock {
  common::CDataArrayFloatT<double> before{};  // the record before its steps, on the samples of the
                                              // definition; empty where there were none
  std::optional<JudgedSpectrum> spectrum{};   // where one is required
};

/// A channel of a measured file with its verdicts.
struct JudgedRecord {
  std::string file;
  std::string channel;             // empty where the file has only one
  std::string unit;                // of the verdicts, and where it comes from
  std::vector<std::string> steps;  // choices, conversions and steps before the verdict, a line each
  std::string error;               // why there are no verdicts; otherwise
  assess::Series series;
  std::vector<ShownShock> shown;  // of each shock of the series

  std::string GetName() const;
};

/// All records of a run.
struct JudgedRun {
  std::string definition;            // the file
  std::vector<std::string> remarks;  // on the definition
  std::optional<assess::Requirement> requirement;
  std::vector<JudgedRecord> records;

  bool Fails() const;
  bool IsOpen() const;
  std::string GetVerdict() const;  // "pass", "fail", "no verdict"
  /// The one shock, where there is only one.
  const assess::ShockVerdict* GetOnly() const;
};

/// For people: the entries of one shock, or a table of several.
std::string TextOf(const wave_def::CWaveDef& def, const JudgedRun& run);

/// The entries of one shock; of several a list of records, each with its list of shocks.
std::string JsonOf(const JudgedRun& run);

/// Every warning on a record and its shocks.
std::vector<std::string> WarningsOf(const JudgedRecord& record);

/// One page to file: what was judged, the table, and for each shock a picture and its numbers.
void WriteJudgePage(const wave_def::CWaveDef& def, const JudgedRun& run, const std::string& date,
                    const std::string& target, OutputFiles* files);

}  // namespace qarv::command
