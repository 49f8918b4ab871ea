// What a waveform makes of the table: velocity and displacement, in the units of the field.
#include "assess/motion.h"

#include <array>
#include <utility>

#include "common/numeric/calc_wave.h"
#include "common/numeric/mat_basic.h"
#include "definition/definition.h"

namespace qarv::assess {

using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

Samples Integrated(const Samples& x, double rate, double factor) {
  Samples out(x.GetSize());
  common::CCalcWave::IntegTime(x.GetSize(), out.GetData(), x.GetData(), rate);
  common::CMatBasic::MulArr(out.GetData(), factor, out.GetSize());
  return out;
}

/// One unit of that text in m/s^2; 0 if it is not known as an acceleration.
double MetresPerSecondSquared(const std::string& unit) {
  constexpr std::array<std::pair<const char*, double>, 7> kUnits{{{"m/s^2", 1.0},
                                                                  {"g", 9.80665},
                                                                  {"Gal", 0.01},
                                                                  {"cm/s^2", 0.01},
                                                                  {"mm/s^2", 0.001},
                                                                  {"ft/s^2", 0.3048},
                                                                  {"in/s^2", 0.0254}}};
  for (const auto& [name, factor] : kUnits) {
    if (unit == name) return factor;
  }
  return 0.0;
}

}  // namespace

MotionUnits MotionUnitsOf(const std::string& amplitudeUnit) {
  const double acceleration = MetresPerSecondSquared(amplitudeUnit);
  if (acceleration != 0.0) return {true, acceleration, 1000.0 * acceleration, "m/s", "mm"};
  const std::string unit = amplitudeUnit.empty() ? "" : amplitudeUnit + " ";
  return {false, 1.0, 1.0, unit + "s", unit + "s^2"};
}

Kinematics KinematicsOf(const CWaveDef& def) {
  const double rate = definition::SampleRateOf(def);
  const MotionUnits units = MotionUnitsOf(def.GetUnitAmpl().GetText());
  Kinematics k{Integrated(def.GetWave(), rate, units.velocity),
               {},
               units.velocityUnit,
               units.displacementUnit};
  k.displacement = Integrated(k.velocity, rate, units.displacement / units.velocity);
  return k;
}

}  // namespace qarv::assess
