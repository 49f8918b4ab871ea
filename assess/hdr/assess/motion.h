// What a waveform makes of the table: velocity and displacement, in the units of the field.
#pragma once

#include <string>

#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// Velocity and displacement of a waveform that is an acceleration, from rest, by the trapezoidal
/// rule.
struct Kinematics {
  common::CDataArrayFloatT<double> velocity, displacement;
  std::string velocityUnit,
      displacementUnit;  // m/s and mm, where the amplitude unit is known as an acceleration
};

Kinematics KinematicsOf(const wave_def::CWaveDef& def);

/// The units of velocity and displacement for an amplitude unit: m/s and mm, where it is known as
/// an acceleration, otherwise its own times s and s^2.
struct MotionUnits {
  bool known;
  double velocity, displacement;  // from the amplitude times s and s^2 to the units below
  std::string velocityUnit, displacementUnit;
};
MotionUnits MotionUnitsOf(const std::string& amplitudeUnit);

}  // namespace qarv::assess
