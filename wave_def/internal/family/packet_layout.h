// How the packets of a sine beat or burst follow each other.
#pragma once

#include "common/int_types.h"
#include "family/total_length.h"
#include "wave_def/wave_def_sine_beat_burst.h"

namespace qarv::wave_def {

/// How the packets are laid out.  [sample]
struct PacketLayout {
  common::uint64 packet;  // length of one
  common::uint64 rest;    // between two; wrapped below 0 for a negative time
  TotalLength total;
};
PacketLayout LayOut(const CWaveDefSineBeatBurst& def, double fsamp);

}  // namespace qarv::wave_def
