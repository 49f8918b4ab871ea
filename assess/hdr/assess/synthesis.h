// What is said of a synthesis: its definition, its figures, and why it is not what was asked for.
#pragma once

#include <string>
#include <vector>

#include "assess/entries.h"
#include "assess/requirement.h"
#include "definition/definition.h"
#include "synthesis/comparison.h"
#include "synthesis/synthesize.h"

namespace qarv::assess {

/// Settings for a requirement: what it says of the record and the machine.
synthesis::SrsSettings SettingsFor(const Requirement& requirement);

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
