// The spellings of units that files carry.
#pragma once

#include <string>
#include <string_view>

namespace qarv::exchange {

/// The unit of an acceleration as it is written here ("g", "m/s^2", "mm/s^2", "mg"), for what other
/// programs write: "G", "gn", "m/s2", "M/S**2", "m/s²" (UTF-8 or Latin-1), "m s-2".  Any other text
/// comes back without the blanks around it.
std::string PlainUnit(std::string_view text);

/// Whether the text spells an acceleration that PlainUnit knows.
bool IsAcceleration(std::string_view text);

/// One unit of time of that name ("s", "ms", "µs", "sec") in seconds; 0 if it is none.
double SecondsOf(std::string_view text);

/// A column's title, in the parts that it has.
struct Title {
  std::string name;
  std::string unit;  // as it stands there; empty if there is none
};

/// Takes a title apart: "Acc [g]", "Acc (m/s^2)", "t/s", "time in ms", "acc_g", "Acc m/s²".
/// Where nothing brackets the unit it has to be a known one.
Title TitleOf(std::string_view text);

}  // namespace qarv::exchange
