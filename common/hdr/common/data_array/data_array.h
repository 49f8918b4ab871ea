// DataArray: what the sample array and its integer sibling have in common, which is everything.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/int_types.h"

namespace qarv::common {

class CSerialData;

/// Gives elements that nothing is said about no value: the memory of a large array is not written
/// twice.
template <class T>
struct UnsetAllocator : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = UnsetAllocator<U>;
  };
  UnsetAllocator() = default;
  template <class U>
  UnsetAllocator(const UnsetAllocator<U>& /*other*/) {}
  template <class U>
  void construct(U* p) {
    ::new (static_cast<void*>(p)) U;
  }
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    std::construct_at(p, std::forward<Args>(args)...);
  }
};

/// An owning array of numbers in one contiguous piece of memory.
///
/// A value: a copy copies the elements (into the target's storage where that is large enough), a
/// move takes the storage over and leaves the source empty, assignment to itself does nothing.
///
/// @code
/// CDataArrayFloatT<double> wave{1.0, -3.0, 2.0};
/// const double peak = wave.GetAbsMax(0, 0);  // 3
/// wave.Resize(4);
/// const double added = wave[3];  // 0
/// @endcode
///
/// Failing range checks of `GetAbsMax` and `RingCopy` print one line each on the standard error
/// stream, "[Error] " and the place of the check, with a Japanese message in the Shift-JIS code
/// page. The arrays throw the standard errors only: out of range, length, allocation.
template <class T>
class DataArray {
  static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);

 public:
  DataArray() = default;
  /// n zeros.  Throws as `Resize`.
  explicit DataArray(uint64 n) { Resize(n); }
  /// These values.
  DataArray(std::initializer_list<T> values) : data_(values) {}
  DataArray(const DataArray&) = default;
  DataArray(DataArray&& other) noexcept : data_(std::exchange(other.data_, {})) {}
  DataArray& operator=(const DataArray&) = default;
  DataArray& operator=(DataArray&& other) noexcept {
    if (this != &other) data_ = std::exchange(other.data_, {});
    return *this;
  }
  virtual ~DataArray() = default;

  /// Same size and every pair of elements equal; a NaN is equal to nothing, not even in the array
  /// itself.
  bool operator==(const DataArray& other) const { return data_ == other.data_; }

  /// The number of elements.
  uint64 GetSize() const { return data_.size(); }
  /// The elements, GetSize() of them, until the size changes.
  T* GetData() { return data_.data(); }
  const T* GetData() const { return data_.data(); }
  /// Of the first element, and behind the last.
  T* begin() { return data_.data(); }
  T* end() { return data_.data() + data_.size(); }
  const T* begin() const { return data_.data(); }
  const T* end() const { return data_.data() + data_.size(); }

  /// Element i.  Throws std::out_of_range "invalid vector<T> subscript" unless i < GetSize().
  T& operator[](uint64 i) { return data_[Checked(i)]; }
  const T& operator[](uint64 i) const { return data_[Checked(i)]; }

  /// Empties the array and keeps its storage.
  void Clear() { data_.clear(); }

  /// Sets the size; new elements are 0.  Throws std::length_error "vector<T> too long" where n
  /// elements are more than 64 bits can address, std::bad_alloc where memory does not suffice.
  void Resize(uint64 n);

  /// Sets the size; new elements have no value until they are written.  Throws as `Resize`.
  void ResizeToWrite(uint64 n);

  /// Makes room for n elements, so that growing up to n does not fail.  Throws as `Resize`, with
  /// nothing changed.
  void Reserve(uint64 n);

  /// Reduces the storage to the size.
  void Shrink() { data_.shrink_to_fit(); }

  /// Empties the array, makes it `count` zeros, shrinks it if `shrink` is set, and copies `count`
  /// values from `source` unless that is null.  Throws as `Resize`.
  /// @param[in] source  count values; not inside this array, whose elements are gone by then
  void SetData(uint64 count, const T* source, bool shrink);

  /// The largest absolute value of the elements start .. start + count - 1, or up to the last one
  /// if count is 0.  A NaN is passed over.
  /// @return 0, and a line on the error stream, if the range is not inside the array; an empty
  ///         array has no range that is
  T GetAbsMax(uint64 start, uint64 count) const;

  /// Copies `count` elements cyclically: from position srcPos of `src` to position dstPos of `dst`,
  /// either one starting over at its array's first element when it reaches the end.  Positions
  /// beyond an array count from its beginning again.
  /// @return false, with nothing copied and a line on the error stream, if one of the arrays has
  ///         fewer than `count` elements; a count of 0 is true for any arrays
  static bool RingCopy(DataArray& dst, const DataArray& src, uint64 srcPos, uint64 dstPos,
                       uint64 count);

  /// Writes or reads the array's record: a version word, the number of elements, their bytes.
  /// @return false if the stream is null (nothing touched), at the first item that cannot be
  ///         written, or at the first that cannot be read (the array is empty then)
  bool Serialize(CSerialData* stream);

 private:
  std::size_t Checked(uint64 i) const;
  void CheckLength(uint64 n) const;
  bool ReadRecord(CSerialData& stream);

  std::vector<T, UnsetAllocator<T>> data_;
};

}  // namespace qarv::common

#include "common/data_array/data_array_float_t_private.h"  // IWYU pragma: export
