// qarv-wave judge: whether measured records pass.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assess/series.h"
#include "command_error.h"
#include "files/input_wave.h"
#include "jobs/steps.h"

namespace qarv::command {

struct JudgeOptions {
  std::string definition;             // definition (.json) or record
  std::vector<std::string> measured;  // samples, or folders of such files
  MeasuredChoice choice;
  StepOptions steps;
  assess::SeriesSettings series;
  std::string requirement;       // required spectrum (.json), which each shock's is shown beside
  std::string dvOf;              // "nominal", "waveform", "both"; empty: the usual one
  std::string polarity;          // "both", "own"; empty: the usual one
  std::string at;                // times [s], separated by commas
  std::string date;              // of the page; empty: that of the first record
  std::string json, plot, html;  // files to write; empty for none
};

/// Lays every shock of the measured records over the definition, compares it with the bands, and
/// prints the verdict, or a table of several.  Ends the command with kBadInput where there is none:
/// the definition is refused, the record does not show the pulse, or its sampling does not show
/// enough of it.
/// @return kDone if all pass, kRefused if one fails, kBadInput if one is left without a verdict
ExitCode Judge(const JudgeOptions& options);

}  // namespace qarv::command
