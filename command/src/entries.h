// A list of results: what the command reports, as text and as JSON.
#pragma once

#include <string>
#include <vector>

#include "json_fields.h"

namespace qarv::command {

/// One result.
struct Entry {
  std::string key;    // in JSON
  std::string label;  // for people
  Json value;         // number or text
  std::string unit;
};
using Entries = std::vector<Entry>;

/// The value as it is shown: what is 0 or no number without a sign.
Json ShownValue(const Entry& entry);

/// A value with its unit, for people.
std::string ValueText(const Entry& entry);

/// One line per result.
std::string AsText(const Entries& entries);

/// An object with {"value", "unit"} under each key.
std::string AsJson(const Entries& entries);

}  // namespace qarv::command
