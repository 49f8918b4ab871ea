// The two circle constants, as the doubles that every formula of the libraries uses.
#pragma once

namespace qarv::common {

/// Half a turn. [rad]
inline constexpr double kPi = 3.141592653589793;
/// A turn. [rad]
inline constexpr double kTwoPi = 6.283185307179586;

}  // namespace qarv::common
