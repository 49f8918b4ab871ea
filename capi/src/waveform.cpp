// Definitions, records and the waveform of a handle.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "arguments.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "definition/fields.h"
#include "definition/main_pulse.h"
#include "handle.h"

using namespace qarv;
using namespace qarv::capi;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

/// The samples of an array, if it is as long as the waveform.
const double* Whole(const qarv_wave* handle, const Samples& (CWaveDef::*samples)() const) {
  if (!HasWave(handle)) return nullptr;
  const Samples& all = (handle->def.*samples)();
  return all.GetSize() != 0 && all.GetSize() == handle->def.GetNsamp() ? all.GetData() : nullptr;
}

/// Puts what `make` gives into the place of the waveform before, which goes in any case.
template <class Make>
std::int32_t Replace(qarv_wave* handle, Make make) noexcept {
  return Guarded(handle, [&] {
    handle->def = CWaveDef();
    handle->synthesis.clear();
    handle->def = make();
  });
}

}  // namespace

// ---- Definitions -------------------------------------------------------------------------------

std::int32_t qarv_wave_define_json(qarv_wave* handle, const char* text, std::size_t length) {
  return Replace(handle,
                 [&] { return definition::Generate(definition::FromJson(TextOf(text, length))); });
}

std::int32_t qarv_wave_load_record(qarv_wave* handle, const std::uint8_t* bytes,
                                   std::size_t length) {
  return Replace(handle, [&] { return definition::FromRecord(Given(bytes, length)); });
}

std::int32_t qarv_wave_save_record(qarv_wave* handle, std::uint8_t* buffer, std::size_t capacity,
                                   std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    const std::vector<unsigned char> record = definition::ToRecord(WaveOf(handle));
    out.Bytes(record.data(), record.size());
  });
}

std::int32_t qarv_wave_definition_json(qarv_wave* handle, char* buffer, std::size_t capacity,
                                       std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    out.Text(definition::ToJson(definition::DefinitionOf(WaveOf(handle))));
  });
}

std::int32_t qarv_wave_check_json(qarv_wave* handle, const char* text, std::size_t length,
                                  char* buffer, std::size_t capacity, std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    const definition::Definition definition = definition::FromJson(TextOf(text, length));
    out.Text(definition::FindingsJson(definition::Check(definition)));
  });
}

std::int32_t qarv_wave_schema(qarv_wave* handle, char* buffer, std::size_t capacity,
                              std::size_t* needed) {
  return Guarded(handle, [&] { Output(buffer, capacity, needed).Text(definition::SchemaText()); });
}

// ---- The waveform ------------------------------------------------------------------------------

const char* qarv_wave_family(const qarv_wave* handle) {
  return HasWave(handle) ? definition::FamilyOf(handle->def).key : "none";
}

std::size_t qarv_wave_size(const qarv_wave* handle) {
  return HasWave(handle) ? static_cast<std::size_t>(handle->def.GetNsamp()) : 0;
}

double qarv_wave_sample_rate(const qarv_wave* handle) {
  return HasWave(handle) ? definition::SampleRateOf(handle->def) : 0.0;
}

const double* qarv_wave_samples(const qarv_wave* handle) {
  return Whole(handle, &CWaveDef::GetWave);
}

const double* qarv_wave_upper(const qarv_wave* handle) { return Whole(handle, &CWaveDef::GetTolU); }

const double* qarv_wave_lower(const qarv_wave* handle) { return Whole(handle, &CWaveDef::GetTolL); }

std::int32_t qarv_wave_main_pulse(qarv_wave* handle, std::size_t* first, std::size_t* last) {
  return Guarded(handle, [&] {
    if (first == nullptr || last == nullptr) {
      throw CallError{QARV_WAVE_WRONG_CALL, "there is no place for the result"};
    }
    const CWaveDef& def = WaveOf(handle);
    if (!definition::IsClassical(def) || def.GetNsamp() == 0) {
      throw CallError{QARV_WAVE_WRONG_CALL, "the waveform has no main pulse"};
    }
    // A record may have fewer samples than its parameters say.
    const std::size_t end = static_cast<std::size_t>(def.GetNsamp()) - 1;
    const definition::MainPulse pulse = definition::MainPulseOf(def);
    *first = std::min(pulse.first, end);
    *last = std::min(pulse.last, end);
  });
}
