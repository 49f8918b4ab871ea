// FieldSet: the value operations of a parameter set, derived from the one list of its fields.
#pragma once

#include <type_traits>
#include <utility>

namespace qarv::common {

class CSerialData;

/// The fields of a parameter set, with every value operation that the set needs.
///
/// F is an aggregate that states each field once: name, type, default, in record order, with a
/// defaulted `operator==` and a static `Record` that ties its members in the same order.
///
/// - copy: every field, and a copy that runs out of memory leaves its target with the defaults;
///   move: the same, and the source is left with its defaults;
/// - `==`: true for the same object, otherwise field by field in declaration order: a NaN is equal
///   to nothing, and 0 equals -0;
/// - `Clear`: the member initialisers of F;
/// - `Serialize`: a version word, then the fields of `Record`.  It is defined in
///   common/record/record_codec.h, which the source that uses it includes.
template <class F>
class FieldSet {
  static constexpr bool kNoThrow = std::is_nothrow_default_constructible_v<F> &&
                                   std::is_nothrow_move_constructible_v<F> &&
                                   std::is_nothrow_move_assignable_v<F>;

 public:
  FieldSet() = default;
  /// These fields.
  explicit FieldSet(F fields) : fields_(std::move(fields)) {}
  FieldSet(const FieldSet&) = default;
  FieldSet(FieldSet&& other) noexcept(kNoThrow) : fields_(std::exchange(other.fields_, F{})) {}
  FieldSet& operator=(const FieldSet& other) {
    if (this == &other) return *this;
    Clear();  // what is left where the copy runs out of memory
    fields_ = F(other.fields_);
    return *this;
  }
  FieldSet& operator=(FieldSet&& other) noexcept(kNoThrow) {
    if (this != &other) fields_ = std::exchange(other.fields_, F{});
    return *this;
  }
  ~FieldSet() = default;

  bool operator==(const FieldSet& other) const {
    return this == &other || fields_ == other.fields_;
  }

  /// Every field back to its default.
  void Clear() { fields_ = F{}; }

  /// Writes or reads the record, by the direction of the stream.
  /// @return false if the stream is null (nothing touched), at the first item that cannot be
  ///         written (those before it are in the stream), or at the first that cannot be read
  ///         (cleared)
  bool Serialize(CSerialData* stream);

  /// The fields.
  F* operator->() { return &fields_; }
  const F* operator->() const { return &fields_; }

 private:
  static bool WriteRecord(CSerialData& stream, F& fields);
  static bool ReadRecord(CSerialData& stream, F& fields);

  F fields_;
};

}  // namespace qarv::common
