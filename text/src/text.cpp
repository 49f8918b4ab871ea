// Messages and numbers as text.
#include "text/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace qarv::text {
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

/// How many bytes the character at the front of a text has; 0 where they are none of UTF-8 (cut,
/// overlong, a surrogate, beyond the code space) or none that XML takes.
std::size_t CharacterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  char32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3F);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  const bool none = code == 0xFFFE || code == 0xFFFF || code > 0x10FFFF;
  return overlong || surrogate || none ? 0 : length;
}

std::string Escape(char c) { return fmt::format("\\x{:02x}", static_cast<unsigned char>(c)); }

}  // namespace

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
    out += byte < 0x20 || byte == 0x7F ? Escape(c) : std::string(1, c);
  }
  return out;
}

std::string ShownText(const std::string& text) {
  const std::string line = OneLine(text);
  std::string out;
  for (std::size_t i = 0; i < line.size();) {
    const std::size_t length = CharacterLength(std::string_view(line).substr(i));
    out += length == 0 ? Escape(line[i]) : line.substr(i, length);
    i += std::max<std::size_t>(length, 1);
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

}  // namespace qarv::text
