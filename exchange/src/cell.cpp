// One cell of a logger's text.
#include "cell.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace qarv::exchange {

namespace {

constexpr std::array<std::string_view, 22> kMissing{
    "ol",   "ovl",  "over", "overload", "overflow", "nan", "-nan", "+nan", "na",      "n/a", "#n/a",
    "null", "none", "-",    "--",       "---",      "inf", "-inf", "+inf", "1.#qnan", "+ol", "-ol"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsMissing(std::string_view text) {
  if (text.empty()) return true;
  if (text.size() > 12) return false;
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return std::find(kMissing.begin(), kMissing.end(), lower) != kMissing.end() ||
         lower.starts_with("1.#") || lower.starts_with("-1.#") || lower == "infinity" ||
         lower == "-infinity" || lower.starts_with("nan(");
}

bool ParseDouble(std::string_view text, double* v) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *v);
  return error == std::errc{} && end == text.data() + text.size();
}

/// A text that is read from its front.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}
  bool AtEnd() const { return rest_.empty(); }
  std::string_view Rest() const { return rest_; }
  bool Take(std::string_view signs) {
    if (rest_.empty() || signs.find(rest_.front()) == std::string_view::npos) return false;
    rest_.remove_prefix(1);
    return true;
  }
  /// A whole number of so many digits.
  std::optional<int> Digits(std::size_t least, std::size_t most) {
    std::size_t n = 0;
    int v = 0;
    while (n < most && n < rest_.size() && IsDigit(rest_[n])) v = 10 * v + (rest_[n++] - '0');
    if (n < least) return {};
    rest_.remove_prefix(n);
    return v;
  }

 private:
  std::string_view rest_;
};

/// The days from the first of January 1970, in the calendar that is in use since 1582: the years
/// are counted from March, so that the day that is put in is the last one.
double DayOf(int year, int month, int day) {
  const int y = month > 2 ? year : year - 1;
  const int m = month > 2 ? month - 3 : month + 9;
  const int era = (y >= 0 ? y : y - 399) / 400;
  const int inEra = y - era * 400;
  const int inYear = (153 * m + 2) / 5 + day - 1;
  return 146097.0 * era + (inEra * 365 + inEra / 4 - inEra / 100 + inYear) - 719468.0;
}

/// 2024-03-05, 2024/03/05, 05.03.2024; a date with strokes begins with the month unless that is
/// above 12.
std::optional<double> TakeDate(Scanner* in) {
  const auto first = in->Digits(1, 4);
  if (!first || !in->Take("-/.")) return {};
  const auto second = in->Digits(1, 2);
  if (!second || !in->Take("-/.")) return {};
  const auto third = in->Digits(1, 4);
  if (!third) return {};
  int year = *first;
  int month = *second;
  int day = *third;
  if (*first <= 31) {
    year = *third;
    day = *first;
    if (year < 100) year += 2000;
  }
  if (month > 12) std::swap(month, day);
  if (month < 1 || month > 12 || day < 1 || day > 31 || year < 1900) return {};
  return DayOf(year, month, day);
}

/// 12:34, 12:34:56, 12:34:56.789, with what a zone says behind it.  [s] of the day
std::optional<double> TakeClock(Scanner* in) {
  const auto hour = in->Digits(1, 2);
  if (!hour || !in->Take(":")) return {};
  const auto minute = in->Digits(2, 2);
  if (!minute || *hour > 24 || *minute > 59) return {};
  double seconds = 3600.0 * *hour + 60.0 * *minute;
  if (!in->Take(":")) return seconds;
  const auto whole = in->Digits(2, 2);
  if (!whole || *whole > 60) return {};
  seconds += *whole;
  if (!in->Take(".,")) return seconds;
  std::string fraction = "0.";
  while (const auto digit = in->Digits(1, 1)) fraction += static_cast<char>('0' + *digit);
  double part = 0.0;
  if (fraction.size() == 2 || !ParseDouble(fraction, &part)) return {};
  return seconds + part;
}

/// Z, +02:00, +0200.  [s]
std::optional<double> TakeZone(Scanner* in) {
  if (in->AtEnd() || in->Take("Zz")) return 0.0;
  const bool west = in->Rest().starts_with('-');
  if (!in->Take("+-")) return {};
  const auto hour = in->Digits(2, 2);
  in->Take(":");
  const auto minute = in->Digits(2, 2);
  if (!hour) return {};
  const double ahead = 3600.0 * *hour + 60.0 * minute.value_or(0);
  return west ? -ahead : ahead;
}

std::optional<Cell> StampOf(std::string_view text) {
  const std::size_t colon = text.find(':');
  Cell cell;
  Scanner in(text);
  if (colon == std::string_view::npos || colon > 2) {
    const auto day = TakeDate(&in);
    if (!day) return {};
    cell.day = *day;
    cell.kind = CellKind::Date;
    if (in.AtEnd()) return cell;
    if (!in.Take("T t_")) return {};
    cell.kind = CellKind::Stamp;
  } else {
    cell.kind = CellKind::Clock;
  }
  const auto seconds = TakeClock(&in);
  if (!seconds) return {};
  const auto zone = TakeZone(&in);
  if (!zone || !in.AtEnd()) return {};
  cell.value = *seconds - *zone;
  return cell;
}

}  // namespace

Cell CellOf(std::string_view text, bool comma) {
  Cell cell;
  if (IsMissing(text)) return cell;
  cell.kind = CellKind::Number;
  if (ParseDouble(text, &cell.value)) {
    if (!std::isfinite(cell.value)) cell.kind = CellKind::Missing;
    return cell;
  }
  if (comma && std::count(text.begin(), text.end(), ',') == 1) {
    std::string point(text);
    std::replace(point.begin(), point.end(), ',', '.');
    if (ParseDouble(point, &cell.value)) {
      cell.comma = true;
      return cell;
    }
  }
  if (IsDigit(text.front()) && text.size() < 64) {
    if (const auto stamp = StampOf(text)) return *stamp;
  }
  cell.kind = CellKind::Text;
  return cell;
}

}  // namespace qarv::exchange
