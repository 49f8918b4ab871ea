// The spectrum of a waveform that was read: its unit, its samples per cycle, its lines.
#pragma once

#include <string>

#include "assess/requirement.h"
#include "assess/spectrum.h"
#include "files/input_wave.h"
#include "synthesis/comparison.h"

namespace qarv::command {

// Each of these ends the command where it cannot do its work.  `input` is what the waveform was
// read from.

/// Brings the waveform into a unit of acceleration; one without a unit is taken to have it.
/// @param[in] whose  unit it is, for the message
void ConvertTo(const std::string& unit, const char* whose, const std::string& input,
               InputWave* wave);

/// Brings the waveform to so many samples that straight lines between them stand for it up to a
/// natural frequency [Hz], and adds a remark.  A definition's too: what comes out of a converter is
/// band-limited between the samples, as a record of it is.
/// @return samples for one of the waveform
int Upsample(double highest, const std::string& input, InputWave* wave);

/// The settings of a requirement's lines.
assess::SpectrumSettings RequiredSettings(const assess::Requirement& requirement);

/// The spectrum; of a long one a terminal shows how far it has come.
assess::Spectrum SpectrumOf(const std::string& input, const InputWave& wave,
                            const assess::SpectrumSettings& settings);

/// The spectrum beside the required one.
/// @param[in] wave  in the requirement's unit
synthesis::SrsComparison Compare(const assess::Requirement& requirement, const InputWave& wave,
                                 const std::string& input);

}  // namespace qarv::command
