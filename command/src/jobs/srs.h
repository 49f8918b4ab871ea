// qarv-wave srs: the shock response spectrum of a waveform.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assess/spectrum.h"
#include "command_error.h"
#include "files/input_wave.h"
#include "jobs/steps.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

struct SrsOptions {
  std::vector<std::string> inputs;  // one, unless their envelope is asked for
  bool envelope = false;
  MeasuredChoice choice;  // of measured samples
  StepOptions steps;
  assess::SpectrumSettings settings;  // but for its q
  std::string q;                      // quality factors, separated by commas; empty: the usual one
  bool tripartite = false;      // pseudo velocity on axes of displacement and acceleration too
  bool noUpsample = false;      // straight lines between the samples as they are
  std::string requirement;      // required spectrum (.json); empty for none
  std::string csv, json, plot;  // files to write; empty for none
};

/// The spectrum of a definition as nobody has asked for it in particular.
/// @return nothing where a sample is no number
std::optional<assess::Spectrum> SpectrumOf(const wave_def::CWaveDef& def, const std::string& name);

/// Calculates the spectrum for each quality factor, writes the files that are asked for, and prints
/// a short summary; with a requirement, on its lines and with the verdict.  Of several records that
/// is what their spectra have in common.
/// @return kRefused where the spectrum is not what is required
ExitCode Srs(const SrsOptions& options);

}  // namespace qarv::command
