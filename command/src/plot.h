// A waveform and its bands as a picture.
#pragma once

#include <string>

#include "gnuplot.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// Whether a picture shows velocity and displacement below the waveform.
enum class Motion { Hidden, Shown };

/// Plots the waveform, its bands dashed, over time.
/// Ends the command where gnuplot is missing or does not succeed.
void PlotWave(const wave_def::CWaveDef& def, const std::string& title, Motion motion,
              PlotFormat format, const std::string& file);

}  // namespace qarv::command
