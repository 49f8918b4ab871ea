// What is said of a synthesis: its definition, its figures, and why it is not what was asked for.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "assess/entries.h"
#include "assess/machine.h"
#include "assess/requirement.h"
#include "definition/definition.h"
#include "synthesis/comparison.h"
#include "synthesis/synthesize.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// How a waveform is sought, by the names of the command's options.
struct SynthesisRequest {
  std::string shape = "shock";     // one of SynthesisShapes
  std::string method = "wavelet";  // one of SynthesisMethods
  std::string minimize;            // one of SynthesisAims; empty for the best match
  double within = 0.0;             // [dB] of the required spectrum, with minimize; 0: its tolerance
  common::uint64 seed = 1;
  bool quick = false;  // a first look
};

/// The names, the usual one first where there is one.
std::string SynthesisShapes(const std::string& separator);
std::string SynthesisMethods(const std::string& separator);
std::string SynthesisAims(const std::string& separator);

/// Settings for a requirement: what it says of the record and the machine, and what is asked for.
/// @param[in] machine  if there is one: of its limits and the requirement's the tighter ones hold
/// @throws Error, with the name of the setting, or "machine"
synthesis::SrsSettings SettingsFor(const Requirement& requirement,
                                   const SynthesisRequest& request = {},
                                   const std::optional<Machine>& machine = {});

/// What a synthesis has come to.
struct Synthesis {
  synthesis::SrsSettings settings;
  synthesis::SrsResult result;
  std::string failure;  // why it is not what was asked for; empty where it is
  // Of the best waveform found; nothing where the synthesis was cancelled.
  definition::Definition definition;
  wave_def::CWaveDef wave;
  std::vector<std::string> warnings;  // the failure comes first
  Entries entries;                    // the figures, and those beside the machine
  bool IsCancelled() const { return result.failure == synthesis::SrsFailure::Cancelled; }
};

/// Finds a waveform for a requirement: the one way of all fronts.
/// @param[in] progress  is told the share that is done, many times a second; false ends the run
/// @throws Error where a setting is wrong, or by what the requirement asks there can be no waveform
Synthesis Synthesize(const Requirement& requirement, const SynthesisRequest& request,
                     const std::optional<Machine>& machine,
                     const std::function<bool(double share)>& progress = {});

/// The figures with the list of warnings, as JSON; both are moved from.
std::string SynthesisJson(Synthesis&& synthesis);

/// The result as a definition, in the requirement's unit.
definition::Definition DefinitionOf(const Requirement& requirement,
                                    const synthesis::SrsResult& result);

/// The figures of a result, with their units.
Entries SynthesisEntries(const Requirement& requirement, const synthesis::SrsSettings& settings,
                         const synthesis::SrsResult& result);

/// The figures of a comparison, with its verdict.
Entries VerdictEntries(const Requirement& requirement, const synthesis::SrsComparison& comparison);

/// Why a waveform is not what was asked for, with what would work; empty where it is.
std::string FailureText(const Requirement& requirement, const synthesis::SrsSettings& settings,
                        const synthesis::SrsResult& result);

/// What is odd about a waveform that meets its requirement.
std::vector<std::string> SynthesisWarnings(const Requirement& requirement,
                                           const synthesis::SrsSettings& settings,
                                           const synthesis::SrsResult& result);

}  // namespace qarv::assess
