// What is known of every field of a definition, from the one list of fields: for whoever documents,
// completes or edits definitions.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace qarv::definition {

/// What stands behind a key.
enum class ValueKind {
  Number,       // a double; what is no number is a string: "nan", "inf", "-inf"
  Count,        // a whole number from 0 on
  Flag,         // true or false
  Text,         // a string
  Enumeration,  // one of `names`
  Unit,         // "m/s^2", "g", ...
  Numbers,      // a list of numbers
  Set,          // an object with the fields of `set`
  List,         // a list of such objects
  Samples,      // a list of numbers, or the name of the file that has them
};

/// The values that make sense; others may be accepted and warned of.
struct Range {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  bool open = false;  // `low` itself is outside
};

/// The enumerators of an enumeration by name.  A value without a name travels as an integer.
using EnumNames = std::vector<std::pair<std::int32_t, const char*>>;

/// One field of a set.
struct FieldInfo {
  std::string key;
  ValueKind kind = ValueKind::Number;
  bool required = false;
  std::string unit;      // "s", "Hz", "ratio to the peak", ...; empty for what has none
  std::string sentence;  // what it is, without a full stop
  Range range{};
  EnumNames names{};     // of an enumeration
  std::string set{};     // whose fields a Set or List has
  std::string standard;  // the default, as JSON; empty where there is none
  std::string initial;   // what a new set has, as JSON, also of a field that has to be given
};

/// A set of fields.
struct SetInfo {
  std::string key;    // of its object in a definition; empty for the settings of the definition
  std::string title;  // what it is, for people
  bool family;        // whether it is a waveform family, of which a definition has exactly one
  std::vector<FieldInfo> fields;
};

/// Every set: the settings, the families, and the sets within them.
const std::vector<SetInfo>& AllSets();

/// A JSON Schema (draft 2020-12) of a definition, by which editors complete and check it.
std::string SchemaText();

}  // namespace qarv::definition
