// What a waveform makes of the table: velocity and displacement, in the units of the field.
#include "kinematics.h"

#include <array>
#include <utility>

#include "common/numeric/calc_wave.h"
#include "common/numeric/mat_basic.h"
#include "definition.h"

namespace qarv::command {

using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

Samples Integrated(const Samples& x, double rate, double factor) {
  Samples out(x.GetSize());
  common::CCalcWave::IntegTime(x.GetSize(), out.GetData(), x.GetData(), rate);
  common::CMatBasic::MulArr(out.GetData(), factor, out.GetSize());
  return out;
}

}  // namespace

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

Kinematics KinematicsOf(const CWaveDef& def) {
  const double rate = SampleRateOf(def);
  const std::string unit = def.GetUnitAmpl().GetText();
  const double acceleration = MetresPerSecondSquared(unit);
  const bool known = acceleration != 0.0;
  Kinematics k{Integrated(def.GetWave(), rate, known ? acceleration : 1.0),
               {},
               known ? "m/s" : (unit.empty() ? "s" : unit + " s"),
               known ? "mm" : (unit.empty() ? "s^2" : unit + " s^2")};
  k.displacement = Integrated(k.velocity, rate, known ? 1000.0 : 1.0);
  return k;
}

bool IsCompensated(const CWaveDef& def) {
  return def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL && def.GetDefClassical().GetAddCmp();
}

}  // namespace qarv::command
