// A measured record laid over a definition.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "analysis/band_fit.h"
#include "assess/judgement.h"
#include "assess/record.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// A measured record at the sampling frequency of a definition, in its unit.
struct GridRecord {
  std::vector<double> samples;
  double end;                           // [sample] place of the last sample that was measured
  double fsamp;                         // [Hz] of the definition
  double begin;                         // [s] of the first sample, as the record counts it
  std::size_t searchFirst, searchLast;  // [sample] between which the waveform is looked for
};

/// The factor from the unit of a record to that of a definition; 1 where one of them says none.
/// @throws Error where they do not go together
double UnitFactor(const wave_def::CWaveDef& def, const Record& measured);

/// Brings a record to unit and sampling frequency of a definition; what that cannot hold is
/// filtered out.
/// @param[in] search  stretch of the record in which the waveform is looked for; all of it without
/// @throws Error where it cannot be used
GridRecord OnGridOf(const wave_def::CWaveDef& def, const Record& measured,
                    const std::optional<Stretch>& search);

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

/// The places to which the bands of a classical definition may be moved: as far as a share of the
/// pulse's width, where the record holds the whole pulse.
analysis::Places PlacesAround(const wave_def::CWaveDef& def, const GridRecord& record, double start,
                              double share);

}  // namespace qarv::assess
