// A measured record laid over a definition.
#pragma once

#include <string>
#include <vector>

#include "analysis/band_fit.h"
#include "common/data_array/data_array_float_t.h"
#include "input_wave.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// A measured record at the sampling frequency of a definition, in its unit.
struct GridRecord {
  std::string file;
  std::vector<double> samples;
  double end;    // [sample] place of the last sample that was measured
  double fsamp;  // [Hz] of the definition
  double begin;  // [s] of the first sample, as the record counts it
};

/// Brings a record to unit and sampling frequency of a definition; what that cannot hold is
/// filtered out.  Ends the command where it cannot be used.
/// @param[in] file  of the record
GridRecord OnGridOf(const wave_def::CWaveDef& def, const InputWave& measured,
                    const std::string& file);

/// Where a record shows the waveform.
struct Location {
  double start;        // place of the definition's first sample in the record [sample]
  double correlation;  // of both, over the pulse and a width to either side
  double turned;       // that of the record upside down, where it would be found then
};

/// Finds the main pulse of a classical definition, otherwise the whole waveform.
/// Ends the command where the record does not show it, shows it upside down or not wholly.
Location Locate(const wave_def::CWaveDef& def, const GridRecord& record);

/// The record on the samples of the definition.
struct Overlay {
  common::CDataArrayFloatT<double> wave;  // as many as the definition has
  std::size_t first, last;                // [sample] that the record covers
  double start;                           // [sample] of the definition's first one in the record
};
Overlay LayOver(const wave_def::CWaveDef& def, const GridRecord& record, double start);

/// The places to which the bands of a classical definition may be moved: as far as a tenth of the
/// pulse's width, where the record holds the whole pulse.
analysis::Places PlacesAround(const wave_def::CWaveDef& def, const GridRecord& record,
                              double start);

}  // namespace qarv::command
