// Waveforms for required spectra, as the waveform of a handle.
#include "assess/synthesis.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "arguments.h"
#include "assess/machine.h"
#include "assess/requirement.h"
#include "definition/error.h"
#include "handle.h"
#include "settings.h"

using namespace qarv;
using namespace qarv::capi;

namespace {

std::optional<assess::Machine> MachineOf(std::string_view text) {
  if (text.empty()) return {};
  return assess::MachineFromJson(text);
}

std::function<bool(double)> ProgressOf(qarv_wave_progress progress, void* context) {
  if (progress == nullptr) return {};
  return [progress, context](double share) { return progress(share, context) == 0; };
}

}  // namespace

std::int32_t qarv_wave_synthesize(qarv_wave* handle, const char* requirement, std::size_t length,
                                  const char* machine, std::size_t machine_length,
                                  const char* settings, std::size_t settings_length,
                                  qarv_wave_progress progress, void* context) {
  return Guarded(handle, [&] {
    handle->def = wave_def::CWaveDef();
    handle->synthesis.clear();
    const SynthesisRequest request = SynthesisRequestOf(TextOf(settings, settings_length));
    assess::Synthesis made = assess::Synthesize(
        assess::RequirementFromJson(TextOf(requirement, length)), request,
        MachineOf(TextOf(machine, machine_length)), ProgressOf(progress, context));
    if (made.IsCancelled()) throw CallError{QARV_WAVE_CANCELLED, "cancelled"};
    if (!made.failure.empty() && !request.force) {
      throw definition::Error(definition::Error::Kind::Refused, "", made.failure);
    }
    wave_def::CWaveDef wave = std::move(made.wave);
    handle->synthesis = assess::SynthesisJson(std::move(made));
    handle->def = std::move(wave);
  });
}

std::int32_t qarv_wave_synthesis_json(qarv_wave* handle, char* buffer, std::size_t capacity,
                                      std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    WaveOf(handle);
    if (handle->synthesis.empty()) {
      throw CallError{QARV_WAVE_WRONG_CALL, "the waveform is of no synthesis"};
    }
    out.Text(handle->synthesis);
  });
}
