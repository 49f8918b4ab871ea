// The handle of the C interface: its waveform, its last error, and the one way in which a call
// ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "qarv_wave.h"
#include "wave_def/wave_def.h"

namespace qarv::capi {

/// Ends a call because of how it was made.
struct CallError {
  std::int32_t status;
  const char* text;  // a literal
};

/// Why the last call failed.
class LastError {
 public:
  void Clear() noexcept;
  /// Takes over the exception that is being handled; without memory for its text that is said.
  /// @return the status of it
  std::int32_t Take() noexcept;

  const char* Text() const { return fixed_ != nullptr ? fixed_ : text_.c_str(); }
  const char* Key() const { return key_.c_str(); }
  std::size_t Line() const { return line_; }

 private:
  std::int32_t Classify();
  std::int32_t Fixed(std::int32_t status, const char* text) noexcept;
  std::int32_t Keyed(std::int32_t status, const std::string& text, const std::string& key = {},
                     std::size_t line = 0);

  const char* fixed_ = nullptr;  // a text that needs no memory, in the place of text_
  std::string text_;
  std::string key_;
  std::size_t line_ = 0;
};

}  // namespace qarv::capi

struct qarv_wave {
  qarv::wave_def::CWaveDef def;
  std::string synthesis;  // figures of def as JSON, where a synthesis has made it; else empty
  qarv::capi::LastError error;
};

namespace qarv::capi {

/// Runs a call: what it throws becomes the handle's error and a status.
template <class Call>
std::int32_t Guarded(qarv_wave* handle, Call call) noexcept {
  if (handle == nullptr) return QARV_WAVE_WRONG_CALL;
  handle->error.Clear();
  try {
    call();
    return QARV_WAVE_OK;
  } catch (...) {
    return handle->error.Take();
  }
}

/// Whether there is a waveform; a null handle has none.
bool HasWave(const qarv_wave* handle);
/// The handle's waveform.
/// @throws CallError if there is none
wave_def::CWaveDef& WaveOf(qarv_wave* handle);

}  // namespace qarv::capi
