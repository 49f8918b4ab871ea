// Assessments of waveforms and records: motion, report, spectrum, verdict, another sampling.
#pragma once

#include <pybind11/pybind11.h>

namespace qarv::python {

/// Makes the functions that qarv_wave._assess turns into those of the package.
void BindAssessment(pybind11::module_& module);

}  // namespace qarv::python
