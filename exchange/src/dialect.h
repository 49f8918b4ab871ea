// How a text separates its columns, and its lines taken apart by that.
#pragma once

#include <string_view>
#include <vector>

#include "cell.h"

namespace qarv::exchange {

/// What stands between two columns.
enum class Separator : char {
  None = 0,
  Blank = ' ',
  Tab = '\t',
  Comma = ',',
  Semicolon = ';',
  Bar = '|'
};

/// The separator that a line of values shows: a tab, a semicolon or a bar if there is one; a comma,
/// unless what blanks separate are numbers with a decimal comma; then blanks.
Separator SeparatorOf(std::string_view line);

/// The cells of a line, without quotes and blanks around them.  Empty ones at the end are kept.  A
/// date and a time of the day that only a blank separates are one.
/// @param[out] cells  they look at the line's memory
void SplitLine(std::string_view line, Separator separator, std::vector<std::string_view>* cells);

/// The cells of a line of titles: a unit in brackets stays with what it stands behind.
std::vector<std::string_view> SplitTitles(std::string_view line, Separator separator);

/// What each column of a line of values is.
struct Row {
  Separator separator = Separator::None;
  std::vector<Cell> cells;  // without the empty ones at the end

  /// Whether it can be a line of samples: its first column is no text, and one is a number.
  bool IsData() const;
  /// Whether both can stand one below the other.
  bool IsLike(const Row& other) const;
};
Row RowOf(std::string_view line, Separator separator);

}  // namespace qarv::exchange
