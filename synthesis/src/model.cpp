// Components as a definition, and their sum.
#include "model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "wave_def/wave_def.h"

namespace qarv::synthesis {

using common::uint64;

Element WholeSampleWavelet(double frequency, unsigned int halves, double fsamp) {
  const double N = halves;
  const uint64 L =
      std::max<uint64>(halves + 1, common::RoundToIndex(N * fsamp / (2.0 * frequency)));
  double F = N * fsamp / (2.0 * static_cast<double>(L));
  // The generator truncates the length; a rounding must not cost it the last sample.
  while (common::TruncToIndex(N * 0.5 * fsamp / F) < L) F = std::nextafter(F, 0.0);
  Element out;
  out.frequency = F;
  out.halves = halves;
  out.length = L;
  return out;
}

namespace {

/// The delay that the generator takes as that sample: it divides by the interval, and floors.
double DelayOf(uint64 sample, double fsamp) {
  const double dt = 1.0 / fsamp;
  double delay = static_cast<double>(sample) / fsamp;
  while (common::FloorToIndex(delay / dt) < sample) {
    delay = std::nextafter(delay, std::numeric_limits<double>::infinity());
  }
  return delay;
}

double MassOf(double frequency, double zeta) {
  return common::kTwoPi * frequency * (zeta * zeta + 1.0);
}

}  // namespace

wave_def::CWaveDefDamping DefinitionOf(const Model& model) {
  wave_def::CWaveDefDamping out;
  out.SetNsamp(model.nsamp);
  out.SetSyncWaveType(model.method);
  out.SetFreq(model.compFrequency);
  out.SetZeta(model.compZeta);
  for (const Element& element : model.elements) {
    wave_def::CWaveDefDampingElm elm;
    elm.SetFreq(element.frequency);
    elm.SetAmpl(element.ampl);
    elm.SetZeta(element.zeta);
    elm.SetNumHalf(element.halves);
    elm.SetDelay(DelayOf(element.start, model.fsamp));
    out.Add(std::move(elm));
  }
  return out;
}

std::vector<double> GenerateWave(const wave_def::CWaveDefDamping& definition, double fsamp) {
  wave_def::CWaveDef def;
  def.SetFsamp(fsamp);
  if (!def.SetDefDamping(definition)) return {};
  return {def.GetWave().begin(), def.GetWave().end()};
}

Compensation CompensationOf(const Model& model) {
  if (!model.HasCompensation()) return {};
  double V = 0.0;
  double D = 0.0;
  for (const Element& e : model.elements) {
    const double m = MassOf(e.frequency, e.zeta);
    V += e.ampl / m;
    D += -2.0 * e.zeta * e.ampl / (m * m) - e.ampl / m * DelayOf(e.start, model.fsamp);
  }
  const double m = MassOf(model.compFrequency, model.compZeta);
  const double delay = V != 0.0 ? -D / V - 2.0 * model.compZeta / m : 0.0;
  const double shift = std::max(-delay, 0.0);
  return {shift, delay + shift};
}

double CompensationShare(const Model& model, const Element& element) {
  return -MassOf(model.compFrequency, model.compZeta) / MassOf(element.frequency, element.zeta);
}

Summation::Summation(const Model& model) {
  if (model.HasCompensation()) return;
  for (const Element& element : model.elements) {
    Model one = model;
    one.elements = {element};
    one.elements[0].ampl = 1.0;
    one.elements[0].start = 0;
    if (model.IsWavelet()) {
      one.nsamp = element.length;
    } else {
      one.nsamp -= element.start;
    }
    units_.push_back(GenerateWave(DefinitionOf(one), model.fsamp));
  }
}

void Summation::Sum(const Model& model, std::vector<double>* wave) const {
  if (model.HasCompensation()) {
    *wave = GenerateWave(DefinitionOf(model), model.fsamp);
    return;
  }
  wave->assign(model.nsamp, 0.0);
  for (std::size_t j = 0; j < units_.size(); ++j) {
    const double A = model.elements[j].ampl;
    const std::vector<double>& unit = units_[j];
    double* const out = wave->data() + model.elements[j].start;
    const std::size_t n = std::min<std::size_t>(unit.size(), model.nsamp - model.elements[j].start);
    for (std::size_t i = 0; i < n; ++i) out[i] += A * unit[i];
  }
}

MotionSeries Integrate(const std::vector<double>& wave, double fsamp) {
  MotionSeries out{std::vector<double>(wave.size()), std::vector<double>(wave.size())};
  const double half = 0.5 / fsamp;
  for (std::size_t i = 1; i < wave.size(); ++i) {
    out.velocity[i] = out.velocity[i - 1] + half * (wave[i - 1] + wave[i]);
    out.displacement[i] = out.displacement[i - 1] + half * (out.velocity[i - 1] + out.velocity[i]);
  }
  return out;
}

}  // namespace qarv::synthesis
