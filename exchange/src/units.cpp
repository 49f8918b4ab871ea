// The spellings of units that files carry.
#include "exchange/units.h"

#include <algorithm>
#include <array>
#include <utility>

#include "text/text.h"

namespace qarv::exchange {

using text::Trimmed;

namespace {

/// The text in lower case, with signs of one meaning written alike: "m/s2" for "M/S**2", "m/s^2",
/// "m/s²", "m*s^-2" and "m s-2".
std::string Folded(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
    if (c == 0xC2 && next == 0xB2) {  // superscript two in UTF-8
      out += '2';
      ++i;
    } else if (c == 0xB2) {  // and in Latin-1
      out += '2';
    } else if ((c == 0xC2 && next == 0xB5) || (c == 0xCE && next == 0xBC)) {  // two signs for micro
      out += 'u';
      ++i;
    } else if (c == 0xB5) {
      out += 'u';
    } else if (c == 0xC2 && next == 0xB7) {  // a middle dot
      out += '.';
      ++i;
    } else if (c >= 'A' && c <= 'Z') {
      out += static_cast<char>(c - 'A' + 'a');
    } else if (c != '^' && c != '*' && c != ' ') {
      out += static_cast<char>(c);
    }
  }
  return out;
}

// clang-format off
constexpr std::array<std::pair<std::string_view, std::string_view>, 45> kAccelerations{{
    // what files carry      what it is here
    {"g", "g"},              {"gn", "g"},             {"g0", "g"},            {"g's", "g"},
    {"gs", "g"},             {"gee", "g"},            {"gees", "g"},          {"g_n", "g"},
    {"g(n)", "g"},           {"gpk", "g"},            {"gpeak", "g"},         {"mg", "mg"},
    {"m/s2", "m/s^2"},       {"m/s/s", "m/s^2"},      {"ms-2", "m/s^2"},      {"m.s-2", "m/s^2"},
    {"m/(s2)", "m/s^2"},     {"m/sec2", "m/s^2"},     {"m/sec/sec", "m/s^2"}, {"mps2", "m/s^2"},
    {"m/(ss)", "m/s^2"},     {"m/ss", "m/s^2"},       {"m/(s.s)", "m/s^2"},   {"m_s2", "m/s^2"},
    {"mm/s2", "mm/s^2"},     {"mm/s/s", "mm/s^2"},    {"mms-2", "mm/s^2"},    {"mm.s-2", "mm/s^2"},
    {"cm/s2", "cm/s^2"},     {"cm/s/s", "cm/s^2"},    {"cms-2", "cm/s^2"},    {"cm.s-2", "cm/s^2"},
    {"gal", "Gal"},          {"ft/s2", "ft/s^2"},     {"ft/s/s", "ft/s^2"},   {"ft/sec2", "ft/s^2"},
    {"in/s2", "in/s^2"},     {"in/s/s", "in/s^2"},    {"in/sec2", "in/s^2"},  {"ips2", "in/s^2"},
    {"inch/s2", "in/s^2"},   {"fps2", "ft/s^2"},      {"meter/s2", "m/s^2"},  {"metres/s2", "m/s^2"},
    {"meters/s2", "m/s^2"},
}};

constexpr std::array<std::pair<std::string_view, double>, 23> kTimes{{
    {"s", 1.0},      {"sec", 1.0},         {"secs", 1.0},          {"second", 1.0},        {"seconds", 1.0},
    {"sek", 1.0},    {"sekunden", 1.0},    {"ms", 1e-3},           {"msec", 1e-3},         {"millisec", 1e-3},
    {"us", 1e-6},    {"usec", 1e-6},       {"microseconds", 1e-6}, {"milliseconds", 1e-3}, {"ns", 1e-9},
    {"nsec", 1e-9},  {"nanoseconds", 1e-9}, {"min", 60.0},         {"minutes", 60.0},      {"h", 3600.0},
    {"hours", 3600.0}, {"millisecond", 1e-3}, {"microsecond", 1e-6},
}};
// clang-format on

bool IsKnown(std::string_view unit) { return IsAcceleration(unit) || SecondsOf(unit) != 0.0; }

}  // namespace

std::string PlainUnit(std::string_view text) {
  const std::string folded = Folded(Trimmed(text));
  for (const auto& [spelling, unit] : kAccelerations) {
    if (folded == spelling) return std::string(unit);
  }
  return std::string(Trimmed(text));
}

bool IsAcceleration(std::string_view text) {
  const std::string folded = Folded(Trimmed(text));
  return std::any_of(kAccelerations.begin(), kAccelerations.end(),
                     [&](const auto& row) { return row.first == folded; });
}

double SecondsOf(std::string_view text) {
  const std::string folded = Folded(Trimmed(text));
  for (const auto& [spelling, seconds] : kTimes) {
    if (folded == spelling) return seconds;
  }
  return 0.0;
}

Title TitleOf(std::string_view text) {
  const std::string_view title = Trimmed(text);
  for (const auto& [open, close] : {std::pair{'[', ']'}, {'(', ')'}, {'{', '}'}}) {
    if (!title.ends_with(close)) continue;
    const auto begin = title.find(open);
    if (begin == std::string_view::npos) continue;
    std::string_view name = Trimmed(title.substr(0, begin));
    if (name.ends_with('/')) name = Trimmed(name.substr(0, name.size() - 1));  // "a / (m/s^2)"
    return {std::string(name),
            std::string(Trimmed(title.substr(begin + 1, title.size() - begin - 2)))};
  }
  // The longest rest behind a sign that is a known unit: "t/s", "time in ms", "acc_g", "a m/s^2".
  for (std::size_t i = 1; i + 1 < title.size(); ++i) {
    const char c = title[i];
    if (c != '/' && c != ' ' && c != '_' && c != ',') continue;
    const std::string_view unit = Trimmed(title.substr(i + 1));
    if (!IsKnown(unit)) continue;
    std::string_view name = Trimmed(title.substr(0, i));
    if (name.ends_with(" in")) name = Trimmed(name.substr(0, name.size() - 3));
    return {std::string(name), std::string(unit)};
  }
  return {std::string(title), ""};
}

}  // namespace qarv::exchange
