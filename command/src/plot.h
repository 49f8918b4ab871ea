// A waveform and its bands as a picture.
#pragma once

#include <string>

#include "gnuplot.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// Plots the waveform, its bands dashed, over time.
/// Ends the command where gnuplot is missing or does not succeed.
void PlotWave(const wave_def::CWaveDef& def, const std::string& title, PlotFormat format,
              const std::string& file);

}  // namespace qarv::command
