// The steps that a record goes through before a verdict or a spectrum, as they are given.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assess/conditioning.h"
#include "files/input_wave.h"

namespace qarv::command {

/// The steps before a verdict or a spectrum, as they are given.
struct StepOptions {
  std::string offset;  // "quiet" or FROM,TO [s]; empty for none
  std::string trim;    // FROM,TO [s]; empty for none
  bool invert = false;
  std::optional<double> highPass, lowPass;  // [Hz]
  std::string filter = "butterworth";       // or "bessel"
  int order = 4;
  std::optional<double> cfc;
};

/// What the options ask for.  Ends the command where one of them is none.
assess::Conditioning ConditioningOf(const StepOptions& options);

/// A copy of a wave.
assess::OwnedRecord OwnedRecordOf(const InputWave& wave);

/// Takes the steps on a wave, and adds what was done to its remarks.
/// @param[in] file  that it comes from
/// @return whether there were any
/// Ends the command where a step cannot be taken.
bool TakeSteps(const assess::Conditioning& steps, const std::string& file, InputWave* wave);

/// Numbers separated by commas.  Ends the command where one of them is none.
std::vector<double> NumbersOf(const std::string& text, const char* option);

}  // namespace qarv::command
