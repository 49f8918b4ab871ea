// Samples as NumPy arrays.
#include "array_view.h"

#include <string>
#include <string_view>

namespace qarv::python {

namespace py = pybind11;

py::array ViewOf(std::span<const double> samples, py::handle owner) {
  // A null pointer would make an array with storage of its own.
  static constexpr double kNoSample = 0.0;
  const double* const first = samples.empty() ? &kNoSample : samples.data();
  py::array view(py::dtype::of<double>(), samples.size(), first, owner);
  view.attr("flags").attr("writeable") = false;
  return view;
}

py::array ArrayOf(std::span<const double> values) {
  return py::array_t<double>(static_cast<py::ssize_t>(values.size()), values.data());
}

DoubleArray SamplesIn(py::handle samples, const char* name) {
  const auto any = py::array::ensure(samples);
  constexpr std::string_view kReal = "fiub";
  if (!any || kReal.find(any.dtype().kind()) == std::string_view::npos) {
    PyErr_Clear();
    throw py::type_error(std::string(name) + ": is no array of real numbers");
  }
  if (any.ndim() != 1) throw py::value_error(std::string(name) + ": has not one dimension");
  return DoubleArray(any);
}

std::span<const double> SpanOf(const DoubleArray& samples) {
  return {samples.data(), static_cast<std::size_t>(samples.size())};
}

}  // namespace qarv::python
