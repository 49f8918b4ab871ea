// Parameter sets as JSON: a table of fields per set is the one place where its keys stand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/int_types.h"
#include "common/unit/unit_ctrl.h"
#include "definition/fields.h"
#include "json_tree.h"

namespace qarv::definition {

/// Where in a definition something stands, for messages.
class Place {
 public:
  Place Key(const std::string& key) const;
  Place Element(std::size_t i) const;
  /// Ends the reading: throws an Error with the key.
  [[noreturn]] void Fail(const std::string& what) const;

 private:
  std::string key_;
};

// ---- Values ------------------------------------------------------------------------------------

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

/// What people are told of a field.
struct Says {
  const char* unit;
  const char* sentence;
  Range range{};
};
inline constexpr Range kFromZero{.low = 0.0};
inline constexpr Range kPositive{.low = 0.0, .open = true};
inline constexpr Range kAtLeastOne{.low = 1.0};
inline constexpr Range kShare{.low = 0.0, .high = 1.0};

/// One field of a set: what is known of it, and how it is read and written.
template <class Set>
struct Field {
  FieldInfo info;
  std::function<void(const Json&, const Place&, Set&)> read;
  /// null: the field is at its default and need not be written
  std::function<Json(const Set&)> write;
};

template <class Set>
using FieldTable = std::vector<Field<Set>>;

enum class Need { Optional, Required };

inline FieldInfo InfoOf(const char* key, ValueKind kind, Need need, const Says& says) {
  FieldInfo info;
  info.key = key;
  info.kind = kind;
  info.required = need == Need::Required;
  info.unit = says.unit;
  info.sentence = says.sentence;
  info.range = says.range;
  return info;
}

// The kind of a field, by the type of its value.
constexpr ValueKind KindOf(const double* /*of*/) { return ValueKind::Number; }
constexpr ValueKind KindOf(const bool* /*of*/) { return ValueKind::Flag; }
constexpr ValueKind KindOf(const unsigned int* /*of*/) { return ValueKind::Count; }
constexpr ValueKind KindOf(const common::uint64* /*of*/) { return ValueKind::Count; }
constexpr ValueKind KindOf(const std::string* /*of*/) { return ValueKind::Text; }
constexpr ValueKind KindOf(const common::CUnitCtrl* /*of*/) { return ValueKind::Unit; }

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
Field<Set> Value(const char* key, Get (Set::*get)() const, Setter setter, const Says& says,
                 Need need = Need::Optional) {
  using T = std::remove_cvref_t<Get>;
  return {InfoOf(key, KindOf(static_cast<const T*>(nullptr)), need, says),
          [setter](const Json& json, const Place& at, Set& target) {
            T v{};
            ReadValue(json, at, &v);
            Apply(setter, target, v, at);
          },
          [get](const Set& source) { return WriteValue((source.*get)()); }};
}

/// The same for an enumeration.
template <class Set, class E, class Setter>
Field<Set> Enumeration(const char* key, const EnumNames& names, E (Set::*get)() const,
                       Setter setter, const Says& says, Need need = Need::Optional) {
  FieldInfo info = InfoOf(key, ValueKind::Enumeration, need, says);
  info.names = names;
  return {std::move(info),
          [setter, names](const Json& json, const Place& at, Set& target) {
            Apply(setter, target, static_cast<E>(ReadEnum(json, at, names)), at);
          },
          [get, names](const Set& source) { return WriteEnum((source.*get)(), names); }};
}

/// A field with a reader and a writer of its own.
/// @param[in] set  of the objects that it holds; empty for none
template <class Set, class Read, class Write>
Field<Set> Special(const char* key, ValueKind kind, const char* set, Read read, Write write,
                   const Says& says, Need need = Need::Optional) {
  FieldInfo info = InfoOf(key, kind, need, says);
  info.set = set;
  return {std::move(info), read, write};
}

/// What is known of a table's fields, with their defaults.
template <class Set>
SetInfo Describe(const char* key, const char* title, bool family, const FieldTable<Set>& table) {
  SetInfo out{key, title, family, {}};
  for (const Field<Set>& field : table) {
    FieldInfo& info = out.fields.emplace_back(field.info);
    const Json initial = field.write(Set());
    if (!initial.is_null()) info.initial = initial.dump();
    if (!info.required) info.standard = info.initial;
  }
  return out;
}

/// Reads an object into a set, field by field in the order of the table.  Fails at a key that is
/// not in the table and at a required one that is missing.
/// @param[in] besides  keys that are read elsewhere
template <class Set>
void ReadFields(const FieldTable<Set>& table, const Json& json, const Place& at, Set& set,
                std::initializer_list<std::string_view> besides = {}) {
  if (!json.is_object()) at.Fail("is not an object");
  for (const auto& item : json.items()) {
    if (std::find(besides.begin(), besides.end(), item.key()) != besides.end()) continue;
    const auto known = [&](const Field<Set>& field) { return field.info.key == item.key(); };
    if (std::none_of(table.begin(), table.end(), known)) at.Key(item.key()).Fail("unknown key");
  }
  for (const Field<Set>& field : table) {
    const auto found = json.find(field.info.key);
    if (found != json.end()) {
      field.read(*found, at.Key(field.info.key), set);
    } else if (field.info.required) {
      at.Key(field.info.key).Fail("missing");
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
  JsonTree json(Json::object());
  for (const Field<Set>& field : table) {
    JsonTree value(field.write(set));
    if (value.Root().is_null()) continue;
    Json& member = Member(json.Root(), field.info.key);
    member = value.Take();
  }
  return json.Take();
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
  JsonTree json(Json::array());
  for (const Element& element : list) {
    JsonTree written(WriteFields(table, element));
    json.Root().push_back(Json());
    json.Root().back() = written.Take();
  }
  return json.Take();
}

}  // namespace qarv::definition
