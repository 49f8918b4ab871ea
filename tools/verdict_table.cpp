// The table of docs/judge.md: how often a verdict is wrong, over simulated measuring chains.
//
// Every record is a half-sine of random height, length and ripple whose verdict is known without a
// measurement: its formula lies inside the bands by a margin at some place they may be laid, or
// outside by a margin at every place near it.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "assess/series.h"
#include "definition/definition.h"
#include "definition/main_pulse.h"
#include "random_values.h"

namespace {

using namespace qarv;

const double kPi = std::acos(-1.0);
constexpr double kPeak = 50.0;        // [g]
constexpr double kWidth = 0.011;      // [s]
constexpr double kMargin = 0.03;      // of the peak, by which the answer is known
constexpr double kVelocityIn = 0.07;  // of the nominal velocity change, of 0.1 that are allowed
constexpr double kVelocityOut = 0.13;

const char* const kDefinition =
    R"({"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50, "MainWidth": 0.011,
        "Fmax": 5000, "Nsamp": 512, "TolKind": "TOL_FIXED_4"}})";

/// The shock itself, centred about 0.
struct Shock {
  double height, length, ripple, frequency, phase;

  double At(double t) const {
    const double width = length * kWidth;
    const double pulse = std::fabs(t) < 0.5 * width ? height * std::cos(kPi * t / width) : 0.0;
    // Beside the pulse the ripple decays within a width.
    const double window = 1.0 / (1.0 + std::pow(t / kWidth, 4.0));
    return kPeak * (pulse + ripple * window * std::sin(2.0 * kPi * frequency * t + phase));
  }
  double Area() const {
    constexpr int kSteps = 1000;
    double sum = 0.0;
    for (int i = 0; i < kSteps; ++i) sum += At(kWidth * ((i + 0.5) / kSteps - 0.5));
    return sum * kWidth / kSteps;
  }
};

/// The least of what the farthest point of a shock lies beyond the bands, of all places within a
/// share of the width.  [peak]
double LeastBeyond(const wave_def::CWaveDef& def, const Shock& shock, double share) {
  const double fsamp = definition::SampleRateOf(def);
  const auto upper = definition::SpanOf(def.GetTolU());
  const auto lower = definition::SpanOf(def.GetTolL());
  const double centre = 0.5 * static_cast<double>(def.GetNsamp());
  double least = HUGE_VAL;
  constexpr int kPlaces = 60;
  for (int k = -kPlaces; k <= kPlaces; ++k) {
    const double shift = share * kWidth * k / kPlaces;
    double farthest = -HUGE_VAL;
    for (std::size_t i = 0; i < upper.size() && farthest < least; ++i) {
      const double v = shock.At((static_cast<double>(i) - centre) / fsamp + shift);
      farthest = std::max({farthest, v - upper[i], lower[i] - v});
    }
    least = std::min(least, farthest);
  }
  return least / kPeak;
}

/// A measuring chain.
struct Chain {
  double fsamp = 25600.0;  // [Hz]
  double noise = 0.0;      // largest, of the peak
  double skew = 0.0;       // of the clock
  double clip = HUGE_VAL;  // of the peak
  double offset = 0.0;     // of the peak
};

std::vector<double> Recorded(const Shock& shock, const Chain& chain, test::RandomValues* random) {
  const double start = 0.05 + random->Between(0.0, 1.0) / chain.fsamp;
  std::vector<double> samples(static_cast<std::size_t>(0.1 * chain.fsamp));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double t = static_cast<double>(i) * (1.0 + chain.skew) / chain.fsamp - start;
    double v = shock.At(t) + kPeak * (chain.offset + random->Between(-chain.noise, chain.noise));
    samples[i] = std::clamp(v, -chain.clip * kPeak, chain.clip * kPeak);
  }
  return samples;
}

struct Counts {
  int inside = 0, outside = 0, falseFail = 0, falsePass = 0, open = 0;
};

/// Records with a known answer until there are so many of each.
Counts Run(const wave_def::CWaveDef& def, const std::function<Chain(test::RandomValues*)>& chainOf,
           int each, unsigned int seed) {
  test::RandomValues random(seed);
  Counts counts;
  const double nominal = kPeak * kWidth * 2.0 / kPi;
  while (counts.inside < each || counts.outside < each) {
    const bool wild = random.OneIn(2);
    const Shock shock{random.Between(wild ? 0.7 : 0.94, wild ? 1.3 : 1.06),
                      random.Between(wild ? 0.85 : 0.97, wild ? 1.15 : 1.03),
                      random.Between(0.0, wild ? 0.3 : 0.05), random.Between(100.0, 2000.0),
                      random.Between(0.0, 2.0 * kPi)};
    const double off = std::fabs(shock.Area() / nominal - 1.0);
    const bool inside = off < kVelocityIn && LeastBeyond(def, shock, 0.05) < -kMargin;
    const bool outside = !inside && (off > kVelocityOut || LeastBeyond(def, shock, 0.2) > kMargin);
    if ((!inside && !outside) || (inside ? counts.inside : counts.outside) >= each) continue;
    const Chain chain = chainOf(&random);
    const std::vector<double> samples = Recorded(shock, chain, &random);
    ++(inside ? counts.inside : counts.outside);
    try {
      const auto series = assess::JudgeSeries(def, {samples, chain.fsamp, "g"});
      const bool passes = !series.Fails() && !series.IsOpen();
      if (inside && !passes) ++counts.falseFail;
      if (outside && passes) ++counts.falsePass;
    } catch (const assess::Error&) {
      ++counts.open;  // no verdict is no wrong one
    }
  }
  return counts;
}

void Print(const std::string& chain, const Counts& counts) {
  fmt::print("| {} | {} | {} | {} | {} | {} |\n", chain, counts.inside, counts.falseFail,
             counts.outside, counts.falsePass, counts.open);
}

}  // namespace

int main() {
  const auto def = definition::Generate(definition::FromJson(kDefinition));
  fmt::print(
      "| chain | inside | of these failed | outside | of these passed | without a verdict |\n"
      "|---|---|---|---|---|---|\n");
  Print("2 000 records: 12.8 to 102.4 kHz, noise up to 0.5 %, clock to 0.01 %",
        Run(
            def,
            [](test::RandomValues* random) {
              Chain chain;
              chain.fsamp = std::round(random->Between(12800.0, 102400.0));
              chain.noise = random->Between(0.0, 0.005);
              chain.skew = random->Between(-1e-4, 1e-4);
              return chain;
            },
            1000, 1));
  const auto rows = [&](const char* what, const std::vector<double>& values, double percent,
                        double Chain::*member) {
    for (const double value : values) {
      const auto chain = [&](test::RandomValues*) {
        Chain made;
        made.*member = value;
        return made;
      };
      Print(fmt::format("{}", fmt::format(fmt::runtime(what), value * percent)),
            Run(def, chain, 100, 2));
    }
  };
  rows("noise of {:g} % of the peak", {0.01, 0.02, 0.05, 0.1}, 100.0, &Chain::noise);
  rows("{:g} Hz", {12800.0, 16000.0, 44100.0, 204800.0}, 1.0, &Chain::fsamp);
  rows("clock wrong by {:g} %", {0.001, 0.01, 0.05}, 100.0, &Chain::skew);
  rows("clipped at {:g} % of the peak", {1.0, 0.95, 0.9}, 100.0, &Chain::clip);
  rows("offset of {:g} % of the peak", {0.01, 0.02, 0.05, 0.1}, 100.0, &Chain::offset);
}
