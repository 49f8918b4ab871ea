// What a waveform family has to offer: how its object is read and written.  One file per family.
#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "definition/definition.h"
#include "definition/fields.h"
#include "field_tables.h"
#include "json_fields.h"

namespace qarv::definition {

/// What is read of a definition besides a family's object.
struct ReadContext {
  bool hasFsamp;  // the definition gives a sampling frequency
  const SampleSource& source;
};

struct FamilyTable {
  Family family;
  /// Reads the family's object.  Where the definition gives no sampling frequency, all that is
  /// needed for the family's own is read too.
  ParameterSet (*read)(const Json& json, const Place& at, const ReadContext& context);
  /// The sampling frequency that the parameters imply [Hz]; null where it must be given.
  double (*ownFsamp)(const ParameterSet& set);
  /// Writes the family's object.  `samplesFile` is where the samples of a measured waveform are
  /// kept; if it is empty, in the object.
  Json (*write)(const ParameterSet& set, const std::string& samplesFile);
  /// The parameters of a defined waveform.
  ParameterSet (*parametersOf)(const wave_def::CWaveDef& def);
  /// The sets of fields: the family's own first, then those within it.
  std::vector<SetInfo> (*describe)(const Family& family);
};

/// The table of a family whose object is one set.
/// @tparam fields      of the set
/// @tparam parameters  the getter of the set of a defined waveform
template <const auto& fields, auto parameters>
constexpr FamilyTable OneSetFamily(const Family& family) {
  using wave_def::CWaveDef;
  using Set = std::remove_cvref_t<std::invoke_result_t<decltype(parameters), const CWaveDef&>>;
  return {
      .family = family,
      .read =
          [](const Json& json, const Place& at, const ReadContext& /*context*/) {
            return ParameterSet(ReadSet(fields, json, at));
          },
      .ownFsamp = nullptr,
      .write =
          [](const ParameterSet& set, const std::string& /*samplesFile*/) {
            return WriteFields(fields, std::get<Set>(set));
          },
      .parametersOf =
          [](const CWaveDef& def) { return ParameterSet(std::invoke(parameters, def)); },
      .describe =
          [](const Family& f) { return std::vector{Describe(f.key, f.title, true, fields)}; },
  };
}

// One per file in families/.
extern const FamilyTable kClassicalFamily;
extern const FamilyTable kDampingFamily;
extern const FamilyTable kGradualFamily;
extern const FamilyTable kMeasureFamily;
extern const FamilyTable kSineBeatBurstFamily;
extern const FamilyTable kSingleFamily;
extern const FamilyTable kSymmetryFamily;

}  // namespace qarv::definition
