// Required spectra that the tests of a synthesis go through.
#pragma once

#include <string>
#include <vector>

#include "synthesis/requirement.h"
#include "synthesis/synthesize.h"

namespace qarv::test {

/// A required spectrum with its record.
struct NamedRequirement {
  std::string name;
  synthesis::SrsRequirement requirement;
  double fsamp;          // [Hz]
  common::uint64 nsamp;  // [sample]
};

/// Of Q 10 and 12 lines per octave, with the tolerance -3/+6 dB.
inline NamedRequirement Named(const std::string& name,
                              std::vector<std::pair<double, double>> points, double fsamp,
                              common::uint64 nsamp) {
  NamedRequirement out{name, {}, fsamp, nsamp};
  for (const auto& [frequency, level] : points) {
    out.requirement.points.push_back({frequency, level, -3.0, 6.0});
  }
  return out;
}

/// Short ones, of the kinds that equipment is tested by.
inline std::vector<NamedRequirement> Requirements() {
  std::vector<NamedRequirement> out{
      Named("functional shock", {{20, 9}, {90, 40}, {1000, 40}}, 20480, 8192),
      Named("pyroshock", {{100, 100}, {1600, 5000}, {10000, 5000}}, 204800, 12288),
      Named("12 dB per octave", {{20, 1}, {320, 256}, {1000, 256}}, 20480, 10000),
      Named("notch", {{20, 10}, {100, 50}, {180, 50}, {200, 25}, {222, 50}, {1000, 50}}, 20480,
            12000),
      Named("stairs", {{20, 10}, {50, 25}, {150, 25}, {300, 100}, {1000, 100}}, 20480, 10000),
      Named("falling end", {{15, 12}, {60, 50}, {250, 50}, {1000, 30}}, 20000, 12000),
      Named("two octaves", {{100, 10}, {400, 40}}, 10000, 1500),
      Named("earthquake", {{1, 0.3}, {4, 1.2}, {10, 1.2}, {33, 0.5}}, 660, 6600),
  };
  out.back().requirement.zeta = 0.02;
  return out;
}

inline synthesis::SrsSettings SettingsOf(const NamedRequirement& named) {
  synthesis::SrsSettings settings;
  settings.fsamp = named.fsamp;
  settings.nsamp = named.nsamp;
  return settings;
}

}  // namespace qarv::test
