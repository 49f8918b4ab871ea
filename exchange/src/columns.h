// Which columns of a table are the times and the channels, and what its header says of them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialect.h"
#include "exchange/table.h"
#include "exchange/units.h"

namespace qarv::exchange {

/// The titles of so many columns, from the last lines of a header that have as many: names with
/// units, or a line of names above one of units.  Empty where nothing says them.
std::vector<Title> TitlesOf(const std::vector<std::string>& header, Separator separator,
                            std::size_t count);

/// What was chosen.
struct Columns {
  std::vector<Title> titles;          // of all
  std::optional<std::size_t> time;    // column of numbers, stamps or times of the day
  std::optional<std::size_t> date;    // of these times of the day
  std::vector<std::size_t> channels;  // at least one
  std::vector<std::string> remarks;   // where something had to be chosen

  /// What people call a column: its name, or its number.
  std::string NameOf(std::size_t column) const;
};

/// @param[in] first,second  the first lines of values; the second may be the first
/// Throws Error where a column is not there or holds no numbers.
Columns ChooseColumns(const ChannelChoice& choice, std::vector<Title> titles, const Row& first,
                      const Row& second);

}  // namespace qarv::exchange
