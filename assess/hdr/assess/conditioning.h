// What is done to a record before it is judged, because somebody asked for it.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "analysis/filter.h"
#include "assess/error.h"

namespace qarv::assess {

/// Steps in the order in which they are taken; none of them without being asked for.
struct Conditioning {
  std::optional<std::pair<double, double>> trim{};   // [s] what is kept, as the record counts
  bool offset = false;                               // the mean is taken off
  std::optional<std::pair<double, double>> quiet{};  // [s] of this; without, of the quiet part
  bool invert = false;
  std::optional<double> highPass{}, lowPass{};  // [Hz]
  analysis::FilterShape shape = analysis::FilterShape::Butterworth;
  int order = 4;                // of each of the two passes
  std::optional<double> cfc{};  // channel frequency class
};

/// A record that owns its samples.
struct OwnedRecord {
  std::vector<double> samples;
  double fsamp = 0.0;     // [Hz]
  std::string unit = {};  // empty if it is not known
  double begin = 0.0;     // [s] time of the first sample
};

/// Takes the steps.
/// @return a line for each step that was taken, with its numbers
/// @throws Error where a stretch is not within the record, or a filter is none at its sampling
///         frequency
std::vector<std::string> Condition(const Conditioning& steps, OwnedRecord* record);

}  // namespace qarv::assess
