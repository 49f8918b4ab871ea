// What the compensation of a classical pulse works on: the pulse with its bands, and the settings.
//
// The stage works in samples (the sample interval is 1) and upright: a negative pulse comes in
// negated, with its bands swapped and negated, and goes out negated again.
//
//   A         peak of the main pulse, positive here [amplitude unit]
//   N         length of the frame
//   iS, iE    first and last sample of the main pulse
//   iPS, iPE  ends of the rests before and after it; the compensation lies beyond them
#pragma once

#include <limits>
#include <vector>

#include "common/int_types.h"
#include "common/numeric/index_conv.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def::compensation {

using common::int64;
using common::uint64;
using Wave = std::vector<double>;

/// The band value that means: no limit at this sample.
inline constexpr double kNoLimit = std::numeric_limits<double>::lowest();
/// The least limit outside the main pulse, a share of the peak: what a shaker's noise and ringing
/// need.
inline constexpr double kLeastLimit = 0.01;

/// A length in samples, rounded down.  What no frame has (a NaN, a negative length, an endless one)
/// becomes longer than every frame.
inline int64 LengthOf(double samples) {
  constexpr uint64 kLongest = uint64{1} << 50;
  const uint64 n = common::FloorToIndex(samples);
  return static_cast<int64>(n < kLongest ? n : kLongest);
}

/// Where the main pulse lies.  [sample] Signed, because a rest may reach beyond the frame.
struct Place {
  int64 iS, iE, iPS, iPE;
  Place Shifted(int64 n) const { return {iS + n, iE + n, iPS + n, iPE + n}; }
};

/// A main pulse in its frame, with its bands.
struct Pulse {
  Place at;
  double A;
  Wave wave, upper, lower;

  int64 N() const { return static_cast<int64>(wave.size()); }
};

/// What the definition says of the compensation.
struct Settings {
  CWaveDefClassical::COMP_TYPE type;
  bool symmetric;    // the same pulse before and after
  double pre, post;  // scale of the bands before and after the pulse
  wave_def_sub::WAVE_KIND shape;
  CWaveDefClassical::TOL_KIND kind;
  CWaveDefTolSpecify::BASE_STANDARD_TYPE base;  // none, unless the kind is TOL_SPECIFY
  double optRatLevel;                           // 0: the pulse stays nominal, 1: the least stroke
  double fsamp;                                 // [Hz]
  bool negative;                                // the pulse came in negated

  /// Compensation on one side only; there is nothing to be symmetric then.
  bool IsOneSided() const { return (pre == 0.0) != (post == 0.0); }
  bool IsSymmetric() const { return symmetric && !IsOneSided(); }
  /// Whether the displacement is asked to lie on the positive side.
  bool HasSideTest() const {
    using Def = CWaveDefClassical;
    if (type != Def::CMP_OPTIMIZED) return false;
    return kind == Def::TOL_FIXED_5 || kind == Def::TOL_FIXED_7 ||
           base == CWaveDefTolSpecify::BASE_STD_2 || base == CWaveDefTolSpecify::BASE_STD_5;
  }
};

/// The compensation that was drawn, as the definition reports it.
struct Drawn {
  double levelPre, levelPost;  // of the pulses [ratio to A]
  double sharePre, sharePost;  // of the main area that they cancel [1]
};

/// What a compensation took, for those who watch over its growth.
struct Work {
  uint64 attempts = 0;  // places, lengths and waveforms that were tried
  uint64 samples = 0;   // that they went through
};

/// A waveform that is tried: the pulse, shifted perhaps, and its compensation.
struct Attempt {
  Pulse pulse;  // with the bands shifted like the wave
  Wave comp;    // wave and compensation together
  Drawn drawn;
  int64 shift;  // [sample]
};

}  // namespace qarv::wave_def::compensation
