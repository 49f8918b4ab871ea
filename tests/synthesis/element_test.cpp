// The closed forms of components: against sums over many samples and the ramp-invariant filter.
#include "element.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "analysis/srs.h"
#include "model.h"
#include "random_values.h"

namespace qarv::synthesis {
namespace {

using namespace com_def::comdefconst;

/// An element of amplitude 1 at so many samples per cycle of the faster of it and an oscillator.
struct Sampled {
  Element element;
  double fsamp;
  std::vector<double> wave;
};

Sampled Sample(Method method, test::RandomValues* random, double oscillator) {
  Sampled out;
  out.element.frequency = std::exp(random->Between(std::log(2.0), std::log(50.0)));
  out.element.halves = 3 + 2 * random->Below(10);
  out.element.zeta = random->Between(0.05, 0.3);
  out.element.ampl = 1.0;
  out.fsamp = 400.0 * std::max(out.element.frequency, oscillator);
  const double w = 6.283185307179586 * out.element.frequency;
  const double z = out.element.zeta;
  const double N = out.element.halves;
  const double seconds = 0.5 * N / out.element.frequency + 1.0 / oscillator;
  for (double t = 0.0; t < seconds; t += 1.0 / out.fsamp) {
    double x = std::exp(-z * w * t) * std::sin(w * t);
    if (method == SYNC_WAVE_WAVELET) {
      x = t < 0.5 * N / out.element.frequency ? std::sin(w * t) * std::sin(w * t / N) : 0.0;
    } else if (method == SYNC_WAVE_DAMPED_SINE_MODIFIED) {
      const double phi = 2.0 * std::atan(z);
      x = std::exp(1.0) * z * std::exp(-z * w * t) *
          (w * t * std::cos(w * t + phi) + std::sin(w * t));
    }
    out.wave.push_back(x);
  }
  return out;
}

class ElementOf : public testing::TestWithParam<Method> {};

TEST_P(ElementOf, MovesAnOscillatorAsTheFilterDoes) {
  test::RandomValues random(1);
  for (int n = 0; n < 200; ++n) {
    const double f = std::exp(random.Between(std::log(2.0), std::log(50.0)));
    const double zeta = random.Between(0.01, 0.2);
    const Sampled s = Sample(GetParam(), &random, f);
    const ElementResponse response(ElementMotion(GetParam(), s.element), 6.283185307179586 * f,
                                   zeta);
    const auto filter =
        analysis::MakeSrsFilter(f, zeta, s.fsamp, analysis::SrsResponse::AbsoluteAcceleration);
    std::vector<double> y(s.wave.size());
    double largest = 0.0;
    for (std::size_t i = 0; i < y.size(); ++i) {
      y[i] = filter.b0 * s.wave[i];
      if (i >= 1) y[i] += filter.b1 * s.wave[i - 1] - filter.a1 * y[i - 1];
      if (i >= 2) y[i] += filter.b2 * s.wave[i - 2] - filter.a2 * y[i - 2];
      largest = std::max(largest, std::fabs(y[i]));
    }
    for (int k = 0; k < 20; ++k) {
      const std::size_t i = random.Below(static_cast<unsigned int>(y.size()));
      EXPECT_NEAR(response.At(static_cast<double>(i) / s.fsamp), y[i], 1e-3 * largest) << n;
    }
  }
}

TEST_P(ElementOf, HasTheVelocityAndDisplacementOfItsIntegrals) {
  test::RandomValues random(2);
  for (int n = 0; n < 100; ++n) {
    const Sampled s = Sample(GetParam(), &random, 10.0);
    const ElementMotion motion(GetParam(), s.element);
    const MotionSeries series = Integrate(s.wave, s.fsamp);
    double v = 0.0;
    double d = 0.0;
    for (std::size_t i = 0; i < s.wave.size(); ++i) {
      v = std::max(v, std::fabs(series.velocity[i]));
      d = std::max(d, std::fabs(series.displacement[i]));
    }
    for (int k = 0; k < 20; ++k) {
      const std::size_t i = random.Below(static_cast<unsigned int>(s.wave.size()));
      const double t = static_cast<double>(i) / s.fsamp;
      // What a start with a kink adds to the sum of the samples: dt^2 / 12 of its slope.
      const double kink =
          2.0 * 6.283185307179586 * s.element.frequency / (12.0 * s.fsamp * s.fsamp);
      EXPECT_NEAR(motion.Velocity(t), series.velocity[i], 1e-3 * v + kink);
      EXPECT_NEAR(motion.Displacement(t), series.displacement[i], 1e-3 * d + kink * t);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, ElementOf,
                         testing::Values(SYNC_WAVE_DAMPED_SINE, SYNC_WAVE_DAMPED_SINE_MODIFIED,
                                         SYNC_WAVE_WAVELET));

TEST(WholeSampleWavelet, EndsAtRestOnTheSamples) {
  test::RandomValues random(3);
  for (int n = 0; n < 300; ++n) {
    const double fsamp = random.Between(500.0, 5000.0);
    const double f = random.Between(2.0, 0.1 * fsamp);
    Model model;
    model.fsamp = fsamp;
    model.elements = {WholeSampleWavelet(f, 3 + 2 * random.Below(12), fsamp)};
    Element& e = model.elements[0];
    e.ampl = 1.0;
    e.start = random.Below(1000);
    model.nsamp = e.start + e.length + 2;
    const std::vector<double> wave = GenerateWave(DefinitionOf(model), fsamp);
    ASSERT_EQ(wave.size(), model.nsamp);
    EXPECT_NEAR(e.frequency / f, 1.0, 0.2);
    const MotionSeries motion = Integrate(wave, fsamp);
    double v = 0.0;
    double d = 0.0;
    for (std::size_t i = 0; i < wave.size(); ++i) {
      v = std::max(v, std::fabs(motion.velocity[i]));
      d = std::max(d, std::fabs(motion.displacement[i]));
      EXPECT_TRUE(i >= e.start || wave[i] == 0.0);
    }
    // Its first sample is the 0 of its start.
    EXPECT_NE(wave[e.start + 1], 0.0) << n;
    EXPECT_LE(std::fabs(motion.velocity.back()), 1e-12 * v) << n;
    EXPECT_LE(std::fabs(motion.displacement.back()), 1e-10 * d) << n;
  }
}

}  // namespace
}  // namespace qarv::synthesis
