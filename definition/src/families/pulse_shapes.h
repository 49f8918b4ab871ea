// The names of the pulse shapes, which several families use.
#pragma once

#include "definition/fields.h"
#include "wave_def/wave_def_sub.h"

namespace qarv::definition {

/// The names of `WAVE_KIND`.
inline const EnumNames kPulseShapes{
    {wave_def::wave_def_sub::HALF_SINE, "HALF_SINE"},
    {wave_def::wave_def_sub::TERMINAL_PEAK_SAWTOOTH, "TERMINAL_PEAK_SAWTOOTH"},
    {wave_def::wave_def_sub::TRAPEZOID, "TRAPEZOID"},
    {wave_def::wave_def_sub::TRIANGLE, "TRIANGLE"},
    {wave_def::wave_def_sub::USER_TRAPEZOID, "USER_TRAPEZOID"},
    {wave_def::wave_def_sub::HAVERSINE, "HAVERSINE"},
};

}  // namespace qarv::definition
