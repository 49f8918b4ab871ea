// Shock response spectra as pictures.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "assess/ensemble.h"
#include "assess/spectrum.h"
#include "pictures/gnuplot.h"
#include "synthesis/requirement.h"

namespace qarv::command {

/// "Shock response spectrum" with its damping.
std::string SpectrumTitle(const assess::Spectrum& spectrum);

enum class Axes {
  Plain,
  FourWay,  ///< of displacement and acceleration too, through a spectrum of pseudo velocity
};

/// Responses over frequency.
struct SpectrumCurve {
  std::string title;                          // empty for none
  std::string style;                          // of the line, as gnuplot has it
  std::vector<std::array<double, 2>> points;  // frequency [Hz], response; only above 0 is drawn
  bool setsRange = true;                      // of the responses' axis
};

struct SpectrumPicture {
  std::string title;     // a first line, above that of the spectrum itself; empty for no lines
  std::string subtitle;  // the line of the spectrum itself
  std::string label;     // of the responses' axis
  Axes axes;
  bool known;                         // whether motion is in m/s and mm
  std::vector<SpectrumCurve> curves;  // one at least; its frequencies are those of the axis
};

/// Maximax, primary and residual of one spectrum.
SpectrumPicture PictureOf(const assess::Spectrum& spectrum, const std::string& title, Axes axes);

/// The maximax of each spectrum of a waveform, told apart by its quality factor.
SpectrumPicture PictureOf(const std::vector<assess::Spectrum>& spectra, const std::string& title,
                          Axes axes);

/// Of one ensemble its records' maximax, lightly, below envelope, mean and P95/50; of several, for
/// a quality factor each, their envelopes.
SpectrumPicture PictureOf(const std::vector<assess::Ensemble>& ensembles, const std::string& title,
                          Axes axes);

/// Adds what is required, with its tolerance.
void AddRequirement(const synthesis::SrsRequirement& requirement, SpectrumPicture* picture);

/// Ends the command where gnuplot is missing or does not succeed.
void PlotCurves(const SpectrumPicture& picture, PlotFormat format, const std::string& file);

/// Draws maximax, primary and residual over the natural frequency.
/// Ends the command where gnuplot is missing or does not succeed.
/// @param[in] title  a first line, above that of the spectrum itself; empty for no lines
void PlotSpectrum(const assess::Spectrum& spectrum, const std::string& title, Axes axes,
                  PlotFormat format, const std::string& file);

}  // namespace qarv::command
