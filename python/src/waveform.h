// A defined waveform as a Python object, and what makes one.
#pragma once

#include <pybind11/pybind11.h>

#include <optional>

#include "values.h"
#include "wave_def/wave_def.h"

namespace qarv::python {

/// A waveform that never changes, so that views of its arrays stay what they are.
struct Waveform {
  wave_def::CWaveDef def;
  /// [s] of every sample; made when it is asked for the first time.
  mutable std::optional<common::CDataArrayFloatT<double>> time{};
};

/// Makes the class Waveform and the functions define and check.
void BindWaveform(pybind11::module_& module, Classes& classes);

}  // namespace qarv::python
