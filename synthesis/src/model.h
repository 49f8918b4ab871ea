// A sum of components on the samples of a record.
#pragma once

#include <vector>

#include "common/int_types.h"
#include "element.h"
#include "wave_def/wave_def_damping.h"

namespace qarv::synthesis {

/// Components and what they are summed to.
struct Model {
  Method method = com_def::comdefconst::SYNC_WAVE_WAVELET;
  double fsamp = 0.0;                          // [Hz]
  common::uint64 nsamp = 0;                    // [sample]
  double compFrequency = 0.0, compZeta = 0.0;  // of the compensating sine, for damped sines
  std::vector<Element> elements;

  bool IsWavelet() const { return method == com_def::comdefconst::SYNC_WAVE_WAVELET; }
  bool HasCompensation() const { return method == com_def::comdefconst::SYNC_WAVE_DAMPED_SINE; }
  double SecondsAt(common::uint64 sample) const { return static_cast<double>(sample) / fsamp; }
};

/// Makes a wavelet whose samples sum over whole periods, so that its velocity and displacement end
/// at 0 on the samples: the frequency next to `frequency` of which so many half cycles last a whole
/// number of samples.
Element WholeSampleWavelet(double frequency, unsigned int halves, double fsamp);

/// The definition with the amplitudes of the model.
wave_def::CWaveDefDamping DefinitionOf(const Model& model);

/// The waveform of a definition; empty where there is none.
std::vector<double> GenerateWave(const wave_def::CWaveDefDamping& definition, double fsamp);

/// How the compensating sine follows from the components: where it and they start.
struct Compensation {
  double shift = 0.0;  // [s] of all components
  double delay = 0.0;  // [s] of the compensating one
};
Compensation CompensationOf(const Model& model);
/// The amplitude of the compensating sine for each unit of an element's.
double CompensationShare(const Model& model, const Element& element);

/// Sums the components again and again with other amplitudes: their samples are kept.
class Summation {
 public:
  explicit Summation(const Model& model);
  /// @param[in] model  that of the construction, with any amplitudes
  void Sum(const Model& model, std::vector<double>* wave) const;
  /// The samples of an element of amplitude 1, from its start on.
  const std::vector<double>& UnitOf(std::size_t element) const { return units_[element]; }

 private:
  std::vector<std::vector<double>> units_;  // none where the compensation depends on amplitudes
};

/// Velocity and displacement from rest, by the trapezoidal rule.
struct MotionSeries {
  std::vector<double> velocity, displacement;
};
MotionSeries Integrate(const std::vector<double>& wave, double fsamp);

}  // namespace qarv::synthesis
