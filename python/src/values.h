// Values of fields between Python and the tables of fields.
#pragma once

#include <pybind11/pybind11.h>

#include <functional>
#include <map>
#include <string>

#include "field_tables.h"
#include "json_fields.h"

namespace qarv::python {

/// The Python class of a set of fields, and the way to its JSON and back.
struct SetClass {
  pybind11::object type;
  std::function<definition::Json(pybind11::handle)> toJson;
  std::function<pybind11::object(const definition::Json&)> fromJson;
};

/// What the fields of the sets that are bound so far refer to.
struct Classes {
  std::map<std::string, SetClass> sets;                // by the key of the set
  std::map<std::string, pybind11::object> codes;       // enumerations by their Python names
  std::map<std::string, definition::EnumNames> names;  // and what they were made of
};

/// How a field's value goes to Python and comes back.
struct Value {
  definition::FieldInfo info;
  std::string name;       // in Python
  pybind11::object code;  // the enumeration; none if there is none
  SetClass set;           // of a set or a list of them

  /// The JSON that a field is read from.
  /// @throws TypeError, ValueError, with the name, if the value is not of the field's kind
  definition::Json ToJson(pybind11::handle value) const;
  /// The Python value of a field that was written.
  pybind11::object FromJson(const definition::Json& json) const;
  /// What stands behind the field, for the stubs: "number", "count", "flag", "text", "code",
  /// "unit", "numbers", "set", "list" or "samples".
  std::string KindText() const;
};

/// The value of a field, with the enumeration that it needs.
/// @param[in]     owner    Python name of the set
/// @param[in,out] classes  gets the enumeration if the field is the first one with it
Value MakeValue(const definition::FieldInfo& info, const std::string& owner, Classes& classes);

/// A value as source text: what Python prints, with enumerators by name and what is no number as
/// float('nan').
std::string SourceOf(pybind11::handle value);

}  // namespace qarv::python
