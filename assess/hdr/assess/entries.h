// A list of results: what is reported, as text and as JSON.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "common/int_types.h"

namespace qarv::assess {

using Value = std::variant<double, common::uint64, std::string, std::vector<std::string>>;

/// One result.
struct Entry {
  std::string key;    // in JSON
  std::string label;  // for people
  Value value;
  std::string unit;
};
using Entries = std::vector<Entry>;

/// Moves results to the end of others.  GCC 12 destroys what is not there where the copy of a Value
/// finds no memory: what has to survive that moves its results.
void Append(Entries&& more, Entries* entries);

/// The value alone, in the shortest digits that read back as the same: what is 0 or no number
/// without a sign.
std::string BareText(const Entry& entry);

/// A value with its unit, for people.
std::string ValueText(const Entry& entry);

/// One line per result.
std::string AsText(const Entries& entries);

/// An object with {"value", "unit"} under each key.
std::string AsJson(const Entries& entries);

}  // namespace qarv::assess
