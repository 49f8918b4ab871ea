// A record of several shocks: each of them judged, and what the record as a whole warns of.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "analysis/events.h"
#include "assess/judgement.h"

namespace qarv::assess {

/// Which shocks are judged by the mirrored bands.
enum class Polarity {
  Usual,  ///< the negative ones of several shocks; one alone that is turned over is no verdict
  Both,   ///< every negative one
  Own,    ///< none: what is turned over is no verdict
};

struct SeriesSettings {
  JudgeSettings judge;
  Polarity polarity = Polarity::Usual;
  double threshold = 25.0;          // [%] of the definition's peak that a shock passes
  std::optional<double> minGap{};   // [s] between two shocks; three widths of the pulse without
  std::optional<unsigned> count{};  // how many there have to be
  std::vector<double> at{};         // [s] only those at these times, as the record counts
};

/// One shock of a record.
struct ShockVerdict {
  double time;                         // [s] of its peak, as the record counts
  double peak;                         // [amplitude unit of the definition], as it was recorded
  bool negative;                       // judged by the mirrored bands
  std::optional<Judgement> judgement;  // none where there is no verdict
  std::string reason;                  // why there is none

  bool Passes() const { return judgement && judgement->Passes(); }
};

struct Series {
  std::vector<ShockVerdict> shocks;   // at least one
  std::vector<std::string> warnings;  // on the record: offset, noise, clipping

  /// Whether a shock is judged and fails, and whether there is one without a verdict.
  bool Fails() const;
  bool IsOpen() const;
};

/// Finds the shocks of a record and judges each: the part of the record around it, in which the
/// pulse is looked for no farther than halfway to its neighbours.  A record that has no shock, or a
/// definition that is none, is judged as a whole.
///
/// A shock that shows no pulse is left without a verdict and does not keep the others from theirs;
/// of one shock alone it is an error, as in Judge.
/// @throws Error as Judge does, and where there are not as many shocks as there have to be, or none
///         at a time that was asked for
Series JudgeSeries(const wave_def::CWaveDef& def, const Record& record,
                   const SeriesSettings& settings = {});

}  // namespace qarv::assess
