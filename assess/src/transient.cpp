// The durations, the energy and the severity of a transient, as results.
#include "assess/transient.h"

#include <algorithm>
#include <cmath>

#include "analysis/transient.h"
#include "assess/error.h"
#include "assess/spectrum.h"

namespace qarv::assess {

namespace {

/// The largest pseudo velocity and its frequency.
void AddSeverity(std::span<const double> wave, double fsamp, const std::string& unit,
                 Entries* out) {
  SpectrumSettings settings;
  settings.response = "pseudo-velocity";
  settings.perOctave = 6.0;
  try {
    const Spectrum spectrum = SpectrumOf({wave, fsamp, unit}, settings);
    const auto largest = std::max_element(
        spectrum.points.begin(), spectrum.points.end(),
        [](const auto& a, const auto& b) { return a.Total().Maximax() < b.Total().Maximax(); });
    out->push_back({"pseudo_velocity", "largest pseudo velocity (Q 10)",
                    spectrum.factor * largest->Total().Maximax(), spectrum.unit});
    out->push_back({"pseudo_velocity_frequency", "  at", largest->frequency, "Hz"});
  } catch (const Error&) {
    // A sampling frequency that leaves no lines leaves no severity.
  }
}

}  // namespace

Entries TransientEntries(std::span<const double> wave, double fsamp, const std::string& unit) {
  Entries out;
  if (!std::all_of(wave.begin(), wave.end(), [](double v) { return std::isfinite(v); })) return out;
  const analysis::Transient t = analysis::TransientOf(wave, fsamp);
  const std::string squared = unit.empty() ? "s" : "(" + unit + ")^2 s";
  out.push_back({"duration_tenth", "effective duration Te (10 %)", t.durationTenth, "s"});
  out.push_back({"duration_energy", "effective duration TE (energy)", t.durationEnergy, "s"});
  out.push_back({"rms", "rms", t.rms, unit});
  out.push_back({"energy", "energy", t.energy, squared});
  out.push_back({"centroid", "centroid of the energy", t.centroid, "s"});
  out.push_back({"rms_duration", "rms duration", t.rmsDuration, "s"});
  out.push_back({"skewness", "  skewness", t.skewness, "s"});
  out.push_back({"kurtosis", "  kurtosis", t.kurtosis, "s"});
  AddSeverity(wave, fsamp, unit, &out);
  return out;
}

}  // namespace qarv::assess
