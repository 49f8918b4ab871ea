// What has been found of a shock: its spectra, as text, as CSV and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "assess/entries.h"
#include "assess/spectrum.h"

namespace qarv::command {

/// A quality factor as names and texts have it.
std::string QText(double zeta);

/// A number, or as a text what is none in JSON.
nlohmann::ordered_json NumberJson(double v);

/// The spectra of one waveform on the same lines, and what is said of it.
struct SpectraRun {
  std::vector<assess::Spectrum> spectra;  // one for each damping ratio; one at least
  int upsampling = 1;                     // samples for one of the waveform
  std::vector<std::string> remarks;       // choices, conversions and steps before, a line each
  std::vector<std::string> warnings;
  assess::Entries verdict;  // against a requirement; empty without
};

/// For people: of one spectrum what it is and its largest response, of several a table.
std::string TextOf(const SpectraRun& run);

/// A line for each frequency: the responses, of several spectra one after the other.
std::string CsvOf(const SpectraRun& run);

/// The lists of the responses, under each spectrum's quality factor and damping ratio.
std::string JsonOf(const SpectraRun& run);

}  // namespace qarv::command
