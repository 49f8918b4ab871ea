// Sample files of other programs, read from their bytes.
#include "sample_file.h"

#include <string>
#include <string_view>
#include <vector>

#include "array_view.h"
#include "exchange/error.h"
#include "exchange/kind.h"

namespace qarv::python {

namespace py = pybind11;

namespace {

/// What the file says of the sampling frequency [Hz]; None where it says nothing.
py::object RateOf(const exchange::Signal& signal) {
  if (signal.fsamp == 0.0 && signal.times.empty()) return py::none();
  return py::float_(exchange::SampleRateOf(signal));
}

/// Bytes that are no UTF-8 are surrogates in Python, as in file names.
py::object TextFrom(const std::string& text) {
  PyObject* const out =
      PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "surrogateescape");
  if (out == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(out);
}

/// The signals of a file as (samples, fsamp, unit, name, begin).
py::list ReadSignals(const py::bytes& bytes) {
  try {
    const std::string_view text(bytes);
    std::vector<exchange::Signal> signals;
    {
      const py::gil_scoped_release others;
      signals = exchange::ReadSignals(exchange::BytesOf(text));
    }
    py::list out;
    for (const exchange::Signal& signal : signals) {
      out.append(py::make_tuple(ArrayOf(signal.values), RateOf(signal), TextFrom(signal.unit),
                                TextFrom(signal.name), signal.begin));
    }
    return out;
  } catch (const exchange::Error& e) {
    const std::string line = e.GetLine() == 0 ? "" : "line " + std::to_string(e.GetLine()) + ": ";
    throw py::value_error(line + e.what());
  }
}

}  // namespace

void BindSampleFiles(py::module_& module) { module.def("read_signals", &ReadSignals); }

}  // namespace qarv::python
