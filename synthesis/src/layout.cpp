// The start of a synthesis: how many components, how long, where.
#include "layout.h"

#include <algorithm>
#include <cmath>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"

namespace qarv::synthesis {

using common::uint64;
using common::elementary::Exp;
using common::elementary::Log;

double Draws::Next() {
  state_ += 0x9e3779b97f4a7c15ULL;
  uint64 z = state_;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
  z ^= z >> 31;
  return static_cast<double>(z >> 11) * 0x1p-53;
}

std::size_t Draws::Below(std::size_t n) {
  // truncated
  return static_cast<std::size_t>(common::TruncToIndex(Next() * static_cast<double>(n)));
}

namespace {

/// Frequencies with `e` components per octave, evenly from the first to the last.
struct Density {
  double perOctave;
  std::vector<double> frequencies;
};

Density DensityOf(const SrsRequirement& requirement) {
  constexpr double kLn2 = 0.6931471805599453;
  const double f1 = requirement.points.front().frequency;
  const double span = Log(requirement.points.back().frequency / f1);
  const double Q = 0.5 / requirement.zeta;
  Density out{12.0 * std::sqrt(std::max(0.5, 0.1 * Q)), {}};
  const uint64 n = std::max<uint64>(1, common::RoundToIndex(span / kLn2 * out.perOctave));
  for (uint64 j = 0; j <= n; ++j) {
    const double share = static_cast<double>(j) / static_cast<double>(n);
    out.frequencies.push_back(f1 * Exp(share * span));
  }
  return out;
}

/// The largest odd number of half cycles that fits, at least 3.
unsigned int HalvesFor(const LayoutRule& rule, double frequency, double seconds) {
  const double most = std::floor(2.0 * frequency * rule.room * seconds);
  const double n = std::min(static_cast<double>(rule.halves), most);
  const auto whole = static_cast<unsigned int>(common::FloorToIndex(std::max(n, 3.0)));
  return whole % 2 == 0 ? whole - 1 : whole;
}

/// The last sample at which an element may start.
uint64 RoomOf(const Model& model, const Element& element) {
  constexpr double kEarly = 0.08;  // [frame] within which damped sines start
  if (!model.IsWavelet()) {
    return common::TruncToIndex(kEarly * static_cast<double>(model.nsamp));  // truncated
  }
  return model.nsamp > element.length + 2 ? model.nsamp - element.length - 2 : 0;
}

Element MakeElement(const Model& model, const LayoutRule& rule, double F) {
  const double seconds = model.SecondsAt(model.nsamp);
  if (model.IsWavelet()) {
    return WholeSampleWavelet(F, HalvesFor(rule, F, seconds), model.fsamp);
  }
  Element out;
  out.frequency = F;
  // Of what starts in time e^-7 is left at the end.
  out.zeta = std::clamp(7.0 / (common::kTwoPi * F * 0.9 * seconds), 0.05, 0.3);
  return out;
}

/// The amplitude that alone has about the required level: an oscillator builds up over the cycles.
double AmplitudeFor(const Model& model, const Element& element, const SrsRequirement& requirement) {
  const double Q = 0.5 / requirement.zeta;
  double N = element.halves;
  double factor = 1.0;
  if (!model.IsWavelet()) {
    N = 2.0 / (common::kPi * element.zeta);
    if (!model.HasCompensation()) factor = 1.25;
  }
  const double gain = std::max(1.5, Q * (1.0 - Exp(-0.3 * common::kPi * N / Q)));
  return factor * RequiredLevel(requirement, element.frequency) / gain;
}

void SetSigns(const LayoutRule& rule, std::vector<Element>* elements) {
  Draws draws(rule.seed ^ 0x5167);
  for (std::size_t j = 0; j < elements->size(); ++j) {
    const bool negative = rule.signs == Signs::Alternating ? j % 2 == 1
                          : rule.signs == Signs::Random    ? draws.Next() < 0.5
                                                           : false;
    if (negative) (*elements)[j].ampl = -(*elements)[j].ampl;
  }
}

void SetStarts(const LayoutRule& rule, double perOctave, Model* model) {
  auto& elements = model->elements;
  Draws draws(rule.seed);
  double last = 1.0;  // [sample]
  for (std::size_t n = 0; n < elements.size(); ++n) {
    Element& e = elements[rule.order == Order::LowFirst ? n : elements.size() - 1 - n];
    const uint64 room = RoomOf(*model, e);
    if (rule.order == Order::Random) {
      // truncated
      e.start = common::TruncToIndex(static_cast<double>(room) * draws.Next());
      continue;
    }
    e.start = std::min(room, common::FloorToIndex(last));  // floor
    if (rule.order == Order::Together) continue;
    last += std::ceil(rule.spread * 2.4 / perOctave * model->fsamp / e.frequency);
  }
}

}  // namespace

Model MakeLayout(const SrsRequirement& requirement, Method method, double fsamp, uint64 nsamp,
                 const LayoutRule& rule) {
  Model model;
  model.method = method;
  model.fsamp = fsamp;
  model.nsamp = nsamp;
  if (model.HasCompensation()) {
    model.compFrequency = requirement.points.front().frequency / 3.0;
    model.compZeta = 0.95;
  }
  const Density density = DensityOf(requirement);
  for (const double F : density.frequencies) {
    Element e = MakeElement(model, rule, F);
    if (!model.elements.empty() && model.elements.back().frequency == e.frequency) continue;
    e.ampl = AmplitudeFor(model, e, requirement);
    model.elements.push_back(e);
  }
  SetSigns(rule, &model.elements);
  SetStarts(rule, density.perOctave, &model);
  return model;
}

}  // namespace qarv::synthesis
