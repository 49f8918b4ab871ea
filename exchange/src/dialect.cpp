// How a text separates its columns.
#include "dialect.h"

#include <algorithm>

#include "text/text.h"

namespace qarv::exchange {

using text::Trimmed;

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Unquoted(std::string_view cell) {
  cell = Trimmed(cell);
  for (const char quote : {'"', '\''}) {
    if (cell.size() >= 2 && cell.front() == quote && cell.back() == quote) {
      return Trimmed(cell.substr(1, cell.size() - 2));
    }
  }
  return cell;
}

void SplitBlanks(std::string_view line, std::vector<std::string_view>* cells) {
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && IsBlank(line[i])) ++i;
    const std::size_t begin = i;
    const bool quoted = i < line.size() && line[i] == '"';
    if (quoted) {
      const auto end = line.find('"', i + 1);
      i = end == std::string_view::npos ? line.size() : end + 1;
    }
    while (i < line.size() && !IsBlank(line[i])) ++i;
    if (i != begin) cells->push_back(Unquoted(line.substr(begin, i - begin)));
  }
}

}  // namespace

Separator SeparatorOf(std::string_view line) {
  for (const Separator separator : {Separator::Tab, Separator::Semicolon, Separator::Bar}) {
    if (Trimmed(line).find(static_cast<char>(separator)) != std::string_view::npos)
      return separator;
  }
  std::vector<std::string_view> words;
  SplitBlanks(line, &words);
  if (line.find(',') != std::string_view::npos) {
    // "0,5 1,25" has blanks between its columns, "0.5, 1.25" and "0, 1" have commas.
    const bool decimal =
        words.size() > 1 && std::all_of(words.begin(), words.end(), [](std::string_view word) {
          const Cell cell = CellOf(word, true);
          return cell.kind != CellKind::Text && !word.ends_with(',') && !word.starts_with(',');
        });
    return decimal ? Separator::Blank : Separator::Comma;
  }
  if (words.size() < 2) return Separator::None;
  // A stamp alone has a blank too.
  return CellOf(Trimmed(line), false).kind == CellKind::Stamp ? Separator::None : Separator::Blank;
}

void SplitLine(std::string_view line, Separator separator, std::vector<std::string_view>* cells) {
  cells->clear();
  if (separator == Separator::Blank) {
    SplitBlanks(line, cells);
    for (std::size_t i = 0; i + 1 < cells->size(); ++i) {
      const std::string_view date = (*cells)[i];
      const std::string_view clock = (*cells)[i + 1];
      if (CellOf(date, false).kind != CellKind::Date) continue;
      if (CellOf(clock, false).kind != CellKind::Clock) continue;
      const auto length = static_cast<std::size_t>(clock.data() + clock.size() - date.data());
      (*cells)[i] = {date.data(), length};
      cells->erase(cells->begin() + static_cast<std::ptrdiff_t>(i) + 1);
    }
    return;
  }
  std::size_t begin = 0;
  bool quoted = false;
  for (std::size_t i = 0; i <= line.size(); ++i) {
    if (i < line.size() && line[i] == '"') quoted = !quoted;
    const bool ends = i == line.size() || (!quoted && separator != Separator::None &&
                                           line[i] == static_cast<char>(separator));
    if (!ends) continue;
    cells->push_back(Unquoted(line.substr(begin, i - begin)));
    begin = i + 1;
  }
}

std::vector<std::string_view> SplitTitles(std::string_view line, Separator separator) {
  std::vector<std::string_view> cells;
  SplitLine(line, separator, &cells);
  if (separator != Separator::Blank) return cells;
  std::vector<std::string_view> titles;
  for (const std::string_view cell : cells) {
    const bool unit = cell.starts_with('[') || cell.starts_with('(');
    if (unit && !titles.empty()) {
      const char* const begin = titles.back().data();
      titles.back() = {begin, static_cast<std::size_t>(cell.data() + cell.size() - begin)};
    } else {
      titles.push_back(cell);
    }
  }
  return titles;
}

bool Row::IsData() const {
  if (cells.empty() || cells.front().kind == CellKind::Text) return false;
  return std::any_of(cells.begin(), cells.end(),
                     [](const Cell& cell) { return cell.kind == CellKind::Number; });
}

bool Row::IsLike(const Row& other) const {
  if (separator != other.separator || cells.empty() || other.cells.empty()) return false;
  // Empty cells at the end of a line were cut off, which words between blanks do not have.
  if (separator == Separator::Blank && cells.size() != other.cells.size()) return false;
  for (std::size_t i = 0; i < std::min(cells.size(), other.cells.size()); ++i) {
    const CellKind a = cells[i].kind;
    const CellKind b = other.cells[i].kind;
    if (a != b && a != CellKind::Missing && b != CellKind::Missing) return false;
  }
  return true;
}

Row RowOf(std::string_view line, Separator separator) {
  Row row;
  row.separator = separator;
  std::vector<std::string_view> texts;
  SplitLine(line, separator, &texts);
  while (!texts.empty() && texts.back().empty()) texts.pop_back();
  for (const std::string_view text : texts) {
    row.cells.push_back(CellOf(text, true));
  }
  return row;
}

}  // namespace qarv::exchange
