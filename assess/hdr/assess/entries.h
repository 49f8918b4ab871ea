// A list of results: what is reported, as text and as JSON.
#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "common/int_types.h"

namespace qarv::assess {

using AnyValue = std::variant<double, common::uint64, std::string, std::vector<std::string>>;

/// A number, a text or a list of texts.  Its copy is first made and then moved in: where the copy
/// of a std::variant finds no memory, GCC 12 destroys what is not there.
class Value : public AnyValue {
 public:
  using AnyValue::AnyValue;
  Value(const Value& other) : AnyValue(0.0) {
    std::visit(
        [this](const auto& v) {
          auto copy = v;
          AnyValue::operator=(std::move(copy));
        },
        static_cast<const AnyValue&>(other));
  }
  Value(Value&&) noexcept = default;
  Value& operator=(const Value& other) {
    *this = Value(other);
    return *this;
  }
  Value& operator=(Value&&) noexcept = default;
  ~Value() = default;
};

/// One result.
struct Entry {
  std::string key;    // in JSON
  std::string label;  // for people
  Value value;
  std::string unit;
};
using Entries = std::vector<Entry>;

/// Moves results to the end of others.
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
