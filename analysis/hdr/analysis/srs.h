// Shock response spectra: the largest responses of oscillators to a shock, over their natural
// frequency.
#pragma once

#include <array>
#include <span>
#include <vector>

namespace qarv::analysis {

/// Which response of the oscillator to the acceleration a of its base; z is the displacement of the
/// mass against its base, w = 2 pi f, c the damping ratio.
///
///     z'' + 2 c w z' + w^2 z = -a
///
/// Source: ISO 18431-4, Shock-response spectrum analysis, which has these five.
enum class SrsResponse {
  /// Of the mass [unit of the input]: -2 c w z' - w^2 z.
  AbsoluteAcceleration,
  /// Of the mass against its base [unit of the input x s^2]: z.
  RelativeDisplacement,
  /// [unit of the input x s]: w z; near the relative velocity about w, and a measure of the strain.
  PseudoVelocity,
  /// Of the mass against its base [unit of the input x s]: z'.  What a damper feels; of soft
  /// oscillators it is the velocity of the base, turned over.
  RelativeVelocity,
  /// [unit of the input]: w^2 z, what would bend the spring as far at rest, turned over as z is.
  /// Without damping it is the absolute acceleration, turned over.
  StaticEquivalent,
};

/// The recursive filter of one oscillator, ramp invariant: exact at the samples for an input that
/// is straight in between (ISO 18431-4).
///
///     y[k] = b0 x[k] + b1 x[k - 1] + b2 x[k - 2] - a1 y[k - 1] - a2 y[k - 2]
struct SrsFilter {
  double b0;  ///< of the input
  double b1;  ///< of the input before
  double b2;  ///< of the input before that
  double a1;  ///< of the response before
  double a2;  ///< of the response before that
};

/// The filter of one oscillator.
/// @param[in] frequency  natural frequency [Hz], above 0 and below fsamp / 2
/// @param[in] zeta       damping ratio, 0 <= zeta < 1
SrsFilter MakeSrsFilter(double frequency, double zeta, double fsamp, SrsResponse response);

/// The largest responses of a stretch of time: to the positive side and to the negative, 0 if there
/// is none.
struct SrsExtremes {
  double positive = 0.0;  ///< [unit of the response]
  double negative = 0.0;  ///< as a negative number [unit of the response]
  /// The larger magnitude of the two.
  double Maximax() const { return positive > -negative ? positive : -negative; }
};

/// One line of a spectrum.
struct SrsPoint {
  double frequency;      ///< [Hz]
  SrsExtremes primary;   ///< while the shock lasts, the lines that lead to it and from it included
  SrsExtremes residual;  ///< afterwards, of the free decay
  /// Of both.
  SrsExtremes Total() const;
};

/// The spectrum of a shock.
///
/// The shock is taken as straight between its samples.  It rises from 0 in the interval before its
/// first sample and falls to 0 in the interval behind its last one; both belong to it, so that the
/// primary response ends, and the residual begins, one interval behind the last sample.  The
/// oscillators start at rest.
///
/// @code
/// const std::vector<double> shock(11, 1.0);  // a step up, and down after 11 ms
/// const auto lines = SrsFrequencies(10.0, 100.0, 6.0);
/// const auto srs = CalcSrs(shock, 1000.0, lines, 0.05, SrsResponse::AbsoluteAcceleration);
/// const bool whole = srs.size() == lines.size();              // true
/// const bool amplified = srs.back().Total().Maximax() > 1.0;  // true
/// @endcode
///
/// For that input every extreme, also between samples, is within 1e-9 of the exact one up to a
/// quarter of the sampling frequency and down to 1e-6 Hz.  Whether straight lines are the shock is
/// another question: below 10 samples per cycle of an oscillator its answer to what they leave out
/// is felt.  The results have the same bits on every machine.
///
/// Source: ISO 18431-4, Shock-response spectrum analysis.
///
/// @param[in] shock        acceleration of the base, taken at fsamp [Hz]
/// @param[in] frequencies  natural frequencies [Hz]
/// @return a point for each frequency; none if fsamp is not a positive number, zeta is not within
///         0 to below 1, a frequency is not above 0 and below fsamp / 2, or a sample is not a
///         finite number
///
/// Cost: frequencies times samples, sixteen frequencies side by side, and two copies of the shock
/// (four, where a frequency is so low that the shock is over within a cycle).  A shock that brings
/// a response to nearly the same height again and again costs more, as every top is looked at: a
/// steady sine twice as much, one of ten samples a cycle that slowly grows forty times.
std::vector<SrsPoint> CalcSrs(std::span<const double> shock, double fsamp,
                              std::span<const double> frequencies, double zeta,
                              SrsResponse response);

/// A top of a response, or a bottom.
struct SrsPeak {
  double time;   ///< [s] from the first sample of the shock
  double value;  ///< [unit of the input], with its sign
};

/// Where the absolute accelerations of oscillators have their large extremes.
///
/// The shock is that of CalcSrs, and so are the responses; the free decay behind the shock is
/// included.  Each extreme is that of a cubic through two samples and their slopes: its value is
/// within 0.1 % from ten samples per cycle on.
/// @param[in] keep  share of an oscillator's largest extreme, above 0 to 1
/// @return for each frequency its local extremes of at least `keep` times the largest, in the order
///         of time, at least one if the shock is not 0; empty where CalcSrs is, or for another keep
///
/// Cost: that of CalcSrs for a short shock, and a second look at the blocks that reach `keep`.
std::vector<std::vector<SrsPeak>> CalcSrsPeaks(std::span<const double> shock, double fsamp,
                                               std::span<const double> frequencies, double zeta,
                                               double keep);

/// Frequencies from low to high [Hz], evenly spaced on a logarithmic scale, `perOctave` in each
/// octave; the last one is the largest that is not above high.
/// @return none unless 0 < low <= high, both are numbers, and perOctave is above 0
std::vector<double> SrsFrequencies(double low, double high, double perOctave);

}  // namespace qarv::analysis
