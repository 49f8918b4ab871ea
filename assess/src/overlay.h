// A measured record laid over a definition.
#pragma once

#include <vector>

#include "analysis/band_fit.h"
#include "assess/judgement.h"
#include "assess/record.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// A measured record at the sampling frequency of a definition, in its unit.
struct GridRecord {
  std::vector<double> samples;
  double end;    // [sample] place of the last sample that was measured
  double fsamp;  // [Hz] of the definition
  double begin;  // [s] of the first sample, as the record counts it
};

/// Brings a record to unit and sampling frequency of a definition; what that cannot hold is
/// filtered out.
/// @throws Error where it cannot be used
GridRecord OnGridOf(const wave_def::CWaveDef& def, const Record& measured);

/// Where a record shows the waveform.
struct Location {
  double start;        // place of the definition's first sample in the record [sample]
  double correlation;  // of both, over the pulse and a width to either side
  double turned;       // that of the record upside down, where it would be found then
};

/// Finds the main pulse of a classical definition, otherwise the whole waveform.
/// @throws Error where the record does not show it, shows it upside down or not wholly
Location Locate(const wave_def::CWaveDef& def, const GridRecord& record);

/// The record on the samples of the definition.
Overlay LayOver(const wave_def::CWaveDef& def, const GridRecord& record, double start);

/// The places to which the bands of a classical definition may be moved: as far as a tenth of the
/// pulse's width, where the record holds the whole pulse.
analysis::Places PlacesAround(const wave_def::CWaveDef& def, const GridRecord& record,
                              double start);

}  // namespace qarv::assess
