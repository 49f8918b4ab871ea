// The words for the figures of a synthesis.
#include "assess/synthesis.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "assess/motion.h"
#include "com_def/com_def_const.h"

namespace qarv::assess {

using synthesis::SrsComparison;
using synthesis::SrsDeviation;
using synthesis::SrsFailure;
using synthesis::SrsQuantity;
using synthesis::SrsResult;
using synthesis::SrsSettings;

namespace {

template <class E>
using Names = std::array<std::pair<const char*, E>, 3>;

constexpr Names<com_def::comdefconst::SYNC_WAVE_TYPE> kMethods{{
    {"wavelet", com_def::comdefconst::SYNC_WAVE_WAVELET},
    {"damped", com_def::comdefconst::SYNC_WAVE_DAMPED_SINE},
    {"modified", com_def::comdefconst::SYNC_WAVE_DAMPED_SINE_MODIFIED},
}};
constexpr Names<synthesis::SrsShape> kShapes{{
    {"shock", synthesis::SrsShape::Shock},
    {"sweep", synthesis::SrsShape::Sweep},
    {"random", synthesis::SrsShape::Random},
}};
constexpr Names<synthesis::SrsAim> kAims{{
    {"displacement", synthesis::SrsAim::LeastDisplacement},
    {"velocity", synthesis::SrsAim::LeastVelocity},
    {"acceleration", synthesis::SrsAim::LeastAcceleration},
}};

template <class E>
std::string NamesOf(const Names<E>& names, const std::string& separator) {
  std::string out;
  for (const auto& [name, value] : names) out += (out.empty() ? "" : separator) + name;
  return out;
}

template <class E>
E ValueOf(const Names<E>& names, const char* key, const std::string& text) {
  for (const auto& [name, value] : names) {
    if (text == name) return value;
  }
  throw Error(key, "is none of " + NamesOf(names, ", "));
}

const char* NameOf(synthesis::SrsShape shape) {
  for (const auto& [name, value] : kShapes) {
    if (value == shape) return name;
  }
  return "";
}

/// The tighter one of a limit, 0 for none, and another.
double Tighter(double limit, const std::optional<double>& other) {
  if (!other) return limit;
  return limit == 0.0 ? *other : std::min(limit, *other);
}

synthesis::MotionLimits Joined(const Requirement& requirement, const Machine& machine) {
  const MachineLimits m = LimitsOf(machine, requirement.unit);
  const MotionUnits units = MotionUnitsOf(requirement.unit);
  const auto in = [](const std::optional<double>& limit, double unit) {
    return limit ? std::optional(*limit / unit) : limit;
  };
  std::optional<double> way;  // to one side: a waveform goes to both
  if (m.up && m.down) way = std::min(*m.up, *m.down);
  if (way == 0.0) {
    throw Error("machine",
                "its StartPosition leaves no way to one side, and the waveform needs both");
  }
  return {Tighter(requirement.limits.acceleration, m.acceleration),
          Tighter(requirement.limits.velocity, in(m.velocity, units.velocity)),
          Tighter(requirement.limits.displacement, in(way, units.displacement))};
}

/// Whether there is no waveform because of what was asked, rather than of what can be reached.
bool IsBadInput(SrsFailure failure) {
  return failure == SrsFailure::BadRequirement || failure == SrsFailure::RecordTooShort ||
         failure == SrsFailure::SamplingTooLow;
}

void AddDeviation(const std::string& key, const std::string& label, const SrsDeviation& d,
                  Entries* out) {
  out->push_back({key + "Worst", "worst " + label, d.worst, "dB"});
  out->push_back({key + "WorstFrequency", "  at", d.worstFrequency, "Hz"});
  out->push_back({key + "Rms", "rms " + label, d.rms, "dB"});
  const double share = 100.0 * static_cast<double>(d.inside) / static_cast<double>(d.lines);
  out->push_back({key + "Inside", "inside " + label, share, "%"});
}

void AddComparison(const Requirement& requirement, const SrsComparison& c, Entries* out) {
  AddDeviation("grid", "on the lines", c.onGrid, out);
  AddDeviation("between", "in between", c.between, out);
  out->push_back({"polarity", "sides differ, worst", c.polarity, "dB"});
  out->push_back({"polarityMedian", "sides differ, median", c.polarityMedian, "dB"});
  const auto addDuration = [&](const char* key, double found, double required) {
    out->push_back({key, key, found, "s"});
    if (required == 0.0) return;
    out->push_back({std::string(key) + "Required", "  required", required, "s"});
  };
  addDuration("Te", c.durations.Te, requirement.spectrum.durations.Te);
  addDuration("TE", c.durations.TE, requirement.spectrum.durations.TE);
}

/// A quantity of the motion in the units of people.
struct Quantity {
  const char* name;
  const char* key;  // of its limit
  double factor;
  std::string unit;
  double synthesis::MotionLimits::*limit = nullptr;  // of a limited one
};

Quantity QuantityOf(const Requirement& requirement, SrsQuantity quantity) {
  const MotionUnits units = MotionUnitsOf(requirement.unit);
  switch (quantity) {
    case SrsQuantity::Acceleration:
      return {"acceleration", "MaxAccel", 1.0, requirement.unit,
              &synthesis::MotionLimits::acceleration};
    case SrsQuantity::Velocity:
      return {"velocity", "MaxVelocity", units.velocity, units.velocityUnit,
              &synthesis::MotionLimits::velocity};
    case SrsQuantity::Displacement:
      return {"displacement", "MaxDisplacement", units.displacement, units.displacementUnit,
              &synthesis::MotionLimits::displacement};
    case SrsQuantity::Te:
      return {"Te", "Te", 1.0, "s"};
    case SrsQuantity::TE:
      return {"TE", "TE", 1.0, "s"};
    case SrsQuantity::None:
      break;
  }
  return {"", "", 1.0, ""};
}

/// Whether a limit is tighter than the requirement's own.
bool IsOfMachine(const Quantity& q, const Requirement& requirement, const SrsSettings& settings) {
  return q.limit != nullptr && settings.limits.*q.limit != requirement.limits.*q.limit;
}

double EndVelocity(const SrsResult& result) {
  const double peak = result.motion.peakVelocity;
  return peak > 0.0 ? std::fabs(result.motion.residualVelocity) / peak : 0.0;
}

double EndDisplacement(const SrsResult& result) {
  const double peak = result.motion.peakDisplacement;
  return peak > 0.0 ? std::fabs(result.motion.residualDisplacement) / peak : 0.0;
}

/// Whether all components start at the same time.
bool StartTogether(const SrsResult& result) {
  const auto& elements = result.definition.GetDefDampingElmList();
  return std::all_of(elements.begin(), elements.end(), [&](const auto& element) {
    return element.GetDelay() == elements.front().GetDelay();
  });
}

}  // namespace

std::string SynthesisShapes(const std::string& separator) { return NamesOf(kShapes, separator); }
std::string SynthesisMethods(const std::string& separator) { return NamesOf(kMethods, separator); }
std::string SynthesisAims(const std::string& separator) { return NamesOf(kAims, separator); }

SrsSettings SettingsFor(const Requirement& requirement, const SynthesisRequest& request,
                        const std::optional<Machine>& machine) {
  SrsSettings settings;
  settings.fsamp = requirement.fsamp;
  settings.nsamp = requirement.nsamp;
  settings.limits = machine ? Joined(requirement, *machine) : requirement.limits;
  settings.method = ValueOf(kMethods, "method", request.method);
  settings.shape = ValueOf(kShapes, "shape", request.shape);
  if (!request.minimize.empty()) settings.aim = ValueOf(kAims, "minimize", request.minimize);
  if (!(request.within >= 0.0 && std::isfinite(request.within))) {
    throw Error("within", "is not 0 or above");
  }
  settings.within = request.within;
  settings.seed = request.seed;
  settings.quick = request.quick;
  return settings;
}

Synthesis Synthesize(const Requirement& requirement, const SynthesisRequest& request,
                     const std::optional<Machine>& machine,
                     const std::function<bool(double)>& progress) {
  Synthesis out;
  out.settings = SettingsFor(requirement, request, machine);
  out.settings.progress = progress;
  out.result = synthesis::SynthesizeSrs(requirement.spectrum, out.settings);
  out.settings.progress = {};  // it may not outlive the call
  out.failure = FailureText(requirement, out.settings, out.result);
  if (IsBadInput(out.result.failure)) throw Error("", out.failure);
  if (out.IsCancelled()) return out;
  out.definition = DefinitionOf(requirement, out.result);
  out.wave = definition::Generate(out.definition);
  out.warnings = SynthesisWarnings(requirement, out.settings, out.result);
  out.entries = SynthesisEntries(requirement, out.settings, out.result);
  if (machine) {
    const MachineComparison comparison = CompareWithMachine(out.wave, *machine);
    Append(MachineEntries(comparison), &out.entries);
    const std::vector<std::string> passed = MachineWarnings(comparison);
    out.warnings.insert(out.warnings.end(), passed.begin(), passed.end());
  }
  if (!out.failure.empty()) out.warnings.insert(out.warnings.begin(), out.failure);
  return out;
}

std::string SynthesisJson(Synthesis&& synthesis) {
  Entries entries = std::move(synthesis.entries);
  entries.push_back({"warnings", "warnings", std::move(synthesis.warnings), ""});
  return AsJson(entries);
}

definition::Definition DefinitionOf(const Requirement& requirement, const SrsResult& result) {
  definition::Definition out;
  out.settings.SetFsamp(result.fsamp);
  common::CUnitCtrl unit;
  if (common::CUnitCtrl::FromText(requirement.unit, &unit)) out.settings.SetUnitAmpl(unit);
  constexpr double kBand = 0.1;  // of the waveform, for who compares a record with it
  out.settings.SetTolUpperRat(kBand);
  out.settings.SetTolLowerRat(-kBand);
  out.set = result.definition;
  return out;
}

Entries SynthesisEntries(const Requirement& requirement, const SrsSettings& settings,
                         const SrsResult& result) {
  Entries out;
  if (!requirement.name.empty()) out.push_back({"name", "requirement", requirement.name, ""});
  AddComparison(requirement, result.comparison, &out);
  const auto add = [&](SrsQuantity quantity, double found, double limit) {
    const Quantity q = QuantityOf(requirement, quantity);
    out.push_back({q.name, std::string("peak ") + q.name, found * q.factor, q.unit});
    if (limit == 0.0) return;
    out.push_back({q.key, "  limit", limit * q.factor, q.unit});
  };
  add(SrsQuantity::Acceleration, result.peak, settings.limits.acceleration);
  add(SrsQuantity::Velocity, result.motion.peakVelocity, settings.limits.velocity);
  add(SrsQuantity::Displacement, result.motion.peakDisplacement, settings.limits.displacement);
  out.push_back({"endVelocity", "velocity left at the end", EndVelocity(result), "of its peak"});
  out.push_back({"endDisplacement", "displacement left", EndDisplacement(result), "of its peak"});
  out.push_back({"components", "components", result.definition.GetElmNum(), ""});
  out.push_back({"samples", "samples", result.definition.GetNsamp(), ""});
  out.push_back({"fsamp", "sampling frequency", result.fsamp, "Hz"});
  const std::string shape = NameOf(settings.shape);
  out.push_back({"shape", "shape", result.sweeps ? shape + ", sweep-like" : shape, ""});
  out.push_back({"seed", "seed", settings.seed, ""});
  return out;
}

Entries VerdictEntries(const Requirement& requirement, const SrsComparison& comparison) {
  Entries out;
  if (!requirement.name.empty()) out.push_back({"name", "requirement", requirement.name, ""});
  AddComparison(requirement, comparison, &out);
  const std::string verdict = comparison.Meets(requirement.spectrum) ? "inside" : "outside";
  out.push_back({"verdict", "verdict", verdict, ""});
  return out;
}

std::string FailureText(const Requirement& requirement, const SrsSettings& settings,
                        const SrsResult& result) {
  const SrsResult& r = result;
  const SrsComparison& c = r.comparison;
  const Quantity q = QuantityOf(requirement, r.quantity);
  const std::string& unit = requirement.unit;
  switch (r.failure) {
    case SrsFailure::None:
      return "";
    case SrsFailure::BadRequirement:
      return settings.method != com_def::comdefconst::SYNC_WAVE_WAVELET
                 ? "limits and --minimize are for wavelets"
                 : "a setting is no number, or the record would have over 2^24 samples";
    case SrsFailure::RecordTooShort:
      return fmt::format("Nsamp: {:.0f} samples are too short for {:g} Hz: {:.0f} are enough",
                         r.value, r.frequency, r.bound);
    case SrsFailure::SamplingTooLow:
      return fmt::format("Fsamp: {:g} Hz is too low for {:g} Hz: {:g} Hz is the least", r.value,
                         r.frequency, r.bound);
    case SrsFailure::BelowItsOwnPeak:
      return fmt::format(
          "a spectrum cannot fall below the waveform's own peak of {:.4g} {}; at {:.5g} Hz {:.4g} "
          "{} is "
          "asked",
          r.bound, unit, r.frequency, r.value, unit);
    case SrsFailure::TooSteep:
      return fmt::format(
          "{:+.3g} dB/octave at {:.5g} Hz: an oscillator of Q = {:.3g} has no steeper flank than "
          "about "
          "{:g} dB/octave",
          r.value, r.frequency, 0.5 / requirement.spectrum.zeta, r.bound);
    case SrsFailure::NotReached:
      return fmt::format(
          "{:+.2f} dB at {:.5g} Hz, where {:+.2f} dB is allowed; {} of {} lines inside", r.value,
          r.frequency, r.bound, c.between.inside, c.between.lines);
    case SrsFailure::PolarityNotMet:
      return fmt::format(
          "Polarity: the sides differ by {:.2f} dB at {:.5g} Hz, where {:.2f} dB is allowed",
          r.value, r.frequency, r.bound);
    case SrsFailure::DurationNotMet:
      return fmt::format("{}: {:.4g} s is the nearest that was found to {:.4g} s", q.name, r.value,
                         r.bound);
    case SrsFailure::LimitsNotMet:
      return fmt::format("{}: {:.4g} {} is the least {} that was found; the {}limit is {:.4g} {}",
                         q.key, r.value * q.factor, q.unit, q.name,
                         IsOfMachine(q, requirement, settings) ? "machine's " : "",
                         r.bound * q.factor, q.unit);
    case SrsFailure::Cancelled:
      return "cancelled";
  }
  return "";
}

std::vector<std::string> SynthesisWarnings(const Requirement& requirement,
                                           const SrsSettings& settings, const SrsResult& result) {
  std::vector<std::string> out;
  const double last = requirement.spectrum.points.back().frequency;
  if (result.fsamp < synthesis::kGoodSampling * last) {
    out.push_back(fmt::format("Fsamp: {:g} Hz is coarse for {:g} Hz: from {:g} Hz on it is not",
                              result.fsamp, last, synthesis::kGoodSampling * last));
  }
  constexpr double kRest = 1e-3;
  const double end = std::max(EndVelocity(result), EndDisplacement(result));
  if (end > kRest) {
    out.push_back(
        fmt::format("{:.1e} of the velocity and {:.1e} of the displacement are left at the end: "
                    "wavelets leave none",
                    EndVelocity(result), EndDisplacement(result)));
  }
  const synthesis::Durations& durations = requirement.spectrum.durations;
  const bool timed = durations.Te != 0.0 || durations.TE != 0.0;
  const bool wavelet = settings.method == com_def::comdefconst::SYNC_WAVE_WAVELET;
  if (settings.shape == synthesis::SrsShape::Shock && wavelet && !timed && !StartTogether(result)) {
    out.push_back(
        "the least motion has taken the components apart: they do not start together as those of a "
        "shock do");
  }
  if (result.sweeps && settings.shape == synthesis::SrsShape::Shock) {
    out.push_back("the waveform is sweep-like: its frequency falls steadily with time");
  }
  return out;
}

}  // namespace qarv::assess
