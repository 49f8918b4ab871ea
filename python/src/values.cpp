// Values of fields between Python and the tables of fields.
#include "values.h"

#include <cmath>
#include <utility>

#include "python_error.h"

namespace qarv::python {

namespace py = pybind11;
using definition::EnumNames;
using definition::FieldInfo;
using definition::Json;
using definition::ValueKind;

namespace {

template <class Error>
[[noreturn]] void Fail(const std::string& name, const std::string& what) {
  throw Error((name + ": " + what).c_str());
}

std::string TypeName(py::handle value) { return Py_TYPE(value.ptr())->tp_name; }

Json NumberOf(py::handle value, const std::string& name) {
  if (PyBool_Check(value.ptr()) == 0) {
    const double v = PyFloat_AsDouble(value.ptr());
    if (v != -1.0 || PyErr_Occurred() == nullptr) return definition::WriteValue(v);
    if (PyErr_ExceptionMatches(PyExc_OverflowError) != 0) throw py::error_already_set();
    PyErr_Clear();
  }
  Fail<py::type_error>(name, "must be a number, not " + TypeName(value));
}

/// A whole number, however large; the reader of the field knows the limits.
Json WholeNumberOf(py::handle value, const std::string& name) {
  const auto index = py::reinterpret_steal<py::object>(
      PyBool_Check(value.ptr()) == 0 ? PyNumber_Index(value.ptr()) : nullptr);
  if (!index) {
    PyErr_Clear();
    Fail<py::type_error>(name, "must be a whole number, not " + TypeName(value));
  }
  int overflow = 0;
  const long long v = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
  if (overflow == 0) return v < 0 ? Json(v) : Json(static_cast<unsigned long long>(v));
  const unsigned long long large = PyLong_AsUnsignedLongLong(index.ptr());
  if (PyErr_Occurred() == nullptr) return large;
  PyErr_Clear();
  Fail<py::value_error>(name, "does not fit 64 bits");
}

Json FlagOf(py::handle value, const std::string& name) {
  if (PyBool_Check(value.ptr()) != 0 || TypeName(value) == "numpy.bool_") {
    return PyObject_IsTrue(value.ptr()) == 1;
  }
  Fail<py::type_error>(name, "must be True or False, not " + TypeName(value));
}

/// Bytes that are not UTF-8 are surrogates in Python, as in file names.
Json TextOf(py::handle value, const std::string& name) {
  if (PyUnicode_Check(value.ptr()) == 0) {
    Fail<py::type_error>(name, "must be a string, not " + TypeName(value));
  }
  const auto bytes = py::reinterpret_steal<py::bytes>(
      PyUnicode_AsEncodedString(value.ptr(), "utf-8", "surrogateescape"));
  if (!bytes) throw py::error_already_set();
  return definition::WriteValue(std::string(bytes));
}

py::object TextFrom(const Json& json) {
  std::string text;
  definition::ReadValue(json, definition::Place(), &text);
  PyObject* const out =
      PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "surrogateescape");
  if (out == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(out);
}

/// A unit's text, or a mapping with its codes where no text says all.
Json UnitOf(py::handle value, const std::string& name) {
  if (PyUnicode_Check(value.ptr()) != 0) return value.cast<std::string>();
  if (!py::isinstance<py::dict>(value)) {
    Fail<py::type_error>(name, "must be a unit such as 'm/s^2', not " + TypeName(value));
  }
  return Json::parse(py::module_::import("json").attr("dumps")(value).cast<std::string>());
}

py::object UnitFrom(const Json& json) {
  if (json.is_string()) return py::str(json.get<std::string>());
  return py::module_::import("json").attr("loads")(json.dump());
}

double DoubleFrom(const Json& json) {
  double v = 0.0;
  definition::ReadValue(json, definition::Place(), &v);
  return v;
}

/// A list of values, each by a function of its own.
template <class ElementOf>
Json ListOf(py::handle value, const std::string& name, ElementOf elementOf) {
  const bool text = PyUnicode_Check(value.ptr()) != 0;
  const auto items =
      py::reinterpret_steal<py::object>(text ? nullptr : PySequence_Fast(value.ptr(), "is a list"));
  if (!items) {
    PyErr_Clear();
    Fail<py::type_error>(name, "must be a list, not " + TypeName(value));
  }
  Json out = Json::array();
  const py::ssize_t n = PySequence_Fast_GET_SIZE(items.ptr());
  for (py::ssize_t i = 0; i < n; ++i) {
    const py::handle item = PySequence_Fast_GET_ITEM(items.ptr(), i);
    out.push_back(elementOf(item, name + "[" + std::to_string(i) + "]"));
  }
  return out;
}

template <class ElementFrom>
py::tuple TupleFrom(const Json& json, ElementFrom elementFrom) {
  py::tuple out(json.size());
  for (std::size_t i = 0; i < json.size(); ++i) out[i] = elementFrom(json[i]);
  return out;
}

Json CodeOf(py::handle value, const py::object& code, const std::string& name) {
  const py::object kind = py::module_::import("enum").attr("Enum");
  if (!code.is_none() && py::isinstance(value, kind) && !py::isinstance(value, code)) {
    Fail<py::type_error>(name, "must be a " + py::str(code.attr("__name__")).cast<std::string>() +
                                   ", not " + TypeName(value));
  }
  return WholeNumberOf(value, name);
}

Json ElementOf(py::handle value, const SetClass& set, const std::string& name) {
  if (!py::isinstance(value, set.type)) {
    Fail<py::type_error>(name, "must be a " +
                                   py::str(set.type.attr("__name__")).cast<std::string>() +
                                   ", not " + TypeName(value));
  }
  return set.toJson(value);
}

}  // namespace

Json Value::ToJson(py::handle value) const {
  switch (info.kind) {
    case ValueKind::Number:
      return NumberOf(value, name);
    case ValueKind::Count:
      return WholeNumberOf(value, name);
    case ValueKind::Flag:
      return FlagOf(value, name);
    case ValueKind::Text:
      return TextOf(value, name);
    case ValueKind::Enumeration:
      return CodeOf(value, code, name);
    case ValueKind::Unit:
      return UnitOf(value, name);
    case ValueKind::Numbers:
      return ListOf(value, name, NumberOf);
    case ValueKind::Set:
      return ElementOf(value, set, name);
    case ValueKind::List:
      return ListOf(value, name, [this](py::handle item, const std::string& at) {
        return ElementOf(item, set, at);
      });
    case ValueKind::Samples:
      break;
  }
  Fail<py::type_error>(name, "is no field of a table");
}

py::object Value::FromJson(const Json& json) const {
  if (json.is_null()) return py::none();
  switch (info.kind) {
    case ValueKind::Number:
      return py::float_(DoubleFrom(json));
    case ValueKind::Count:
      return py::int_(json.get<common::uint64>());
    case ValueKind::Flag:
      return py::bool_(json.get<bool>());
    case ValueKind::Text:
      return TextFrom(json);
    case ValueKind::Enumeration: {
      const py::int_ number(definition::ReadEnum(json, definition::Place(), info.names));
      return code.is_none() ? py::object(number) : code(number);
    }
    case ValueKind::Unit:
      return UnitFrom(json);
    case ValueKind::Numbers:
      return TupleFrom(json, [](const Json& v) { return py::float_(DoubleFrom(v)); });
    case ValueKind::Set:
      return set.fromJson(json);
    case ValueKind::List:
      return TupleFrom(json, set.fromJson);
    case ValueKind::Samples:
      break;
  }
  return py::none();
}

std::string Value::KindText() const {
  switch (info.kind) {
    case ValueKind::Number:
      return "number";
    case ValueKind::Count:
      return "count";
    case ValueKind::Flag:
      return "flag";
    case ValueKind::Text:
      return "text";
    case ValueKind::Enumeration:
      return code.is_none() ? "count" : "code";
    case ValueKind::Unit:
      return "unit";
    case ValueKind::Numbers:
      return "numbers";
    case ValueKind::Set:
      return "set";
    case ValueKind::List:
      return "list";
    case ValueKind::Samples:
      return "samples";
  }
  return "";
}

namespace {

/// The enumeration with those names: one class for all fields that share them.
py::object CodeFor(const FieldInfo& info, const std::string& owner, Classes& classes) {
  // "Kind" alone says nothing outside its set.
  std::string name = info.key == "Kind" ? owner + info.key : info.key;
  const auto known = classes.names.find(name);
  if (known != classes.names.end() && known->second != info.names) name = owner + info.key;
  if (!classes.codes.contains(name)) {
    py::list members;
    for (const auto& [value, text] : info.names) members.append(py::make_tuple(text, value));
    const py::object base = py::module_::import("qarv_wave._codes").attr("Code");
    const py::object made = base(name, members, py::arg("module") = "qarv_wave");
    made.attr("__doc__") = owner + "." + NameOf(info.key) + ": " + info.sentence + ".";
    classes.codes[name] = made;
    classes.names[name] = info.names;
  }
  return classes.codes[name];
}

}  // namespace

Value MakeValue(const FieldInfo& info, const std::string& owner, Classes& classes) {
  Value value{info, NameOf(info.key), py::none(), {}};
  if (info.kind == ValueKind::Enumeration && !info.names.empty()) {
    value.code = CodeFor(info, owner, classes);
  }
  if (info.kind == ValueKind::Set || info.kind == ValueKind::List) {
    value.set = classes.sets.at(info.set);
  }
  return value;
}

std::string SourceOf(py::handle value) {
  if (py::isinstance<py::float_>(value) && !std::isfinite(value.cast<double>())) {
    const double v = value.cast<double>();
    return std::string("float('") + (std::isnan(v) ? "nan" : v > 0.0 ? "inf" : "-inf") + "')";
  }
  if (py::isinstance<py::tuple>(value)) {
    std::string items;
    for (const py::handle item : value) items += (items.empty() ? "" : ", ") + SourceOf(item);
    return "[" + items + "]";
  }
  const py::object kind = py::module_::import("enum").attr("Enum");
  if (py::isinstance(value, kind)) return py::str(value.attr("source")).cast<std::string>();
  return py::repr(value).cast<std::string>();
}

}  // namespace qarv::python
