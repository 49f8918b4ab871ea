// The shock response spectrum of a waveform or a record, with its units.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "analysis/srs.h"
#include "assess/error.h"
#include "assess/record.h"

namespace qarv::assess {

/// Below it an oscillator feels that its input is made of straight lines between samples.
inline constexpr double kSamplesPerCycle = 10.0;
/// The highest natural frequency of a spectrum [of the sampling frequency].
inline constexpr double kHighestLine = 0.499;

struct SpectrumSettings {
  std::string response = "acceleration";  // one of ResponseNames
  double q = 10.0;                        // quality factor, 1 / (2 damping)
  std::optional<double> damping{};        // ratio; in the place of q
  std::optional<double> from{}, to{};     // [Hz]; else 5 Hz to a tenth of the sampling frequency
  double perOctave = 12.0;
  std::optional<int> points{};  // in the place of perOctave
};

/// The names of the responses: "acceleration", "displacement", "pseudo-velocity",
/// "relative-velocity", "static-equivalent".
std::string ResponseNames(const std::string& separator);

/// A shock response spectrum with what it is a spectrum of.
struct Spectrum {
  std::vector<analysis::SrsPoint> points;  // at least one, in the order of their frequencies
  const char* response;                    // its name for people
  double zeta;                             // damping ratio
  double factor;                           // from the points to the unit
  std::string unit;                        // of the response; empty if there is none
  bool known;                              // whether motion is in m/s and mm
};

/// Is told how many lines of how many are done.
using SpectrumProgress = std::function<void(std::size_t done, std::size_t all)>;

/// The spectrum of a record.  What is 0 at its end is not part of the shock.
/// @throws Error where there is none: no samples, a sample that is no number, or settings that
///         give no lines
Spectrum SpectrumOf(const Record& record, const SpectrumSettings& settings,
                    const SpectrumProgress& progress = {});

/// Whether a spectrum goes where the record has fewer than kSamplesPerCycle.
bool IsCoarse(const Spectrum& spectrum, double fsamp);
/// What is said of such a spectrum.
std::string CoarseText(double fsamp);

}  // namespace qarv::assess
