// Which columns of a table are the times and the channels.
#include "columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "exchange/error.h"
#include "text/text.h"

namespace qarv::exchange {

using text::OneLine;

namespace {

std::string Lower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return out;
}

template <std::size_t N>
bool IsOneOf(std::string_view text, const std::array<std::string_view, N>& names) {
  return std::find(names.begin(), names.end(), Lower(text)) != names.end();
}

bool IsTimeTitle(const Title& title) {
  constexpr std::array<std::string_view, 14> kTimes{
      "t",     "time",   "zeit",    "temps",   "tiempo",   "tempo",    "timestamp",
      "times", "time_s", "x_value", "elapsed", "rel time", "abs time", "elapsed time"};
  return IsOneOf(title.name, kTimes) || SecondsOf(title.unit) != 0.0 ||
         SecondsOf(title.name) != 0.0;
}

/// Whether a column counts the samples.
bool IsIndexTitle(const Title& title) {
  constexpr std::array<std::string_view, 12> kIndices{
      "index", "idx", "no", "no.", "nr", "nr.", "n", "#", "sample", "samples", "count", "scan"};
  return IsOneOf(title.name, kIndices);
}

/// Whether the cells of a line are units throughout.
bool AreUnits(const std::vector<std::string_view>& cells) {
  constexpr std::array<std::string_view, 11> kOthers{"v", "mv", "n",  "kn", "pa", "kpa",
                                                     "%", "-",  "°c", "eu", "1"};
  int known = 0;
  for (std::string_view cell : cells) {
    if (cell.size() >= 2 && (cell.front() == '[' || cell.front() == '(')) {
      cell = cell.substr(1, cell.size() - 2);
      ++known;
    } else if (IsAcceleration(cell) || SecondsOf(cell) != 0.0 || IsOneOf(cell, kOthers)) {
      ++known;
    } else if (!cell.empty()) {
      return false;
    }
  }
  return known != 0;
}

bool HasNumbers(const Row& row, std::size_t column) {
  return column < row.cells.size() && row.cells[column].kind == CellKind::Number;
}

CellKind KindOf(const Row& first, const Row& second, std::size_t column) {
  const auto of = [column](const Row& row) {
    return column < row.cells.size() ? row.cells[column].kind : CellKind::Missing;
  };
  return of(first) == CellKind::Missing ? of(second) : of(first);
}

/// The column of that number or name.
std::size_t Find(const std::string& asked, const std::vector<Title>& titles) {
  for (const bool exact : {true, false}) {
    for (std::size_t i = 0; i < titles.size(); ++i) {
      const std::string& name = titles[i].name;
      if (!name.empty() && (exact ? name == asked : Lower(name) == Lower(asked))) return i;
    }
  }
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(asked.data(), asked.data() + asked.size(), number);
  const bool whole = error == std::errc{} && end == asked.data() + asked.size();
  if (whole && number >= 1 && number <= titles.size()) return number - 1;
  std::string names;
  for (std::size_t i = 0; i < titles.size(); ++i) {
    if (!titles[i].name.empty())
      names += fmt::format("{}{}", names.empty() ? ": " : ", ", titles[i].name);
  }
  throw Error(
      fmt::format("has no column {}, but {}{}", OneLine(asked), titles.size(), OneLine(names)));
}

}  // namespace

std::vector<Title> TitlesOf(const std::vector<std::string>& header, Separator separator,
                            std::size_t count) {
  std::vector<Title> titles(count);
  std::vector<std::string> units(count);
  for (std::size_t k = header.size(); k-- > 0;) {
    std::vector<std::string_view> cells = SplitTitles(header[k], separator);
    while (cells.size() > count && cells.back().empty()) cells.pop_back();
    if (cells.size() != count) continue;
    const bool areUnits = AreUnits(cells);
    const bool first =
        std::all_of(units.begin(), units.end(), [](const auto& u) { return u.empty(); });
    if (areUnits && first) {
      for (std::size_t i = 0; i < count; ++i) {
        std::string_view unit = cells[i];
        if (unit.starts_with('[') || unit.starts_with('(')) unit = unit.substr(1, unit.size() - 2);
        units[i] = unit;
      }
      continue;
    }
    for (std::size_t i = 0; i < count; ++i) titles[i] = TitleOf(cells[i]);
    break;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (titles[i].unit.empty()) titles[i].unit = units[i];
  }
  return titles;
}

