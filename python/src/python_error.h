// What is raised in Python, made of what is thrown or found here.
#pragma once

#include <pybind11/pybind11.h>

#include <string>

#include "assess/error.h"
#include "definition/check.h"
#include "definition/error.h"

namespace qarv::python {

/// Findings as Python has them: a tuple of Finding(severity, text, remedies).
pybind11::tuple FindingsOf(const definition::Findings& findings);

/// Raises DefinitionError of a text or a record that is no definition, with key and line.
[[noreturn]] void RaiseNoDefinition(const definition::Error& error);

/// Raises DefinitionError of parameters of which there is no waveform.
/// @param[in] reason  in one line
[[noreturn]] void RaiseRefused(const std::string& reason, const definition::Findings& findings);

/// Raises ValueError of an assessment that cannot be made, with the argument that is wrong; of what
/// is wrong in a line of a text, DefinitionError.
[[noreturn]] void RaiseNoResult(const assess::Error& error);

/// "tol_main_u" of "TolMainU": what a field is called in Python.
std::string NameOf(const std::string& key);

}  // namespace qarv::python
