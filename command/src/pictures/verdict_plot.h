// A judged shock between its bands, with what lies outside.
#pragma once

#include <string>

#include "assess/judgement.h"
#include "pictures/gnuplot.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// Draws a judged shock as it was recorded: between mirrored bands where it was judged by these.
/// @param[in] before  the record before any steps, on the samples of the definition, lightly behind
///                    it; empty for none
/// Ends the command where gnuplot is missing or does not succeed.
void PlotVerdict(const wave_def::CWaveDef& def, const assess::Overlay& overlay, bool mirrored,
                 const common::CDataArrayFloatT<double>& before, const std::string& title,
                 PlotFormat format, const std::string& file);

}  // namespace qarv::command
