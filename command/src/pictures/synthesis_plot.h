// A synthesis as a picture: the spectrum beside what is required, and the motion in its limits.
#pragma once

#include <string>

#include "assess/requirement.h"
#include "pictures/gnuplot.h"
#include "synthesis/synthesize.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// Draws required level, tolerance and achieved spectrum, and below them the waveform, its velocity
/// and its displacement with their limits.
/// Ends the command where gnuplot is missing or does not succeed.
/// @param[in] def  the defined waveform
void PlotSynthesis(const assess::Requirement& requirement, const synthesis::MotionLimits& limits,
                   const wave_def::CWaveDef& def, const std::string& title, PlotFormat format,
                   const std::string& file);

}  // namespace qarv::command
