// Messages and numbers as text.
#include "text.h"

#include <fmt/format.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace qarv::command {
namespace {

const std::uint64_t kUsualNaN =
    std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());

template <class T, class... Base>
bool ParseWhole(std::string_view text, T* v, Base... base) {
  T parsed{};
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), parsed, base...);
  if (error != std::errc{} || end != text.data() + text.size()) return false;
  *v = parsed;
  return true;
}

}  // namespace

void Fail(const std::string& where, const std::string& what) {
  throw CommandError(kBadInput, OneLine(fmt::format("{}: {}", where, what)));
}

std::string_view Trimmed(std::string_view text) {
  constexpr const char* kBlanks = " \t\r";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string OneLine(const std::string& text) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    out += byte < 0x20 || byte == 0x7F ? fmt::format("\\x{:02x}", byte) : std::string(1, c);
  }
  return out;
}

double Plain(double v) {
  if (std::isnan(v)) return std::numeric_limits<double>::quiet_NaN();
  return v == 0.0 ? 0.0 : v;
}

std::string NumberText(double v) {
  if (!std::isnan(v)) return fmt::format("{}", v);
  const auto bits = std::bit_cast<std::uint64_t>(v);
  return bits == kUsualNaN ? "nan" : fmt::format("nan({:#018x})", bits);
}

bool ParseNumber(const std::string& text, double* v) {
  std::string_view rest = text;
  if (rest.starts_with("nan(0x") && rest.ends_with(')')) {
    std::uint64_t bits = 0;
    if (!ParseWhole(rest.substr(6, rest.size() - 7), &bits, 16)) return false;
    if (!std::isnan(std::bit_cast<double>(bits))) return false;
    *v = std::bit_cast<double>(bits);
    return true;
  }
  if (rest.starts_with('+')) rest.remove_prefix(1);
  return ParseWhole(rest, v);
}

}  // namespace qarv::command
