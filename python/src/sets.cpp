// The parameter sets as Python classes.
#include "sets.h"

#include <cctype>
#include <memory>
#include <type_traits>
#include <utility>

#include "array_view.h"
#include "common/serial/serial_data.h"
#include "definition/fields.h"
#include "python_error.h"

namespace qarv::python {

namespace py = pybind11;
using namespace wave_def;
using data_edit_log::CDataEditLogElm;
using definition::Field;
using definition::FieldsOf;
using definition::FieldTable;
using definition::Json;
using definition::MeasuredSet;
using definition::SetInfo;

// ---- Properties --------------------------------------------------------------------------------

namespace {

[[noreturn]] void FailWithName(const definition::Error& error) {
  throw py::value_error(NameOf(error.GetKey()) + ": " + error.GetText());
}

/// The property of a table's field.
/// @param[in] in  finds the set with the field in what the Python object holds
template <class Held, class Set, class In>
Property<Held> PropertyOf(const Field<Set>& field, Value value, In in) {
  Property<Held> out;
  out.key = py::str(value.name);
  out.set = [&field, value, in](Held& held, py::handle v) {
    try {
      field.read(value.ToJson(v), definition::Place().Key(field.info.key), in(held));
    } catch (const definition::Error& e) {
      FailWithName(e);
    }
  };
  out.get = [&field, value, in](const Held& held, py::handle) {
    return value.FromJson(field.write(in(held)));
  };
  out.isDefault = [&field, standard = field.write(Set()).dump(), in](const Held& held) {
    return field.write(in(held)).dump() == standard;
  };
  out.value = std::move(value);
  return out;
}

/// The properties of a table, in its order.
template <class Held, class Set, class In>
Properties<Held> PropertiesOf(const FieldTable<Set>& table, const SetInfo& info,
                              const std::string& owner, Classes& classes, In in) {
  Properties<Held> out;
  for (const Field<Set>& field : table) {
    for (const definition::FieldInfo& known : info.fields) {
      if (known.key != field.info.key) continue;
      out.push_back(PropertyOf<Held>(field, MakeValue(known, owner, classes), in));
    }
  }
  return out;
}

constexpr auto kItself = [](auto& held) -> auto& { return held; };

const SetInfo& InfoOf(const std::string& key) {
  for (const SetInfo& set : definition::AllSets()) {
    if (set.key == key) return set;
  }
  throw std::logic_error("no set " + key);
}

[[noreturn]] void FailAtUnknown(const std::string& owner, const py::kwargs& arguments,
                                const std::function<bool(const std::string&)>& known) {
  for (const auto& [key, value] : arguments) {
    const auto name = key.cast<std::string>();
    if (known(name)) continue;
    throw py::type_error(owner + "() has no keyword argument '" + name + "'");
  }
  throw py::type_error(owner + "() has other keyword arguments");
}

}  // namespace

template <class Held>
void Fill(const Properties<Held>& properties, const py::kwargs& arguments, const char* owner,
          Held& held) {
  std::size_t used = 0;
  for (const Property<Held>& property : properties) {
    PyObject* const v = PyDict_GetItemWithError(arguments.ptr(), property.key.ptr());
    if (v != nullptr) {
      ++used;
      const bool absent = v == Py_None && property.value.info.kind == definition::ValueKind::Set;
      if (!absent) property.set(held, v);
    } else if (property.value.info.required) {
      throw py::type_error(std::string(owner) + "() needs the keyword argument '" +
                           property.value.name + "'");
    }
  }
  if (used == arguments.size()) return;
  FailAtUnknown(owner, arguments, [&](const std::string& name) {
    for (const Property<Held>& property : properties) {
      if (property.value.name == name) return true;
    }
    return false;
  });
}

template <class Held>
std::string ArgumentsOf(const Properties<Held>& properties, const Held& held) {
  std::string out;
  for (const Property<Held>& property : properties) {
    if (!property.value.info.required && property.isDefault(held)) continue;
    // Only what keeps an owner alive needs one, and a text does not.
    const py::object value = property.get(held, py::none());
    if (!out.empty()) out += ", ";
    out += property.value.name + "=" + SourceOf(value);
  }
  return out;
}

template void Fill(const Properties<CWaveDef>&, const py::kwargs&, const char*, CWaveDef&);
template std::string ArgumentsOf(const Properties<CWaveDef>&, const CWaveDef&);

namespace {

std::string Capitalised(std::string text) {
  if (!text.empty()) {
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  }
  return text;
}

}  // namespace

std::string HelpOf(const Value& value) {
  const definition::FieldInfo& info = value.info;
  std::string text = Capitalised(info.sentence);
  if (!info.unit.empty()) text += " [" + info.unit + "]";
  if (info.required) return text + "; required";
  if (info.standard.empty()) return text;
  return text + "; default " + SourceOf(value.FromJson(Json::parse(info.standard)));
}

template <class Held>
py::list DescriptionOf(const Properties<Held>& properties) {
  py::list out;
  for (const Property<Held>& property : properties) {
    const Value& value = property.value;
    const std::string& standard = value.info.standard;
    py::object type = value.code.is_none() ? value.set.type : value.code;
    if (type) type = type.attr("__name__");
    const bool known = type && !type.is_none();
    out.append(
        py::make_tuple(value.name, value.KindText(), known ? type : py::str(), value.info.required,
                       standard.empty() ? "None" : SourceOf(value.FromJson(Json::parse(standard))),
                       HelpOf(value)));
  }
  return out;
}

template py::list DescriptionOf(const Properties<CWaveDef>&);

// ---- Values ------------------------------------------------------------------------------------

namespace {

template <class Set>
bool Equal(const Set& a, const Set& b) {
  return a == b;
}
bool Equal(const MeasuredSet& a, const MeasuredSet& b) {
  return a.set == b.set && a.samples.values == b.samples.values;
}

/// Everything that a pickle holds of a set: its record, and the samples of a measured one.
template <class Record>
bool SerializeAll(Record& set, common::CSerialData* stream) {
  return set.Serialize(stream);
}
bool SerializeAll(MeasuredSet& measured, common::CSerialData* stream) {
  return measured.set.Serialize(stream) && measured.samples.values.Serialize(stream);
}

template <class Held>
py::bytes RecordOf(Held held) {
  common::CSerialData stream;
  if (!SerializeAll(held, &stream)) throw py::value_error("the set has no record");
  return {reinterpret_cast<const char*>(stream.GetData()), stream.GetSize()};
}

template <class Held>
Held FromRecord(const py::bytes& record) {
  const std::string_view bytes(record);
  common::CSerialData stream(std::vector<unsigned char>(bytes.begin(), bytes.end()));
  Held held;
  if (SerializeAll(held, &stream) && stream.IsAtEnd()) return held;
  throw py::value_error("is not a whole record of the set");
}

/// What every set's class offers besides its fields.
template <class Held>
void BindValue(py::class_<Held>& type, const std::string& name,
               std::shared_ptr<const Properties<Held>> properties) {
  type.def(py::init([name, properties](const py::kwargs& arguments) {
        Held held;
        Fill(*properties, arguments, name.c_str(), held);
        return held;
      }))
      .def(
          "replace",
          [name, properties](py::handle self, const py::kwargs& changes) {
            py::dict arguments;
            for (const Property<Held>& property : *properties) {
              arguments[property.key] = property.get(self.cast<const Held&>(), self);
            }
            arguments.attr("update")(changes);
            return self.get_type()(**arguments);
          },
          "A set with some fields changed; this one stays as it is.")
      .def("__eq__",
           [](const Held& self, py::handle other) -> py::object {
             if (!py::isinstance<Held>(other)) {
               return py::reinterpret_borrow<py::object>(Py_NotImplemented);
             }
             return py::bool_(Equal(self, other.cast<const Held&>()));
           })
      .def("__repr__",
           [name, properties](const Held& self) {
             return name + "(" + ArgumentsOf(*properties, self) + ")";
           })
      .def(py::pickle(&RecordOf<Held>, &FromRecord<Held>));
}

template <class Held>
py::class_<Held> BindClass(py::module_& module, const std::string& name, const SetInfo& info,
                           Properties<Held> list, Classes& classes) {
  std::string doc =
      Capitalised(info.title) + ".\n\nA frozen value.  Keyword arguments and properties:\n";
  for (const Property<Held>& property : list) {
    doc += "\n    " + property.value.name + ": " + HelpOf(property.value);
  }
  py::class_<Held> type(module, name.c_str(), doc.c_str());
  const auto properties = std::make_shared<const Properties<Held>>(std::move(list));
  for (std::size_t i = 0; i < properties->size(); ++i) {
    const Property<Held>& property = (*properties)[i];
    type.def_property_readonly(
        property.value.name.c_str(),
        [properties, i](py::handle self) {
          return (*properties)[i].get(self.cast<const Held&>(), self);
        },
        HelpOf(property.value).c_str());
  }
  BindValue(type, name, properties);
  type.attr("__module__") = "qarv_wave";
  module.attr("_fields")[name.c_str()] = DescriptionOf(*properties);
  classes.sets[info.key].type = type;
  return type;
}

/// The class of a set that is all fields of its table.
template <class Set>
void BindSet(py::module_& module, const char* name, const char* key, Classes& classes) {
  const SetInfo& info = InfoOf(key);
  const FieldTable<Set>& table = FieldsOf<Set>();
  BindClass(module, name, info, PropertiesOf<Set>(table, info, name, classes, kItself), classes);
  SetClass& set = classes.sets[key];
  set.toJson = [&table](py::handle v) { return WriteFields(table, v.cast<const Set&>()); };
  set.fromJson = [&table](const Json& json) {
    return py::cast(definition::ReadSet(table, json, definition::Place()));
  };
}

/// The samples of a measured waveform, which are no field of its table.
Property<MeasuredSet> SamplesProperty(const SetInfo& info) {
  Property<MeasuredSet> out;
  for (const definition::FieldInfo& field : info.fields) {
    if (field.kind == definition::ValueKind::Samples) out.value.info = field;
  }
  out.value.info.required = true;
  out.value.info.sentence = "the samples, a read-only array";
  out.value.name = NameOf(out.value.info.key);
  out.value.code = py::none();
  out.key = py::str(out.value.name);
  out.set = [](MeasuredSet& held, py::handle v) {
    const DoubleArray samples = SamplesIn(v, "samples");
    const auto n = static_cast<common::uint64>(samples.size());
    held.samples.values.SetData(n, samples.data(), false);
  };
  out.get = [](const MeasuredSet& held, py::handle self) -> py::object {
    const auto samples = definition::SpanOf(held.samples.values);
    if (!self.is_none()) return ViewOf(samples, self);
    py::tuple all(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) all[i] = samples[i];
    return all;
  };
  out.isDefault = [](const MeasuredSet&) { return false; };
  return out;
}

void BindMeasure(py::module_& module, Classes& classes) {
  const SetInfo& info = InfoOf("Measure");
  Properties<MeasuredSet> list = PropertiesOf<MeasuredSet>(
      FieldsOf<CWaveDefMeasure>(), info, "Measure", classes,
      [](auto& held) -> auto& { return held.set; });
  list.push_back(SamplesProperty(info));
  BindClass(module, "Measure", info, std::move(list), classes);
}

template <std::size_t i = 0>
bool TakeParameters(py::handle object, definition::ParameterSet& out) {
  if constexpr (i < std::variant_size_v<definition::ParameterSet>) {
    using Set = std::variant_alternative_t<i, definition::ParameterSet>;
    if (!py::isinstance<Set>(object)) return TakeParameters<i + 1>(object, out);
    out.emplace<i>(object.cast<const Set&>());
    return true;
  }
  return false;
}

}  // namespace

definition::ParameterSet ParametersOf(py::handle object, const char* user) {
  definition::ParameterSet out;
  if (TakeParameters(object, out)) return out;
  throw py::type_error(std::string(user) + "() takes the parameter set of a waveform family, not " +
                       Py_TYPE(object.ptr())->tp_name);
}

py::object ObjectOf(const definition::ParameterSet& set) {
  return std::visit([](const auto& family) { return py::cast(family); }, set);
}

Properties<CWaveDef> SettingsOf(Classes& classes) {
  return PropertiesOf<CWaveDef>(FieldsOf<CWaveDef>(), InfoOf(""), "define", classes, kItself);
}

void BindSets(py::module_& module, Classes& classes) {
  module.attr("_fields") = py::dict();
  // What another set holds comes before it.
  BindSet<CWaveDefTolUserDef>(module, "TolUserDef", "TolUserDef", classes);
  BindSet<CWaveDefTolSpecify>(module, "TolSpecify", "TolSpecify", classes);
  BindSet<CWaveDefClassical>(module, "Classical", "Classical", classes);
  BindSet<CWaveDefSymmetry>(module, "Symmetry", "Symmetry", classes);
  BindSet<CWaveDefSineBeatBurst>(module, "SineBeatBurst", "SineBeatBurst", classes);
  BindSet<CDataEditLogElm>(module, "DataEdit", "DataEditLog", classes);
  BindMeasure(module, classes);
  BindSet<CWaveDefGradual>(module, "Gradual", "Gradual", classes);
  BindSet<CWaveDefSingle>(module, "Single", "Single", classes);
  BindSet<CWaveDefDampingElm>(module, "DampingElement", "Elements", classes);
  BindSet<CWaveDefDamping>(module, "Damping", "Damping", classes);
  for (const auto& [name, code] : classes.codes) module.attr(name.c_str()) = code;
}

}  // namespace qarv::python
