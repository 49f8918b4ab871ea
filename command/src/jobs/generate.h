// qarv-wave generate: a definition becomes a waveform with its bands.
#pragma once

#include <string>

namespace qarv::command {

struct GenerateOptions {
  std::string definition;
  std::string csv, npy, wav, uff, plot, record;  // files to write; empty for none
};

/// Generates the waveform of a definition file, writes the files that are asked for, and prints a
/// short summary.
void Generate(const GenerateOptions& options);

}  // namespace qarv::command
