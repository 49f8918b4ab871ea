// Parameter sets as JSON: a table of fields per set is the one place where its keys stand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "command_error.h"
#include "common/int_types.h"
#include "common/unit/unit_ctrl.h"

namespace qarv::command {

using Json = nlohmann::ordered_json;

/// Where in which file something stands, for messages.
class Place {
 public:
  explicit Place(std::string file) : file_(std::move(file)) {}
  Place Key(const std::string& key) const;
  Place Element(std::size_t i) const;
  const std::string& GetFile() const { return file_; }
  /// Ends the command: "FILE: KEY: what".
  [[noreturn]] void Fail(const std::string& what) const;

 private:
  std::string file_;
  std::string key_;
};

// ---- Values ------------------------------------------------------------------------------------

/// The enumerators of an enumeration by name.  A value without a name travels as an integer.
using EnumNames = std::vector<std::pair<std::int32_t, const char*>>;

void ReadValue(const Json& json, const Place& at, double* v);
void ReadValue(const Json& json, const Place& at, bool* v);
void ReadValue(const Json& json, const Place& at, unsigned int* v);
void ReadValue(const Json& json, const Place& at, common::uint64* v);
void ReadValue(const Json& json, const Place& at, std::string* v);
void ReadValue(const Json& json, const Place& at, common::CUnitCtrl* v);
std::int32_t ReadEnum(const Json& json, const Place& at, const EnumNames& names);

/// A number; what is none becomes the string of NumberText.
Json WriteValue(double v);
/// A string; bytes that are not UTF-8 become {"Escaped": "..."} with percent escapes.
Json WriteValue(const std::string& v);
/// The unit's text where that says all, else its codes.
Json WriteValue(const common::CUnitCtrl& v);
inline Json WriteValue(bool v) { return v; }
inline Json WriteValue(unsigned int v) { return v; }
inline Json WriteValue(common::uint64 v) { return v; }
Json WriteEnum(std::int32_t v, const EnumNames& names);

// ---- Fields ------------------------------------------------------------------------------------

/// One field of a set: its key, whether the set is of no use without it, and how it is read and
/// written.
template <class Set>
struct Field {
  std::string key;
  bool required;
  std::function<void(const Json&, const Place&, Set&)> read;
  std::function<Json(const Set&)>
      write;  // null: the field is at its default and need not be written
};

template <class Set>
using FieldTable = std::vector<Field<Set>>;

enum class Need { Optional, Required };

/// Hands a value to a setter: a member function, or a function (set, value) that returns null or,
/// where another field keeps the value from taking effect, what it needs.
template <class Set, class Setter, class T>
void Apply(Setter setter, Set& target, const T& v, const Place& at) {
  if constexpr (std::is_void_v<std::invoke_result_t<Setter, Set&, T>>) {
    std::invoke(setter, target, v);
  } else if (const char* const needs = std::invoke(setter, target, v)) {
    at.Fail(std::string("has no effect without ") + needs);
  }
}

/// A field with a getter and a setter.
template <class Set, class Get, class Setter>
Field<Set> Value(const char* key, Get (Set::*get)() const, Setter setter,
                 Need need = Need::Optional) {
  return {key, need == Need::Required,
          [setter](const Json& json, const Place& at, Set& target) {
            std::remove_cvref_t<Get> v{};
            ReadValue(json, at, &v);
            Apply(setter, target, v, at);
          },
          [get](const Set& source) { return WriteValue((source.*get)()); }};
}

/// The same for an enumeration.
template <class Set, class E, class Setter>
Field<Set> Enumeration(const char* key, const EnumNames& names, E (Set::*get)() const,
                       Setter setter, Need need = Need::Optional) {
  return {key, need == Need::Required,
          [setter, names](const Json& json, const Place& at, Set& target) {
            Apply(setter, target, static_cast<E>(ReadEnum(json, at, names)), at);
          },
          [get, names](const Set& source) { return WriteEnum((source.*get)(), names); }};
}

/// Reads an object into a set, field by field in the order of the table.  Ends the command at a key
/// that is not in the table and at a required one that is missing.
/// @param[in] besides  a key that is read elsewhere
template <class Set>
void ReadFields(const FieldTable<Set>& table, const Json& json, const Place& at, Set& set,
                std::string_view besides = {}) {
  if (!json.is_object()) at.Fail("is not an object");
  for (const auto& item : json.items()) {
    if (item.key() == besides) continue;
    const auto known = [&](const Field<Set>& field) { return field.key == item.key(); };
    if (std::none_of(table.begin(), table.end(), known)) at.Key(item.key()).Fail("unknown key");
  }
  for (const Field<Set>& field : table) {
    const auto found = json.find(field.key);
    if (found != json.end()) {
      field.read(*found, at.Key(field.key), set);
    } else if (field.required) {
      at.Key(field.key).Fail("missing");
    }
  }
}

/// A set of its own from an object.
template <class Set>
Set ReadSet(const FieldTable<Set>& table, const Json& json, const Place& at) {
  Set set;
  ReadFields(table, json, at, set);
  return set;
}

/// Writes a set as an object, in the order of the table.
template <class Set>
Json WriteFields(const FieldTable<Set>& table, const Set& set) {
  Json json = Json::object();
  for (const Field<Set>& field : table) {
    const Json value = field.write(set);
    if (!value.is_null()) json[field.key] = value;
  }
  return json;
}

/// A list of objects of one kind.
template <class Element>
std::vector<Element> ReadList(const FieldTable<Element>& table, const Json& json, const Place& at) {
  if (!json.is_array()) at.Fail("is not a list");
  std::vector<Element> out(json.size());
  for (std::size_t i = 0; i < out.size(); ++i) ReadFields(table, json[i], at.Element(i), out[i]);
  return out;
}

template <class List, class Element>
Json WriteList(const FieldTable<Element>& table, const List& list) {
  Json json = Json::array();
  for (const Element& element : list) json.push_back(WriteFields(table, element));
  return json;
}

}  // namespace qarv::command
