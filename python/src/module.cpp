// The extension module qarv_wave._core.
#include <pybind11/pybind11.h>

#include "assessment.h"
#include "sample_file.h"
#include "sets.h"
#include "waveform.h"

PYBIND11_MODULE(_core, module) {
  namespace py = pybind11;
  py::options options;
  options.disable_function_signatures();  // the stubs have them
  qarv::python::Classes classes;
  qarv::python::BindSets(module, classes);
  qarv::python::BindWaveform(module, classes);
  qarv::python::BindAssessment(module);
  qarv::python::BindSampleFiles(module);
}
