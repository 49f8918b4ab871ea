// The keys of a required spectrum.
#include "assess/requirement.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "assess/motion.h"
#include "common/unit/unit_ctrl.h"
#include "json_input.h"

namespace qarv::assess {

using definition::Json;
using synthesis::RequirementFault;

namespace {

constexpr std::array kKeys{"Name",      "About",       "UnitAmpl",       "Q",        "Damping",
                           "PerOctave", "Points",      "TolLower",       "TolUpper", "Polarity",
                           "Te",        "TE",          "DurationTol",    "Fsamp",    "Nsamp",
                           "MaxAccel",  "MaxVelocity", "MaxDisplacement"};

void RequireKnownKeys(const Json& json) {
  for (const auto& item : json.items()) {
    const auto isIt = [&](const char* key) { return item.key() == key; };
    if (std::none_of(kKeys.begin(), kKeys.end(), isIt)) throw Error(item.key(), "unknown key");
  }
}

double NumberOf(const Json& json, const std::string& key) {
  if (!json.is_number()) throw Error(key, "is not a number");
  return json.get<double>();
}

double NumberAt(const Json& json, const char* key, double standard) {
  return json.contains(key) ? NumberOf(json[key], key) : standard;
}

/// A limit or another number that is not below 0; 0 if it is not there.
double AmountAt(const Json& json, const char* key) {
  const double v = NumberAt(json, key, 0.0);
  if (!(v >= 0.0)) throw Error(key, "is below 0");
  return v;
}

std::string TextAt(const Json& json, const char* key, const std::string& standard) {
  if (!json.contains(key)) return standard;
  if (!json[key].is_string()) throw Error(key, "is not a text");
  return json[key].get<std::string>();
}

common::uint64 CountAt(const Json& json, const char* key) {
  if (!json.contains(key)) return 0;
  if (!json[key].is_number_unsigned()) throw Error(key, "is not a whole number from 0 on");
  return json[key].get<std::uint64_t>();
}

double ZetaOf(const Json& json) {
  if (json.contains("Damping")) {
    if (json.contains("Q")) throw Error("Damping", "stands beside Q: one of them is enough");
    return NumberOf(json["Damping"], "Damping");
  }
  const double Q = NumberAt(json, "Q", 10.0);
  if (!(Q > 0.0)) throw Error("Q", "is not above 0");
  return 0.5 / Q;
}

std::vector<synthesis::SrsTarget> PointsOf(const Json& json) {
  const double lower = NumberAt(json, "TolLower", -3.0);
  const double upper = NumberAt(json, "TolUpper", 6.0);
  if (!json.contains("Points")) throw Error("Points", "missing");
  const Json& list = json["Points"];
  if (!list.is_array()) throw Error("Points", "is not a list");
  std::vector<synthesis::SrsTarget> points;
  for (const Json& item : list) {
    const std::string key = fmt::format("Points[{}]", points.size());
    if (!item.is_array() || (item.size() != 2 && item.size() != 4)) {
      throw Error(key, "is neither [Hz, level] nor [Hz, level, lower dB, upper dB]");
    }
    const auto at = [&](std::size_t i) { return NumberOf(item[i], key); };
    const bool own = item.size() == 4;
    points.push_back({at(0), at(1), own ? at(2) : lower, own ? at(3) : upper});
  }
  return points;
}

bool BothOf(const Json& json) {
  const std::string polarity = TextAt(json, "Polarity", "larger");
  if (polarity == "both") return true;
  if (polarity != "larger") throw Error("Polarity", "is none of larger, both");
  return false;
}

[[noreturn]] void Fail(const RequirementFault& fault) {
  const std::string point = fmt::format("Points[{}]", fault.point);
  switch (fault.what) {
    case RequirementFault::What::TooFewPoints:
      throw Error("Points", "are fewer than 2");
    case RequirementFault::What::NotRising:
      throw Error(point, "its frequency is not above 0 and above the one before");
    case RequirementFault::What::Level:
      throw Error(point, "its level is not above 0");
    case RequirementFault::What::Tolerance:
      throw Error(point, "its tolerance is not below 0 dB and above 0 dB");
    case RequirementFault::What::Damping:
      throw Error("Damping", "is not within 0.001 to 0.5 (Q 1 to 500)");
    case RequirementFault::What::Lines:
      throw Error("PerOctave", "gives no lines, or over 4000");
    default:
      throw Error("Te, TE, DurationTol", "are not above 0");
  }
}

synthesis::MotionLimits LimitsOf(const Json& json, const std::string& unit) {
  const MotionUnits units = MotionUnitsOf(unit);
  const double velocity = AmountAt(json, "MaxVelocity");
  const double displacement = AmountAt(json, "MaxDisplacement");
  if (!units.known && velocity != 0.0) {
    throw Error("MaxVelocity", "needs a UnitAmpl that is an acceleration");
  }
  if (!units.known && displacement != 0.0) {
    throw Error("MaxDisplacement", "needs a UnitAmpl that is an acceleration");
  }
  return {AmountAt(json, "MaxAccel"), velocity / units.velocity, displacement / units.displacement};
}

Requirement ReadRequirement(const Json& json) {
  RequireKnownKeys(json);
  Requirement out;
  TextAt(json, "About", "");
  out.name = TextAt(json, "Name", "");
  out.unit = TextAt(json, "UnitAmpl", out.unit);
  common::CUnitCtrl known;
  if (!common::CUnitCtrl::FromText(out.unit, &known))
    throw Error("UnitAmpl", "is not a known unit");
  synthesis::SrsRequirement& spectrum = out.spectrum;
  spectrum.points = PointsOf(json);
  spectrum.zeta = ZetaOf(json);
  spectrum.perOctave = NumberAt(json, "PerOctave", spectrum.perOctave);
  spectrum.bothPolarities = BothOf(json);
  spectrum.durations = {AmountAt(json, "Te"), AmountAt(json, "TE")};
  spectrum.durationTol = NumberAt(json, "DurationTol", spectrum.durationTol);
  out.fsamp = AmountAt(json, "Fsamp");
  out.nsamp = CountAt(json, "Nsamp");
  out.limits = LimitsOf(json, out.unit);
  const RequirementFault fault = synthesis::FaultOf(spectrum);
  if (fault.what != RequirementFault::What::None) Fail(fault);
  return out;
}

}  // namespace

Requirement RequirementFromJson(std::string_view text) {
  return ReadObject(text, [](const Json& json) { return ReadRequirement(json); });
}

}  // namespace qarv::assess
