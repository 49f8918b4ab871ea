// What is raised in Python: the exception and the findings are classes of the package.
#include "python_error.h"

#include <cctype>

namespace qarv::python {

namespace py = pybind11;

namespace {

py::module_ Errors() { return py::module_::import("qarv_wave._errors"); }

[[noreturn]] void Raise(const std::string& text, const py::tuple& findings, const std::string& key,
                        std::size_t line) {
  const py::object type = Errors().attr("DefinitionError");
  const py::object error = type(text, findings, key, line);
  PyErr_SetObject(type.ptr(), error.ptr());
  throw py::error_already_set();
}

}  // namespace

py::tuple FindingsOf(const definition::Findings& findings) {
  const py::module_ errors = Errors();
  const py::object severity = errors.attr("Severity");
  py::tuple out(findings.size());
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const definition::Finding& finding = findings[i];
    py::tuple remedies(finding.remedies.size());
    for (std::size_t k = 0; k < finding.remedies.size(); ++k) {
      const definition::Remedy& remedy = finding.remedies[k];
      const std::string field = remedy.key.substr(remedy.key.rfind('.') + 1);
      remedies[k] = errors.attr("Remedy")(remedy.key, remedy.value, NameOf(field));
    }
    const bool fails = finding.severity == definition::Severity::Fails;
    out[i] =
        errors.attr("Finding")(severity.attr(fails ? "FAILS" : "WARNS"), finding.text, remedies);
  }
  return out;
}

void RaiseNoDefinition(const definition::Error& error) {
  Raise(error.what(), py::tuple(), error.GetKey(), error.GetLine());
}

void RaiseRefused(const std::string& reason, const definition::Findings& findings) {
  Raise(reason, FindingsOf(findings), "", 0);
}

void RaiseNoResult(const assess::Error& error) {
  const std::string& key = error.GetKey();
  if (error.GetLine() != 0) Raise(key + ": " + error.what(), py::tuple(), key, error.GetLine());
  throw py::value_error(key.empty() ? error.what() : key + ": " + error.what());
}

std::string NameOf(const std::string& key) {
  std::string name;
  for (const char c : key) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isupper(byte) != 0 && !name.empty()) name += '_';
    name += static_cast<char>(std::tolower(byte));
  }
  return name;
}

}  // namespace qarv::python
