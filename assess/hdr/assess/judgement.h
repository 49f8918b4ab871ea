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

/// What the velocity change of a record is held against.
enum class VelocityReference {
  Usual,     ///< the nominal pulse, but the waveform of a compensated one, which is reshaped
  Nominal,   ///< the area of the nominal pulse
  Waveform,  ///< the definition's own waveform
  Both,      ///< each of them
};

struct JudgeSettings {
  double dvTol = 10.0;  // [%] of the velocity change of the definition
  bool force = false;   // judge whatever the sampling does not show
  VelocityReference dvOf = VelocityReference::Usual;
  double move = 10.0;               // [%] of the width by which the bands may be moved
  std::optional<Stretch> search{};  // of the record, where the waveform is looked for
  bool mirrored = false;            // by the mirrored bands
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
  const char* reference;  // what the defined one is of, for people
};

/// What a record shows where the bands lie over it.  Of a mirrored one the overlay is the record
/// turned over, as it lies in the bands; the entries have the record's own signs.
struct Judgement {
  Overlay overlay;
  analysis::Verdict bands;
  std::optional<VelocityVerdict> velocity;  // of a classical pulse
  double correlation;                       // with the waveform, over the pulse
  Entries entries;                          // every number of it
  std::vector<std::string> warnings;        // on the record
  double begin = 0.0;  // [s] of the definition's first sample, as the record counts

  bool Passes() const { return bands.outside == 0 && (!velocity || velocity->passes); }
  /// What fails, for people; empty if nothing does.
  std::string Failed() const;
};

/// Holds that a record is sampled as often as a definition, and has ten samples in its pulse.
/// @throws Error if it is not, and the settings do not force a verdict
void RequireSampling(const wave_def::CWaveDef& def, const Record& record,
                     const JudgeSettings& settings);

/// Lays a record over a definition and compares it with the bands.
///
/// The main pulse of a classical definition, otherwise the whole waveform, is found by
/// cross-correlation.  The standards let the bands of a pulse be laid over the record where they
/// fit best: one that leaves them is moved by up to a share of the pulse's width.  Where they fit
/// nowhere the judgement is that of the best correlation, which shows people what is wrong.
/// @throws Error where there is no verdict: the definition has no bands, the record does not show
///         the waveform, shows it upside down or not wholly, its sampling does not show enough of
///         it (unless forced), its unit does not go with the definition's, or a setting is wrong
Judgement Judge(const wave_def::CWaveDef& def, const Record& record,
                const JudgeSettings& settings = {});

}  // namespace qarv::assess
