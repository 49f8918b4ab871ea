// Shock response spectra as pictures.
#pragma once

#include <string>
#include <vector>

#include "analysis/srs.h"
#include "gnuplot.h"

namespace qarv::command {

/// A shock response spectrum with what it is a spectrum of.
struct Spectrum {
  std::vector<analysis::SrsPoint> points;  // at least one, in the order of their frequencies
  const char* response;                    // its name for people
  double zeta;                             // damping ratio
  double factor;                           // from the points to the unit
  std::string unit;                        // of the response; empty if there is none
  bool known;                              // whether motion is in m/s and mm
};

/// "Shock response spectrum" with its damping.
std::string SpectrumTitle(const Spectrum& spectrum);

enum class Axes {
  Plain,
  FourWay,  ///< of displacement and acceleration too, through a spectrum of pseudo velocity
};

/// Draws maximax, primary and residual over the natural frequency.
/// Ends the command where gnuplot is missing or does not succeed.
/// @param[in] title  a first line, above that of the spectrum itself; empty for no lines
void PlotSpectrum(const Spectrum& spectrum, const std::string& title, Axes axes, PlotFormat format,
                  const std::string& file);

}  // namespace qarv::command
