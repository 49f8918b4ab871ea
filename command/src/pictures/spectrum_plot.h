// Shock response spectra as pictures.
#pragma once

#include <string>

#include "assess/spectrum.h"
#include "pictures/gnuplot.h"

namespace qarv::command {

/// "Shock response spectrum" with its damping.
std::string SpectrumTitle(const assess::Spectrum& spectrum);

enum class Axes {
  Plain,
  FourWay,  ///< of displacement and acceleration too, through a spectrum of pseudo velocity
};

/// Draws maximax, primary and residual over the natural frequency.
/// Ends the command where gnuplot is missing or does not succeed.
/// @param[in] title  a first line, above that of the spectrum itself; empty for no lines
void PlotSpectrum(const assess::Spectrum& spectrum, const std::string& title, Axes axes,
                  PlotFormat format, const std::string& file);

}  // namespace qarv::command
