// How a field becomes a stream item and back, and the record of a FieldSet made of its fields.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <list>
#include <tuple>
#include <type_traits>
#include <utility>

#include "common/int_types.h"
#include "common/record/field_set.h"
#include "common/serial/serial_data.h"

namespace qarv::common {

/// The version word of every record: written as 1, accepted whatever its value.
inline constexpr unsigned int kRecordVersion = 1;

/// What brings its own record along: a parameter set, an array, a unit.
template <class T>
concept NestedRecord = requires(T& t, CSerialData* s) {
  { t.Serialize(s) } -> std::same_as<bool>;
};

/// One field, one stream item.  An enumeration travels as uint64, widened with its sign.
template <class T>
bool WriteField(CSerialData& s, T& v) {
  if constexpr (std::is_enum_v<T>) {
    return s.Write(static_cast<uint64>(static_cast<int64>(v)));
  } else if constexpr (NestedRecord<T>) {
    return v.Serialize(&s);
  } else {
    return s.Write(v);
  }
}

template <class T>
bool ReadField(CSerialData& s, T& v) {
  if constexpr (std::is_enum_v<T>) {
    // The width is fixed, so that every 32-bit value that comes back is a value of the type.
    static_assert(std::same_as<std::underlying_type_t<T>, std::int32_t>);
    uint64 wide = 0;
    if (!s.Read(&wide)) return false;
    v = static_cast<T>(static_cast<std::int32_t>(wide));  // the low 32 bits
    return true;
  } else if constexpr (NestedRecord<T>) {
    return v.Serialize(&s);
  } else {
    return s.Read(&v);
  }
}

/// A list of records: the count as uint64, then each element's own record.
template <NestedRecord E>
bool WriteField(CSerialData& s, std::list<E>& list) {
  bool ok = s.Write(static_cast<uint64>(list.size()));
  for (E& element : list) ok = ok && element.Serialize(&s);
  return ok;
}

template <NestedRecord E>
bool ReadField(CSerialData& s, std::list<E>& list) {
  uint64 count = 0;
  if (!s.Read(&count)) return false;
  for (; count != 0; --count) {  // no memory is set aside for a count that nobody has checked
    if (!list.emplace_back().Serialize(&s)) return false;
  }
  return true;
}

/// Stands in for a field of any type while members are counted.
struct AnyField {
  template <class T>
  operator T() const;
};

/// The number of members of the aggregate F: the most initialisers that it takes.
template <class F, class... Given>
consteval std::size_t CountMembers() {
  if constexpr (requires { F{Given{}..., AnyField{}}; }) {
    return CountMembers<F, Given..., AnyField>();
  } else {
    return sizeof...(Given);
  }
}

template <class F>
bool FieldSet<F>::Serialize(CSerialData* stream) {
  if (stream == nullptr) return false;
  if (!stream->IsFinalize()) return WriteRecord(*stream, fields_);
  Clear();
  F fresh{};  // taken over when complete: neither a failure nor an exception leaves a half-read set
  if (!ReadRecord(*stream, fresh)) return false;
  fields_ = std::move(fresh);
  return true;
}

template <class F>
bool FieldSet<F>::WriteRecord(CSerialData& stream, F& fields) {
  static_assert(std::tuple_size_v<decltype(F::Record(fields))> == CountMembers<F>(),
                "Record must tie every field");
  return stream.Write(kRecordVersion) &&
         std::apply([&](auto&... field) { return (WriteField(stream, field) && ...); },
                    F::Record(fields));
}

template <class F>
bool FieldSet<F>::ReadRecord(CSerialData& stream, F& fields) {
  unsigned int version = 0;
  return stream.Read(&version) &&
         std::apply([&](auto&... field) { return (ReadField(stream, field) && ...); },
                    F::Record(fields));
}

}  // namespace qarv::common
