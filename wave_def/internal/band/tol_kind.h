// Which numbers are tolerance kinds: the enumeration's first and last one, for all who ask.
#pragma once

#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def {

/// Whether it names a tolerance kind; setters and records take any number.
inline bool IsTolKind(CWaveDefClassical::TOL_KIND kind) {
  return kind >= CWaveDefClassical::TOL_FIXED_1 && kind <= CWaveDefClassical::TOL_SPECIFY;
}

}  // namespace qarv::wave_def
