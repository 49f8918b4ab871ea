// The handle of the C interface.
#include "handle.h"

#include <new>
#include <stdexcept>

#include "assess/error.h"
#include "definition/error.h"
#include "text/text.h"

namespace qarv::capi {

using text::OneLine;

void LastError::Clear() noexcept {
  fixed_ = nullptr;
  text_.clear();
  key_.clear();
  line_ = 0;
}

std::int32_t LastError::Fixed(std::int32_t status, const char* text) noexcept {
  Clear();
  fixed_ = text;
  return status;
}

std::int32_t LastError::Keyed(std::int32_t status, const std::string& text, const std::string& key,
                              std::size_t line) {
  text_ = text;
  key_ = key;
  line_ = line;
  return status;
}

std::int32_t LastError::Classify() {
  try {
    throw;
  } catch (const CallError& e) {
    return Fixed(e.status, e.text);
  } catch (const definition::Error& e) {
    const bool refused = e.GetKind() == definition::Error::Kind::Refused;
    return Keyed(refused ? QARV_WAVE_REFUSED : QARV_WAVE_BAD_INPUT, e.what(), e.GetKey(),
                 e.GetLine());
  } catch (const assess::Error& e) {
    const std::string& key = e.GetKey();
    return Keyed(QARV_WAVE_BAD_INPUT, OneLine(key.empty() ? e.what() : key + ": " + e.what()), key,
                 e.GetLine());
  } catch (const std::length_error&) {  // more samples than any memory has
    throw std::bad_alloc();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& e) {
    return Keyed(QARV_WAVE_BAD_INPUT, OneLine(e.what()));
  }
}

std::int32_t LastError::Take() noexcept {
  try {
    return Classify();
  } catch (...) {  // for the call, or for the text of its error
    return Fixed(QARV_WAVE_OUT_OF_MEMORY, "out of memory");
  }
}

bool HasWave(const qarv_wave* handle) {
  return handle != nullptr && handle->def.GetWaveType() != wave_def::CWaveDef::WAVE_TYPE_NONE;
}

wave_def::CWaveDef& WaveOf(qarv_wave* handle) {
  if (!HasWave(handle)) throw CallError{QARV_WAVE_WRONG_CALL, "the handle has no waveform"};
  return handle->def;
}

}  // namespace qarv::capi

using qarv::capi::LastError;

qarv_wave* qarv_wave_new(void) {
  try {
    return new qarv_wave;
  } catch (...) {
    return nullptr;
  }
}

void qarv_wave_free(qarv_wave* handle) { delete handle; }

const char* qarv_wave_version(void) { return QARV_VERSION; }

const char* qarv_wave_error(const qarv_wave* handle) {
  return handle == nullptr ? "" : handle->error.Text();
}

const char* qarv_wave_error_key(const qarv_wave* handle) {
  return handle == nullptr ? "" : handle->error.Key();
}

std::size_t qarv_wave_error_line(const qarv_wave* handle) {
  return handle == nullptr ? 0 : handle->error.Line();
}
