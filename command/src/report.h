// qarv-wave report: what a waveform asks of the shaker, and how it lies in its bands.
#pragma once

#include <optional>
#include <string>

#include "output_files.h"
#include "spectrum_plot.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

struct ReportOptions {
  std::string input;       // definition (.json) or record
  std::string json, html;  // files to write; empty for none
};

/// Writes the numbers, the plots of acceleration, velocity and displacement and the spectrum, if
/// there is one, as one page.
/// @param[in] name  of the definition, for the title
void WriteReportPage(const wave_def::CWaveDef& def, const std::optional<assess::Spectrum>& spectrum,
                     const std::string& name, const std::string& target, OutputFiles* files);

/// Prints the report and writes the files that are asked for.
void Report(const ReportOptions& options);

}  // namespace qarv::command
