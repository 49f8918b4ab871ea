// One cell of a logger's text: a number, a stamp of date and time, a value that is missing.
#pragma once

#include <string_view>

namespace qarv::exchange {

enum class CellKind {
  Number,
  Missing,  // empty, NaN, an infinity, "OL" and what else loggers write in a value's place
  Stamp,    // date and time
  Date,
  Clock,  // time of the day
  Text,
};

/// What a cell holds.
struct Cell {
  CellKind kind = CellKind::Missing;
  double value = 0.0;  // of a number; of a stamp or a clock [s] of its day
  double day = 0.0;    // of a stamp or a date, from the first of January 1970
  bool comma = false;  // a number that is written with a decimal comma
};

/// @param[in] text   without quotes and blanks around it
/// @param[in] comma  whether a comma can be the decimal sign
Cell CellOf(std::string_view text, bool comma);

}  // namespace qarv::exchange