std::string Columns::NameOf(std::size_t column) const {
  const std::string& name = titles[column].name;
  return name.empty() ? fmt::format("column {}", column + 1) : OneLine(name);
}

Columns ChooseColumns(const ChannelChoice& choice, std::vector<Title> titles, const Row& first,
                      const Row& second) {
  Columns out;
  out.titles = std::move(titles);
  const std::size_t count = out.titles.size();
  const auto kind = [&](std::size_t i) { return KindOf(first, second, i); };
  const auto isNumber = [&](std::size_t i) {
    return HasNumbers(first, i) || HasNumbers(second, i) || kind(i) == CellKind::Missing;
  };
  std::optional<std::size_t> byTitle, clock, date, stamp;
  for (std::size_t i = count; i-- > 0;) {
    if (kind(i) == CellKind::Stamp) stamp = i;
    if (kind(i) == CellKind::Clock) clock = i;
    if (kind(i) == CellKind::Date) date = i;
    if (isNumber(i) && IsTimeTitle(out.titles[i])) byTitle = i;
  }
  if (!choice.time.empty()) {
    out.time = Find(choice.time, out.titles);
    if (kind(*out.time) == CellKind::Text) {
      throw Error(fmt::format("{} holds no times", out.NameOf(*out.time)));
    }
  } else {
    out.time = byTitle ? byTitle : stamp ? stamp : clock;
  }
  if (out.time && kind(*out.time) == CellKind::Clock) out.date = date;
  std::vector<std::size_t> numbers;  // that can be channels
  for (std::size_t i = 0; i < count; ++i) {
    const bool index = IsIndexTitle(out.titles[i]) ||
                       (i == 0 && out.titles[i].name.empty() && count > 2 && out.time);
    if (isNumber(i) && i != out.time && !index) numbers.push_back(i);
  }
  // Without a title the first of several columns is the time, as long as it can be one.
  const bool named = std::any_of(out.titles.begin(), out.titles.end(),
                                 [](const Title& t) { return !t.name.empty(); });
  if (!out.time && choice.time.empty() && numbers.size() > 1 && numbers.front() == 0 &&
      HasNumbers(first, 0) && HasNumbers(second, 0)) {
    const bool rises = second.cells[0].value > first.cells[0].value || &first == &second;
    if (count == 2 || (rises && !named)) {
      out.time = 0;
      numbers.erase(numbers.begin());
    }
  }
  if (choice.fsamp && choice.time.empty() && out.time) {
    out.time.reset();
    out.remarks.push_back("the time column is passed over: the sampling frequency was given");
  }
  for (const std::string& asked : choice.channels) {
    out.channels.push_back(Find(asked, out.titles));
    if (!isNumber(out.channels.back())) {
      throw Error(fmt::format("{} holds no numbers", out.NameOf(out.channels.back())));
    }
  }
  if (!out.channels.empty()) return out;
  if (numbers.empty()) throw Error("has times and no values");
  out.channels.push_back(numbers.front());
  // What is written here has its bands beside the waveform: there is nothing to choose.
  if (numbers.size() > 1 && out.titles[numbers.front()].name != "waveform") {
    std::string all;
    for (const std::size_t i : numbers)
      all += fmt::format("{}{}", all.empty() ? "" : ", ", out.NameOf(i));
    out.remarks.push_back(fmt::format("the first channel of {} was taken", all));
  }
  return out;
}

}  // namespace qarv::exchange
