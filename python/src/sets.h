// The parameter sets as Python classes: frozen values whose keyword arguments and properties are
// the fields of their tables.
#pragma once

#include <pybind11/pybind11.h>

#include <functional>
#include <string>
#include <vector>

#include "definition/definition.h"
#include "values.h"

namespace qarv::python {

/// One field as a property of the class that holds it.
template <class Held>
struct Property {
  Value value;
  pybind11::object key;  // its name, as keyword arguments have it
  /// Takes a Python value.  @throws TypeError, ValueError with the name
  std::function<void(Held&, pybind11::handle)> set;
  /// @param[in] self  the Python object, which what is returned may keep alive
  std::function<pybind11::object(const Held&, pybind11::handle self)> get;
  std::function<bool(const Held&)> isDefault;
};
template <class Held>
using Properties = std::vector<Property<Held>>;

/// Sets what the keyword arguments name, in the order of the table.
/// @param[in] owner  what takes the arguments, for messages
/// @throws TypeError for an unknown or a missing one, and what the values throw
template <class Held>
void Fill(const Properties<Held>& properties, const pybind11::kwargs& arguments, const char* owner,
          Held& held);

/// "period=0.01, nsamp=1000": the fields that are not at their defaults, as source text.
template <class Held>
std::string ArgumentsOf(const Properties<Held>& properties, const Held& held);

/// "Period of the sine [s]; default 0.0": what people are told of a field.
std::string HelpOf(const Value& value);

/// The fields as the stubs are made of them: (name, kind, class of the value or "", whether it is
/// required, default as source text, help).
template <class Held>
pybind11::list DescriptionOf(const Properties<Held>& properties);

/// The settings of a definition, which `define` takes and a waveform has.
Properties<wave_def::CWaveDef> SettingsOf(Classes& classes);

/// The parameters of a Python object of one of the families' classes.
/// @throws TypeError if it is none
definition::ParameterSet ParametersOf(pybind11::handle set, const char* user);

/// The Python object of a family's parameters.
pybind11::object ObjectOf(const definition::ParameterSet& set);

/// Makes the classes of all sets and the enumerations of their fields.
void BindSets(pybind11::module_& module, Classes& classes);

}  // namespace qarv::python
