// Whether a measured record keeps within the bands of a definition.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "analysis/band_fit.h"
#include "analysis/judge.h"
#include "assess/entries.h"
#include "assess/error.h"
#include "assess/record.h"
#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

struct JudgeSettings {
  double dvTol = 10.0;  // [%] of the velocity change of the definition
  bool force = false;   // judge whatever the sampling does not show
};

/// The record on the samples of the definition.
struct Overlay {
  common::CDataArrayFloatT<double> wave;  // as many as the definition has
  std::size_t first, last;                // [sample] that the record covers
  double start;                           // [sample] of the definition's first one in the record
};

/// The velocity change of the measured pulse.
struct VelocityVerdict {
  double measured, defined, deviation;  // [amplitude unit x s], [%] of the defined one
  bool passes;
};

/// What a record shows where the bands lie over it.
struct Judgement {
  Overlay overlay;
  analysis::Verdict bands;
  std::optional<VelocityVerdict> velocity;  // of a classical pulse
  double correlation;                       // with the waveform, over the pulse
  Entries entries;                          // every number of it
  std::vector<std::string> warnings;        // on the record

  bool Passes() const { return bands.outside == 0 && (!velocity || velocity->passes); }
  /// What fails, for people; empty if nothing does.
  std::string Failed() const;
};

/// Lays a record over a definition and compares it with the bands.
///
/// The main pulse of a classical definition, otherwise the whole waveform, is found by
/// cross-correlation.  The standards let the bands of a pulse be laid over the record where they
/// fit best: one that leaves them is moved by up to a tenth of the pulse's width.  Where they fit
/// nowhere the judgement is that of the best correlation, which shows people what is wrong.
/// @throws Error where there is no verdict: the definition has no bands, the record does not show
///         the waveform, shows it upside down or not wholly, its sampling does not show enough of
///         it (unless forced), its unit does not go with the definition's, or a setting is wrong
Judgement Judge(const wave_def::CWaveDef& def, const Record& record,
                const JudgeSettings& settings = {});

}  // namespace qarv::assess
