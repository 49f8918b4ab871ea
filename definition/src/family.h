// What a waveform family has to offer: how its object is read and written.  One file per family.
#pragma once

#include <string>

#include "definition/definition.h"
#include "definition/fields.h"
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
  std::vector<SetInfo> (*describe)();
};

// One per file in families/.
extern const FamilyTable kClassicalFamily;
extern const FamilyTable kDampingFamily;
extern const FamilyTable kGradualFamily;
extern const FamilyTable kMeasureFamily;
extern const FamilyTable kSineBeatBurstFamily;
extern const FamilyTable kSingleFamily;
extern const FamilyTable kSymmetryFamily;

}  // namespace qarv::definition
