// What callers hand over.
#include "arguments.h"

#include <cstring>

namespace qarv::capi {

Output::Output(void* buffer, std::size_t capacity, std::size_t* needed)
    : buffer_(buffer), capacity_(capacity), needed_(needed) {
  if (needed != nullptr) *needed = 0;
  if (buffer == nullptr && capacity != 0) {
    throw CallError{QARV_WAVE_WRONG_CALL, "a null buffer has no capacity"};
  }
  if (buffer == nullptr && needed == nullptr) {
    throw CallError{QARV_WAVE_WRONG_CALL, "there is neither a buffer nor a place for its size"};
  }
}

void Output::Bytes(const void* bytes, std::size_t count) const {
  if (needed_ != nullptr) *needed_ = count;
  if (buffer_ == nullptr) return;
  if (count > capacity_) throw CallError{QARV_WAVE_TOO_SMALL, "the buffer is too small"};
  if (count != 0) std::memcpy(buffer_, bytes, count);
}

}  // namespace qarv::capi
