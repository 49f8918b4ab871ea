// What callers hand over: texts, samples, and buffers for what comes out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "handle.h"

namespace qarv::capi {

/// `count` elements from `data` on; null is none.
/// @throws CallError if there should be some at null
template <class T>
std::span<const T> Given(const T* data, std::size_t count) {
  if (data == nullptr && count != 0) {
    throw CallError{QARV_WAVE_WRONG_CALL, "a null pointer has no elements"};
  }
  return {data, data == nullptr ? 0 : count};
}

inline std::string_view TextOf(const char* text, std::size_t length) {
  const std::span<const char> given = Given(text, length);
  return {given.data(), given.size()};
}

/// The buffer that a caller has for an output, or the question how large it has to be.
class Output {
 public:
  /// @throws CallError if it is neither
  Output(void* buffer, std::size_t capacity, std::size_t* needed);

  /// With the 0 at its end.
  void Text(const std::string& text) const { Bytes(text.c_str(), text.size() + 1); }
  void Bytes(const void* bytes, std::size_t count) const;

 private:
  void* buffer_;
  std::size_t capacity_;
  std::size_t* needed_;
};

}  // namespace qarv::capi
