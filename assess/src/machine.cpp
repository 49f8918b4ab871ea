// The keys of a machine, and the comparison of a waveform with it.
#include "assess/machine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "analysis/shock.h"
#include "assess/motion.h"
#include "definition/definition.h"
#include "json_fields.h"
#include "json_input.h"
#include "text/text.h"

namespace qarv::assess {

using definition::Field;
using definition::FieldTable;
using definition::Json;
using definition::Place;
using wave_def::CWaveDef;

namespace {

// ---- Values with units -------------------------------------------------------------------------

/// A unit of a quantity, in that which a Machine has it in.
using NamedUnit = std::pair<const char*, double>;
using NamedUnits = std::span<const NamedUnit>;

// clang-format off
constexpr std::array<NamedUnit, 4> kForces{{
    {"N", 1.0}, {"kN", 1000.0}, {"kgf", 9.80665}, {"lbf", 4.4482216152605}}};
constexpr std::array<NamedUnit, 3> kMasses{{
    {"kg", 1.0}, {"t", 1000.0}, {"lb", 0.45359237}}};
constexpr std::array<NamedUnit, 5> kVelocities{{
    {"m/s", 1.0}, {"cm/s", 0.01}, {"mm/s", 0.001}, {"in/s", 0.0254}, {"ft/s", 0.3048}}};
constexpr std::array<NamedUnit, 5> kLengths{{
    {"mm", 1.0}, {"cm", 10.0}, {"m", 1000.0}, {"in", 25.4}, {"ft", 304.8}}};
constexpr std::array<NamedUnit, 2> kFrequencies{{
    {"Hz", 1.0}, {"kHz", 1000.0}}};
// clang-format on

std::optional<double> FactorOf(NamedUnits units, std::string_view name) {
  const auto it =
      std::find_if(units.begin(), units.end(), [&](const NamedUnit& u) { return name == u.first; });
  if (it == units.end()) return {};
  return it->second;
}

std::optional<double> AccelerationFactor(std::string_view name) {
  const MotionUnits units = MotionUnitsOf(std::string(name));
  if (!units.known) return {};
  return units.velocity;
}

std::optional<double> JerkFactor(std::string_view name) {
  constexpr std::string_view kPerSecond = "/s";
  if (name == "m/s^3") return 1.0;
  if (!name.ends_with(kPerSecond)) return {};
  name.remove_suffix(kPerSecond.size());
  return AccelerationFactor(name);
}

/// A number and the unit behind it, which may be empty.
std::pair<double, std::string> SplitOff(const std::string& text, const Place& at) {
  const std::string whole(text::Trimmed(text));
  const auto space = std::min(whole.find_first_not_of("+-.0123456789eE"), whole.size());
  double number = 0.0;
  if (!text::ParseNumber(whole.substr(0, space), &number)) {
    at.Fail("is not a number with its unit, such as \"51 mm\"");
  }
  return {number, std::string(text::Trimmed(std::string_view(whole).substr(space)))};
}

/// A value above 0: a number in the unit `standard`, or a text with a unit.
template <class FactorOfUnit>
double Amount(const Json& json, const Place& at, const std::string& standard,
              FactorOfUnit factorOf) {
  double number = 0.0;
  std::string unit;
  if (json.is_string()) {
    std::tie(number, unit) = SplitOff(json.get<std::string>(), at);
  } else {
    definition::ReadValue(json, at, &number);
  }
  const std::optional<double> factor = factorOf(unit.empty() ? standard : unit);
  if (!factor) at.Fail("has no unit like " + standard + ": '" + unit + "'");
  const double v = number * *factor;
  if (!(v > 0.0 && std::isfinite(v))) at.Fail("is not a number above 0");
  return v;
}

// ---- Fields ------------------------------------------------------------------------------------

/// A machine while it is read.
struct MachineDraft {
  Machine machine;
  std::string unit = "g";
  bool hasStart = false;
};

template <class Read>
Field<MachineDraft> MachineKey(const char* key, Read read) {
  Field<MachineDraft> field;
  field.info.key = key;
  field.read = read;
  return field;
}

Field<MachineDraft> MachineLimit(const char* key, NamedUnits units,
                                 std::optional<double> Machine::*member) {
  return MachineKey(key, [=](const Json& json, const Place& at, MachineDraft& draft) {
    draft.machine.*member = Amount(json, at, units.front().first,
                                   [&](std::string_view name) { return FactorOf(units, name); });
  });
}

void ReadStart(const Json& json, const Place& at, MachineDraft& draft) {
  draft.hasStart = true;
  if (json.is_string() && json.get_ref<const std::string&>() == "centred") return;
  if (!json.is_number()) at.Fail("is neither \"centred\" nor a share of the stroke");
  const double share = json.get<double>();
  if (!(share >= 0.0 && share <= 1.0)) at.Fail("is not within 0 to 1");
  draft.machine.start = share;
}

void ReadUnit(const Json& json, const Place& at, MachineDraft& draft) {
  definition::ReadValue(json, at, &draft.unit);
  if (!MotionUnitsOf(draft.unit).known) at.Fail("is not a known acceleration");
}

/// In the order in which they are read: a unit before what may be in it.
FieldTable<MachineDraft> KeysOfAMachine() {
  return {
      MachineKey("Name",
                 [](const Json& json, const Place& at, MachineDraft& draft) {
                   definition::ReadValue(json, at, &draft.machine.name);
                 }),
      MachineKey("About",
                 [](const Json& json, const Place& at, MachineDraft& /*draft*/) {
                   std::string unused;
                   definition::ReadValue(json, at, &unused);
                 }),
      MachineKey("UnitAmpl", ReadUnit),
      MachineLimit("MaxForce", kForces, &Machine::force),
      MachineKey("MaxAccel",
                 [](const Json& json, const Place& at, MachineDraft& draft) {
                   draft.machine.acceleration = Amount(json, at, draft.unit, AccelerationFactor);
                 }),
      MachineLimit("MovingMass", kMasses, &Machine::mass),
      MachineLimit("MaxVelocity", kVelocities, &Machine::velocity),
      MachineLimit("Stroke", kLengths, &Machine::stroke),
      MachineKey("StartPosition", ReadStart),
      MachineKey("MaxJerk",
                 [](const Json& json, const Place& at, MachineDraft& draft) {
                   draft.machine.jerk = Amount(json, at, draft.unit + "/s", JerkFactor);
                 }),
      MachineLimit("LowestFrequency", kFrequencies, &Machine::lowestFrequency),
  };
}

/// What no keys say together.
void RequireConsistent(const MachineDraft& draft) {
  const Machine& m = draft.machine;
  if (m.force && m.acceleration) throw Error("MaxForce", "stands beside MaxAccel: one of them");
  if (m.force && !m.mass) throw Error("MaxForce", "needs MovingMass");
  if (m.force && !std::isfinite(*m.force / *m.mass)) {
    throw Error("MovingMass", "is too small for the force");
  }
  if (draft.hasStart && !m.stroke) throw Error("StartPosition", "needs Stroke");
  if (!m.force && !m.acceleration && !m.velocity && !m.stroke && !m.jerk && !m.lowestFrequency) {
    throw Error("",
                "states no limit: none of MaxForce, MaxAccel, MaxVelocity, Stroke, MaxJerk, "
                "LowestFrequency");
  }
}

// ---- The waveform ------------------------------------------------------------------------------

/// The lowest frequency that a waveform is made of, where it is made of some.
std::optional<double> LowestFrequencyOf(const CWaveDef& def) {
  switch (def.GetWaveType()) {
    case CWaveDef::WAVE_TYPE_SINGLE:
      return 1.0 / def.GetDefSingle().GetPeriod();
    case CWaveDef::WAVE_TYPE_GRADUAL:
      return 1.0 / def.GetDefGradual().GetPeriod();
    case CWaveDef::WAVE_TYPE_SINE_BEAT_BURST:
      return def.GetDefSineBeatBurst().GetFreq();
    case CWaveDef::WAVE_TYPE_DAMPING:
      break;
    default:
      return {};
  }
  const wave_def::CWaveDefDamping& set = def.GetDefDamping();
  std::optional<double> lowest;
  const auto add = [&](double frequency) {
    lowest = lowest ? std::min(*lowest, frequency) : frequency;
  };
  for (const auto& element : set.GetDefDampingElmList()) add(element.GetFreq());
  if (set.GetSyncWaveType() == com_def::comdefconst::SYNC_WAVE_DAMPED_SINE) add(set.GetFreq());
  return lowest;
}

/// [amplitude unit/s] from rest to the first sample and from the last one back, too.
double JerkOf(std::span<const double> wave, double fsamp) {
  double largest = 0.0;
  double before = 0.0;
  for (const double v : wave) {
    largest = std::max(largest, std::fabs(v - before));
    before = v;
  }
  return std::max(largest, std::fabs(before)) * fsamp;
}

/// How far the table goes to both sides of where it starts.
struct Reach {
  double up = 0.0, down = 0.0;  // [mm]
};

Reach ReachOf(const CWaveDef& def) {
  const Kinematics kinematics = KinematicsOf(def);
  Reach reach;
  for (const double d : kinematics.displacement) {
    reach.up = std::max(reach.up, d);
    reach.down = std::max(reach.down, -d);
  }
  return reach;
}

/// What the conversion of units and the sums of samples may leave of a quantity that is equal to
/// its limit.
constexpr double kRounding = 1e-9;

/// @param[in] scale  of the quantity, for rounding
MachineRow RowOf(const char* key, const char* label, double value, double limit, double scale,
                 const std::string& unit, bool atLeast = false) {
  const double left = atLeast ? value - limit : limit - value;
  const bool equal = std::fabs(left) <= kRounding * scale;
  double margin = 0.0;
  if (!equal) margin = 100.0 * left / limit;  // of a limit of 0 an infinite one
  return {key, label, value, limit, unit, atLeast, margin, equal || left > 0.0};
}

}  // namespace

Machine MachineFromJson(std::string_view text) {
  return ReadObject(text, [](const Json& json) {
    MachineDraft draft;
    definition::ReadFields(KeysOfAMachine(), json, Place(), draft);
    RequireConsistent(draft);
    return draft.machine;
  });
}

MachineLimits LimitsOf(const Machine& machine, const std::string& amplitudeUnit) {
  const std::optional<double> factor = AccelerationFactor(amplitudeUnit);
  if (!factor) {
    throw Error("machine", "its limits are for accelerations, and '" + amplitudeUnit +
                               "' is not known as a unit of one");
  }
  MachineLimits limits;
  if (machine.force && machine.mass) limits.acceleration = *machine.force / *machine.mass / *factor;
  if (machine.acceleration) limits.acceleration = *machine.acceleration / *factor;
  limits.velocity = machine.velocity;
  if (machine.stroke) {
    limits.stroke = machine.stroke;
    limits.up = (1.0 - machine.start) * *machine.stroke;
    limits.down = machine.start * *machine.stroke;
  }
  if (machine.jerk) limits.jerk = *machine.jerk / *factor;
  limits.lowestFrequency = machine.lowestFrequency;
  return limits;
}

bool MachineComparison::Fits() const {
  return std::all_of(rows.begin(), rows.end(), [](const MachineRow& row) { return row.fits; });
}

MachineComparison CompareWithMachine(const CWaveDef& def, const Machine& machine) {
  const std::string unit = def.GetUnitAmpl().GetText();
  const MachineLimits limits = LimitsOf(machine, unit);
  const MotionUnits units = MotionUnitsOf(unit);
  const auto wave = definition::SpanOf(def.GetWave());
  const double fsamp = definition::SampleRateOf(def);
  const bool numbers =
      std::all_of(wave.begin(), wave.end(), [](double v) { return std::isfinite(v); });
  MachineComparison out{machine.name, {}};
  const auto add = [&](const char* key, const char* label, double value,
                       const std::optional<double>& limit, double scale, const std::string& in) {
    if (!limit) return;
    // Of what is no motion nothing can be said to fit.
    const double known = numbers ? value : std::numeric_limits<double>::quiet_NaN();
    out.rows.push_back(RowOf(key, label, known, *limit, scale, in));
  };
  const auto addOwn = [&](const char* key, const char* label, double value,
                          const std::optional<double>& limit, const std::string& in) {
    add(key, label, value, limit, limit.value_or(0.0), in);
  };
  const analysis::Motion motion = analysis::MotionOf(wave, fsamp);
  addOwn("machine_acceleration", "acceleration", std::fabs(analysis::PeakOf(wave).value),
         limits.acceleration, unit);
  addOwn("machine_velocity", "velocity", units.velocity * motion.peakVelocity, limits.velocity,
         units.velocityUnit);
  addOwn("machine_stroke", "stroke", units.displacement * motion.peakToPeakDisplacement,
         limits.stroke, units.displacementUnit);
  if (limits.stroke) {
    const Reach reach = ReachOf(def);
    add("machine_up", "up from the start", reach.up, limits.up, *limits.stroke,
        units.displacementUnit);
    add("machine_down", "down from the start", reach.down, limits.down, *limits.stroke,
        units.displacementUnit);
  }
  addOwn("machine_jerk", "jerk", JerkOf(wave, fsamp), limits.jerk, unit + "/s");
  if (const auto lowest = LowestFrequencyOf(def); limits.lowestFrequency && lowest) {
    const double least = *limits.lowestFrequency;
    out.rows.push_back(
        RowOf("machine_lowest_frequency", "lowest frequency", *lowest, least, least, "Hz", true));
  }
  return out;
}

Entries MachineEntries(const MachineComparison& comparison) {
  Entries out;
  if (!comparison.machine.empty()) {
    out.push_back({"machine", "machine", comparison.machine, ""});
  }
  for (const MachineRow& row : comparison.rows) {
    out.push_back({row.key, "machine: " + row.label, row.value, row.unit});
    out.push_back({row.key + "_limit", row.atLeast ? "  least" : "  limit", row.limit, row.unit});
    out.push_back({row.key + "_margin", "  margin", row.margin, "% of the limit"});
  }
  out.push_back(
      {"machine_fits", "fits the machine", std::string(comparison.Fits() ? "yes" : "no"), ""});
  return out;
}

std::vector<std::string> MachineWarnings(const MachineComparison& comparison) {
  const std::string machine =
      comparison.machine.empty() ? "the machine" : "the machine " + comparison.machine;
  std::vector<std::string> out;
  for (const MachineRow& row : comparison.rows) {
    if (row.fits) continue;
    out.push_back(fmt::format("{}: {:.6g} {}, and {} has {} {:.6g} {} (margin {:.3g} %)", row.label,
                              text::Plain(row.value), row.unit, machine,
                              row.atLeast ? "at least" : "at most", row.limit, row.unit,
                              text::Plain(row.margin)));
  }
  return out;
}

}  // namespace qarv::assess
