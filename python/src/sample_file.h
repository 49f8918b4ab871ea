// Sample files of other programs, read from their bytes.
#pragma once

#include <pybind11/pybind11.h>

namespace qarv::python {

/// Makes the function that qarv_wave._read turns into that of the package.
void BindSampleFiles(pybind11::module_& module);

}  // namespace qarv::python
