// qarv-wave srs: the shock response spectrum of a waveform.
#pragma once

#include <optional>
#include <string>

#include "input_wave.h"
#include "spectrum_plot.h"

namespace qarv::command {

struct SrsOptions {
  std::string input;
  std::optional<double> fsamp;  // [Hz] of samples without times
  std::string response = "acceleration";
  double q = 10.0;                 // quality factor, 1 / (2 damping)
  std::optional<double> damping;   // ratio; in the place of q
  std::optional<double> from, to;  // [Hz]
  double perOctave = 12.0;
  std::optional<int> points;  // in the place of perOctave
  bool tripartite = false;    // pseudo velocity on axes of displacement and acceleration too
  std::string csv, plot;      // files to write; empty for none
};

/// The names of the responses, for SrsOptions::response.
std::string ResponseNames(const std::string& separator);

/// The spectrum of a waveform, which stands for options.input.
/// Ends the command where there is none.
Spectrum SpectrumOf(const SrsOptions& options, const InputWave& wave);

/// The spectrum of a definition as nobody has asked for it in particular.
/// @param[in] name  of the definition, for messages
/// @return nothing where a sample is no number
std::optional<Spectrum> SpectrumOf(const wave_def::CWaveDef& def, const std::string& name);

/// Calculates the spectrum, writes the files that are asked for, and prints a short summary.
void Srs(const SrsOptions& options);

}  // namespace qarv::command
