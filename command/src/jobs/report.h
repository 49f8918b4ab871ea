// qarv-wave report: what a waveform asks of the shaker, and how it lies in its bands.
#pragma once

#include <string>

namespace qarv::command {

struct ReportOptions {
  std::string input;       // definition (.json) or record
  std::string machine;     // whose limits are compared; empty for none
  std::string json, html;  // files to write; empty for none
};

/// Prints the report and writes the files that are asked for.
void Report(const ReportOptions& options);

}  // namespace qarv::command
