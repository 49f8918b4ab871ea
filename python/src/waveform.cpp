// A defined waveform as a Python object, and what makes one.
#include "waveform.h"

#include <pybind11/stl.h>

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "array_view.h"
#include "com_def/com_def_system_const.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "definition/title.h"
#include "python_error.h"
#include "sets.h"

namespace qarv::python {

namespace py = pybind11;
using definition::Definition;
using wave_def::CWaveDef;
using Settings = Properties<CWaveDef>;

namespace {

// ---- Definitions -------------------------------------------------------------------------------

/// What is asked for by a set and keyword arguments.
Definition Asked(const Settings& settings, const char* user, py::handle set,
                 const py::kwargs& arguments) {
  Definition out{{}, ParametersOf(set, user)};
  Fill(settings, arguments, user, out.settings);
  if (arguments.contains("fsamp")) return out;
  if (!std::holds_alternative<wave_def::CWaveDefClassical>(out.set)) {
    throw py::type_error(std::string(user) + "() needs the keyword argument 'fsamp'");
  }
  const double fmax = std::get<wave_def::CWaveDefClassical>(out.set).GetFmax();
  out.settings.SetFsamp(com_def::comdefsystemconst::ConvFmaxToFsampByVal(fmax));
  return out;
}

[[noreturn]] void Refuse(const Definition& asked) {
  definition::Findings findings;
  std::string reason;
  {
    const py::gil_scoped_release others;
    findings = definition::Check(asked);
    reason = definition::WhyRefused(asked);
  }
  RaiseRefused(std::string(asked.GetFamily().key) + ": " + reason, findings);
}

std::unique_ptr<Waveform> Generated(const Definition& asked) {
  auto out = std::make_unique<Waveform>();
  bool defined = false;
  try {
    const py::gil_scoped_release others;
    defined = definition::TryToGenerate(asked, &out->def);
  } catch (const std::length_error&) {
    // A length that no memory has, which the findings explain.
  }
  if (!defined) Refuse(asked);
  return out;
}

// ---- Texts and records -------------------------------------------------------------------------

/// Reads the samples that a definition has in a file, by a function of the caller's.
definition::SampleSource SourceFrom(const py::object& function) {
  if (function.is_none()) return {};
  return [function](const std::string& path, bool /*needsRate*/) {
    const py::tuple pair = function(path);
    if (pair.size() != 2) throw py::value_error("samples: returns no pair of samples and fsamp");
    const DoubleArray samples = SamplesIn(pair[0], "samples");
    definition::Samples out;
    out.values.SetData(static_cast<common::uint64>(samples.size()), samples.data(), false);
    if (!pair[1].is_none()) out.fsamp = pair[1].cast<double>();
    return out;
  };
}

std::unique_ptr<Waveform> FromJson(const std::string& text, const py::object& samples) {
  try {
    return Generated(definition::FromJson(text, SourceFrom(samples)));
  } catch (const definition::Error& e) {
    RaiseNoDefinition(e);
  }
}

std::unique_ptr<Waveform> FromRecord(const py::bytes& record) {
  const std::string_view bytes(record);
  try {
    auto out = std::make_unique<Waveform>();
    out->def = definition::FromRecord(
        {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    return out;
  } catch (const definition::Error& e) {
    RaiseNoDefinition(e);
  }
}

py::bytes ToRecord(const Waveform& waveform) {
  // A record is written by the object itself, which is not to change: a copy of it writes.
  CWaveDef def = waveform.def;
  const std::vector<unsigned char> record = definition::ToRecord(def);
  return {reinterpret_cast<const char*>(record.data()), record.size()};
}

// ---- The class ---------------------------------------------------------------------------------

std::span<const double> TimeOf(const Waveform& waveform) {
  if (!waveform.time) {
    const double fsamp = definition::SampleRateOf(waveform.def);
    common::CDataArrayFloatT<double> time(waveform.def.GetNsamp());
    for (std::size_t k = 0; k < time.GetSize(); ++k) {
      time.GetData()[k] = static_cast<double>(k) / fsamp;
    }
    waveform.time = std::move(time);
  }
  return definition::SpanOf(*waveform.time);
}

/// A property that is a view of samples.
template <class Samples>
void DefineView(py::class_<Waveform>& type, const char* name, const char* doc, Samples samples) {
  type.def_property_readonly(
      name,
      [samples](py::handle self) { return ViewOf(samples(self.cast<const Waveform&>()), self); },
      doc);
}

void DefineArrays(py::class_<Waveform>& type) {
  DefineView(type, "time", "Time of every sample [s], from 0; read-only.", TimeOf);
  DefineView(type, "wave", "The samples [amplitude unit]; a read-only view.",
             [](const Waveform& w) { return definition::SpanOf(w.def.GetWave()); });
  DefineView(type, "upper", "The upper band [amplitude unit]; a read-only view.",
             [](const Waveform& w) { return definition::SpanOf(w.def.GetTolU()); });
  DefineView(type, "lower", "The lower band [amplitude unit]; a read-only view.",
             [](const Waveform& w) { return definition::SpanOf(w.def.GetTolL()); });
}

void DefineSettings(py::class_<Waveform>& type, const std::shared_ptr<const Settings>& settings) {
  for (std::size_t i = 0; i < settings->size(); ++i) {
    const Property<CWaveDef>& setting = (*settings)[i];
    type.def_property_readonly(
        setting.value.name.c_str(),
        [settings, i](const Waveform& self) { return (*settings)[i].get(self.def, py::none()); },
        HelpOf(setting.value).c_str());
  }
}

std::string SourceOf(const Settings& settings, const Waveform& waveform) {
  const py::object set = ObjectOf(definition::DefinitionOf(waveform.def).set);
  const std::string arguments = ArgumentsOf(settings, waveform.def);
  return "define(" + py::repr(set).cast<std::string>() + (arguments.empty() ? "" : ", ") +
         arguments + ")";
}

void DefineValue(py::class_<Waveform>& type, const std::shared_ptr<const Settings>& settings) {
  type.def(
          "to_json",
          [](const Waveform& self) {
            return definition::ToJson(definition::DefinitionOf(self.def));
          },
          "The definition as JSON, with every field.")
      .def("to_record", &ToRecord, "The record of the waveform.")
      .def(py::pickle(&ToRecord, &FromRecord))
      .def("__eq__",
           [](const Waveform& self, py::handle other) -> py::object {
             if (!py::isinstance<Waveform>(other)) {
               return py::reinterpret_borrow<py::object>(Py_NotImplemented);
             }
             return py::bool_(self.def == other.cast<const Waveform&>().def);
           })
      .def("__len__", [](const Waveform& self) { return self.def.GetNsamp(); })
      .def("__repr__", [settings](const Waveform& self) { return SourceOf(*settings, self); })
      .def("__str__", [](const Waveform& self) { return definition::TitleOf(self.def); });
}

void DefineFacts(py::class_<Waveform>& type) {
  type.def_property_readonly(
          "set",
          [](const Waveform& self) { return ObjectOf(definition::DefinitionOf(self.def).set); },
          "The parameters, with what a compensation has found.")
      .def_property_readonly(
          "family", [](const Waveform& self) { return definition::FamilyOf(self.def).title; },
          "The waveform family, for people.")
      .def_property_readonly(
          "title", [](const Waveform& self) { return definition::TitleOf(self.def); },
          "What the waveform is, in a few words.")
      .def_property_readonly(
          "unit_text", [](const Waveform& self) { return self.def.GetUnitAmpl().GetText(); },
          "Amplitude unit as it is printed; empty without one.")
      .def_property_readonly(
          "sample_rate", [](const Waveform& self) { return definition::SampleRateOf(self.def); },
          "Sampling frequency of the samples [Hz]: for a classical pulse 2.56 fmax, else fsamp.")
      .def(
          "plot",
          [](py::handle self, py::handle axes) {
            return py::module_::import("qarv_wave._plot").attr("plot_waveform")(self, axes);
          },
          py::arg("axes") = py::none(),
          "Draws the waveform between its bands with matplotlib; returns the axes.");
}

std::string SettingsHelp(const Settings& settings) {
  std::string text = "\n\nKeyword arguments:\n";
  for (const Property<CWaveDef>& setting : settings) {
    text += "\n    " + setting.value.name + ": " + HelpOf(setting.value);
  }
  return text;
}

}  // namespace

void BindWaveform(py::module_& module, Classes& classes) {
  const auto settings = std::make_shared<const Settings>(SettingsOf(classes));
  py::class_<Waveform> type(
      module, "Waveform",
      "A defined waveform between its tolerance bands.\n\n"
      "It never changes: a new definition is a new object.  Its arrays are read-only views that\n"
      "keep it alive.  It is made by define, from_json and from_record.");
  type.attr("__module__") = "qarv_wave";
  module.attr("_fields")["define"] = DescriptionOf(*settings);
  DefineArrays(type);
  DefineSettings(type, settings);
  DefineFacts(type);
  DefineValue(type, settings);

  module.def("from_json", &FromJson, py::arg("text"), py::arg("samples"),
             "The waveform of a definition in JSON.\n\n"
             "samples: takes the path of a measured waveform that the text does not hold, and\n"
             "returns its samples and their sampling frequency [Hz] or None.");
  module.def("from_record", &FromRecord, py::arg("record"),
             "The waveform of a record, with the samples and bands that it holds.");
  module.def(
      "define",
      [settings](py::handle set, const py::kwargs& arguments) {
        return Generated(Asked(*settings, "define", set, arguments));
      },
      py::arg("set"), py::pos_only(),
      ("The waveform of a parameter set.\n\nRaises DefinitionError, with the findings of check, "
       "if there is none." +
       SettingsHelp(*settings))
          .c_str());
  module.def(
      "check",
      [settings](py::handle set, const py::kwargs& arguments) {
        const Definition asked = Asked(*settings, "check", set, arguments);
        definition::Findings findings;
        {
          const py::gil_scoped_release others;
          findings = definition::Check(asked);
        }
        return FindingsOf(findings);
      },
      py::arg("set"), py::pos_only(),
      ("What is wrong with a definition: the rules that it breaks, those by which it fails first,\n"
       "and what is wrong with its waveform." +
       SettingsHelp(*settings))
          .c_str());
}

}  // namespace qarv::python
