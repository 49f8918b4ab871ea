// qarv-wave srs: the shock response spectrum of a waveform.
#pragma once

#include <optional>
#include <string>

#include "input_wave.h"
#include "output_files.h"

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

/// Calculates the spectrum of a waveform, which stands for options.input, and writes the files that
/// are asked for.
/// @return a short summary
std::string WriteSpectrum(const SrsOptions& options, const InputWave& wave, OutputFiles* files);

/// Calculates the spectrum, writes the files that are asked for, and prints a short summary.
void Srs(const SrsOptions& options);

}  // namespace qarv::command
