// The inline operations of the arrays.  This file's path and the line of the failing check stand in
// the lines that the range checks print, so the checks live here and nowhere else.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

#include "common/data_array/array_report.h"
#include "common/data_array/data_array.h"
#include "common/serial/serial_data.h"

namespace qarv::common {

namespace array_check {

// The header's path below the include root: the same text wherever the header was built.
inline constexpr char kPath[] = "common/data_array/data_array_float_t_private.h";

// Messages in Shift-JIS.
inline constexpr char kBadIndex[] =  // インデックス不正
    "\x83\x43\x83\x93\x83\x66\x83\x62\x83\x4e\x83\x58\x95\x73\x90\xb3";
inline constexpr char kEndOver[] =  // 終端インデックスオーバー
    "\x8f\x49\x92\x5b\x83\x43\x83\x93\x83\x66\x83\x62\x83\x4e\x83\x58\x83\x49\x81\x5b\x83\x6f\x81"
    "\x5b";
inline constexpr char kSrcShort[] =  // SRCの要素数不足
    "\x53\x52\x43\x82\xcc\x97\x76\x91\x66\x90\x94\x95\x73\x91\xab";
inline constexpr char kDstShort[] =  // DSTの要素数不足
    "\x44\x53\x54\x82\xcc\x97\x76\x91\x66\x90\x94\x95\x73\x91\xab";

/// The magnitude; of a NaN, the NaN; of the lowest integer, which has none, the largest one.
template <class T>
T Magnitude(T x) {
  if constexpr (std::is_unsigned_v<T>) {
    return x;
  } else if constexpr (std::is_integral_v<T>) {
    if (x == std::numeric_limits<T>::min()) return std::numeric_limits<T>::max();
    return static_cast<T>(x < 0 ? -x : x);
  } else {
    return std::fabs(x);
  }
}

/// The largest magnitude of n elements, at least 0.  Running maxima side by side, because one alone
/// waits for itself at every element; of sixteen and fewer GCC makes single values and no lanes.
template <class T>
T LargestMagnitude(const T* x, uint64 n) {
  const auto raise = [](T& m, T v) { m = v > m ? v : m; };  // false for a NaN, which is passed over
  std::array<T, 32> lanes{};
  uint64 i = 0;
  for (; n - i >= lanes.size(); i += lanes.size()) {
    for (std::size_t k = 0; k < lanes.size(); ++k) raise(lanes[k], Magnitude(x[i + k]));
  }
  for (; i < n; ++i) raise(lanes[0], Magnitude(x[i]));
  return *std::max_element(lanes.begin(), lanes.end());
}

}  // namespace array_check

template <class T>
std::size_t DataArray<T>::Checked(uint64 i) const {
  if (i >= data_.size()) throw std::out_of_range("invalid vector<T> subscript");
  return static_cast<std::size_t>(i);
}

template <class T>
void DataArray<T>::CheckLength(uint64 n) const {
  if (n > std::numeric_limits<uint64>::max() / sizeof(T)) {
    throw std::length_error("vector<T> too long");
  }
  if (n > data_.max_size()) throw std::bad_alloc();  // addressable, but no memory is that large
}

template <class T>
void DataArray<T>::Resize(uint64 n) {
  CheckLength(n);
  data_.resize(static_cast<std::size_t>(n), T{});
}

template <class T>
void DataArray<T>::ResizeToWrite(uint64 n) {
  CheckLength(n);
  data_.resize(static_cast<std::size_t>(n));
}

template <class T>
void DataArray<T>::Reserve(uint64 n) {
  CheckLength(n);
  data_.reserve(static_cast<std::size_t>(n));
}

template <class T>
void DataArray<T>::SetData(uint64 count, const T* source, bool shrink) {
  data_.clear();
  if (source == nullptr) {
    Resize(count);
  } else {
    ResizeToWrite(count);
  }
  if (shrink) Shrink();
  if (source != nullptr) std::copy_n(source, count, data_.begin());
}

template <class T>
T DataArray<T>::GetAbsMax(uint64 start, uint64 count) const {
  using namespace array_check;
  const uint64 n = data_.size();
  const uint64 last = (count != 0 ? start + count : n) - 1;  // wraps: an empty array has no last
  if (start > last) {
    ReportArrayError(kPath, __LINE__, kBadIndex);
    return T{};
  }
  if (last >= n) {
    ReportArrayError(kPath, __LINE__, kEndOver);
    return T{};
  }
  return LargestMagnitude(data_.data() + start, last - start + 1);
}

template <class T>
bool DataArray<T>::RingCopy(DataArray& dst, const DataArray& src, uint64 srcPos, uint64 dstPos,
                            uint64 count) {
  using namespace array_check;
  if (src.data_.size() < count) {
    ReportArrayError(kPath, __LINE__, kSrcShort);
    return false;
  }
  if (dst.data_.size() < count) {
    ReportArrayError(kPath, __LINE__, kDstShort);
    return false;
  }
  if (count == 0) return true;  // before the remainders: an array may be empty here
  uint64 s = srcPos % src.data_.size();
  uint64 d = dstPos % dst.data_.size();
  while (count != 0) {  // a segment reaches to the nearer end of the two arrays
    const uint64 n = std::min({count, src.data_.size() - s, dst.data_.size() - d});
    const T* const from = src.data_.data() + s;
    T* const to = dst.data_.data() + d;
    for (uint64 k = 0; k < n; ++k) to[k] = from[k];  // in this order, as the two may be one array
    s = (s + n) % src.data_.size();
    d = (d + n) % dst.data_.size();
    count -= n;
  }
  return true;
}

template <class T>
bool DataArray<T>::Serialize(CSerialData* stream) {
  if (stream == nullptr) return false;
  if (stream->IsFinalize()) {
    Clear();
    return ReadRecord(*stream);
  }
  const uint64 n = data_.size();
  if (!stream->Write(1U) || !stream->Write(n)) return false;
  return n == 0 ||
         stream->Write(reinterpret_cast<const unsigned char*>(data_.data()), n * sizeof(T));
}

/// Reads into the empty array, which stays empty on failure.
template <class T>
bool DataArray<T>::ReadRecord(CSerialData& stream) {
  unsigned int version = 0;
  uint64 n = 0;
  if (!stream.Read(&version) || !stream.Read(&n)) return false;
  if (n == 0) return true;
  if (n > std::numeric_limits<uint64>::max() / sizeof(T)) return false;  // n sizeof(T) would wrap
  const unsigned char* const bytes = stream.ReadPtr(n * sizeof(T));
  if (bytes == nullptr) return false;
  ResizeToWrite(n);
  Shrink();
  std::memcpy(data_.data(), bytes, data_.size() * sizeof(T));  // the bytes have no alignment
  return true;
}

}  // namespace qarv::common
