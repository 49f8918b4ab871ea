// Why a classical pulse cannot be compensated.
#pragma once

#include "common/int_types.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def::compensation {

/// What a side has and what it needs.  [sample]
struct Room {
  common::int64 needed;  // of the last arrangement that was tried; 0 if none was
  common::int64 available;
};

/// What keeps a drawn compensation from being planned.
struct Shortage {
  double levelPre, levelPost;  // that the limits allow [ratio to A]
  Room pre, post;
};

/// Why there is no compensation.
struct Refusal {
  enum Reason { None, NotAPulse, NoRoom, OutOfTolerance } reason = None;
  Shortage shortage{};  // NoRoom, of the types that are drawn
  common::int64 worst =
      0;  // [sample] OutOfTolerance: the first sample that violates its limit at gain 1
  double excess = 0.0;  // [ratio to A] by how much
};

/// Generates a definition's pulse and compensates it, to see why that fails.
/// @param[in] fsamp  sampling frequency of the caller [Hz]
/// @return no reason where there is a compensation, and where it is not that which fails
Refusal WhyNotCompensated(const CWaveDefClassical& def, double fsamp);

}  // namespace qarv::wave_def::compensation

namespace qarv::wave_def {

/// Whether CmpType names one of the four compensations.
bool HasCompensationType(const CWaveDefClassical& params);

}  // namespace qarv::wave_def
