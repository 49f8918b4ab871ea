// How the controller samples: frequency range to sampling rate, frame to spectral lines.
#pragma once

#include "common/int_types.h"

namespace qarv::com_def::comdefsystemconst {

/// The sampling frequency for the analysis frequency fmax [Hz]: 2.56 fmax, the margin over the
/// Nyquist rate of 2 fmax that anti-aliasing filters of spectrum analysers need.
inline double ConvFmaxToFsampByVal(double fmax) { return 2.56 * fmax; }

/// The number of spectral lines for a frame of nsamp samples: nsamp / 2, rounded down.  With line 0
/// these are nsamp / 2 + 1 lines, which hold the whole spectrum of a real frame.
inline common::uint64 ConvNsampToNlineByVal(common::uint64 nsamp) { return nsamp / 2; }

}  // namespace qarv::com_def::comdefsystemconst
