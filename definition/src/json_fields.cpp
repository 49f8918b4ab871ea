// Parameter sets as JSON: the values.
#include "json_fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "common/numeric/index_conv.h"
#include "definition/error.h"
#include "text/text.h"

namespace qarv::definition {

using text::NumberText;
using text::ParseNumber;

using common::CUnitCtrl;
using common::uint64;

Place Place::Key(const std::string& key) const {
  Place at(*this);
  at.key_ += (key_.empty() ? "" : ".") + key;
  return at;
}

Place Place::Element(std::size_t i) const {
  Place at(*this);
  at.key_ += fmt::format("[{}]", i);
  return at;
}

void Place::Fail(const std::string& what) const { throw Error(Error::Kind::Input, key_, what); }

namespace {

constexpr const char* kEscaped = "Escaped";

bool IsUtf8(const std::string& bytes) {
  try {
    static_cast<void>(Json(bytes).dump());
    return true;
  } catch (const Json::type_error&) {
    return false;
  }
}

/// Percent escapes for everything that is not printable ASCII, and for the percent sign.
std::string Escape(const std::string& bytes) {
  std::string out;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = byte >= 0x20 && byte < 0x7F && c != '%';
    out += plain ? std::string(1, c) : fmt::format("%{:02X}", byte);
  }
  return out;
}

std::string Unescape(const std::string& text, const Place& at) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      out += text[i];
      continue;
    }
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto digit = [&](std::size_t k) {
      return k < text.size() ? kDigits.find(text[k]) : std::string_view::npos;
    };
    const std::size_t high = digit(i + 1);
    const std::size_t low = digit(i + 2);
    if (high == std::string_view::npos || low == std::string_view::npos) {
      at.Fail("a percent sign without two upper-case hexadecimal digits");
    }
    out += static_cast<char>(static_cast<unsigned char>(16 * high + low));
    i += 2;
  }
  return out;
}

/// Whether a number is whole, however it is written: 512, 512.0 and 5.12e2 are one.
bool IsWhole(const Json& json) {
  if (!json.is_number_float()) return json.is_number_integer();
  const double v = json.get<double>();
  return std::isfinite(v) && v == std::trunc(v);
}

uint64 ReadCount(const Json& json, const Place& at, uint64 limit) {
  if (!IsWhole(json)) at.Fail("is not a whole number");
  constexpr double kTooLarge = 18446744073709551616.0;  // 2^64
  uint64 count = 0;
  bool fits = true;
  if (json.is_number_float()) {
    const double v = json.get<double>();
    fits = v >= 0.0 && v < kTooLarge;
    count = common::TruncToIndex(v);  // truncated: it is whole
  } else {
    fits = json.is_number_unsigned() || json.get<common::int64>() == 0;  // -0 is 0
    count = json.get<uint64>();
  }
  if (!fits || count > limit) at.Fail(fmt::format("is not within 0 to {}", limit));
  return count;
}

std::int32_t ReadInt32(const Json& json, const Place& at) {
  // Exact for every number that fits.
  const double v = json.get<double>();
  using Limits = std::numeric_limits<std::int32_t>;
  if (!(v >= Limits::min() && v <= Limits::max())) at.Fail("does not fit 32 bits");
  return static_cast<std::int32_t>(v);
}

}  // namespace

void ReadValue(const Json& json, const Place& at, double* v) {
  if (json.is_number()) {
    *v = json.get<double>();
  } else if (!json.is_string() || !ParseNumber(json.get<std::string>(), v)) {
    at.Fail("is not a number");
  }
}

void ReadValue(const Json& json, const Place& at, bool* v) {
  if (!json.is_boolean()) at.Fail("is neither true nor false");
  *v = json.get<bool>();
}

void ReadValue(const Json& json, const Place& at, unsigned int* v) {
  *v = static_cast<unsigned int>(ReadCount(json, at, std::numeric_limits<unsigned int>::max()));
}

void ReadValue(const Json& json, const Place& at, uint64* v) {
  *v = ReadCount(json, at, std::numeric_limits<uint64>::max());
}

void ReadValue(const Json& json, const Place& at, std::string* v) {
  if (json.is_string()) {
    *v = json.get<std::string>();
    return;
  }
  if (!json.is_object() || json.size() != 1 || !json.contains(kEscaped) ||
      !json[kEscaped].is_string()) {
    at.Fail("is not a string");
  }
  *v = Unescape(json[kEscaped].get<std::string>(), at.Key(kEscaped));
}

Json WriteValue(double v) {
  if (std::numeric_limits<double>::lowest() <= v && v <= std::numeric_limits<double>::max()) {
    return v;
  }
  return NumberText(v);
}

Json WriteValue(const std::string& v) {
  if (IsUtf8(v)) return v;
  return Json{{kEscaped, Escape(v)}};
}

// ---- Enumerations ------------------------------------------------------------------------------

std::int32_t ReadEnum(const Json& json, const Place& at, const EnumNames& names) {
  if (IsWhole(json)) return ReadInt32(json, at);
  if (json.is_string()) {
    const auto& given = json.get_ref<const std::string&>();
    for (const auto& [value, name] : names) {
      if (given == name) return value;
    }
  }
  std::string known;
  for (const auto& [value, name] : names) known += (known.empty() ? "" : ", ") + std::string(name);
  at.Fail(known.empty() ? "is not a whole number" : "is none of " + known);
}

Json WriteEnum(std::int32_t v, const EnumNames& names) {
  for (const auto& [value, name] : names) {
    if (value == v) return name;
  }
  return v;
}

// ---- Units -------------------------------------------------------------------------------------

namespace {

template <class E>
std::array<E, CUnitCtrl::kFactors> ReadCodes(const Json& json, const Place& at) {
  if (!json.is_array() || json.size() != CUnitCtrl::kFactors) at.Fail("is not a list of 4 codes");
  std::array<E, CUnitCtrl::kFactors> out{};
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = static_cast<E>(ReadEnum(json[i], at.Element(i), {}));
  }
  return out;
}

}  // namespace

void ReadValue(const Json& json, const Place& at, CUnitCtrl* v) {
  if (json.is_string()) {
    if (!CUnitCtrl::FromText(json.get<std::string>(), v)) at.Fail("is not a known unit");
    return;
  }
  if (!json.is_object()) at.Fail("is not a unit");
  for (const char* key : {"Codes", "Calcs", "Suffix"}) {
    if (!json.contains(key)) at.Key(key).Fail("missing");
  }
  if (json.size() != 3) at.Fail("has keys besides Codes, Calcs and Suffix");
  const auto code = ReadCodes<CUnitCtrl::UNIT_CODE>(json["Codes"], at.Key("Codes"));
  const auto calc = ReadCodes<CUnitCtrl::UNIT_CALC>(json["Calcs"], at.Key("Calcs"));
  const auto suffix =
      static_cast<CUnitCtrl::UNIT_SUFFIX>(ReadEnum(json["Suffix"], at.Key("Suffix"), {}));
  *v = CUnitCtrl(code[0], calc[0], code[1], calc[1], code[2], calc[2], code[3], calc[3], suffix);
}

Json WriteValue(const CUnitCtrl& v) {
  CUnitCtrl same;
  if (CUnitCtrl::FromText(v.GetText(), &same) && same == v) return v.GetText();
  Json codes = Json::array();
  Json calcs = Json::array();
  for (int i = 0; i < CUnitCtrl::kFactors; ++i) {
    codes.push_back(static_cast<std::int32_t>(v.GetCode(i)));
    calcs.push_back(static_cast<std::int32_t>(v.GetCalc(i)));
  }
  return Json{
      {"Codes", codes}, {"Calcs", calcs}, {"Suffix", static_cast<std::int32_t>(v.GetSuffix())}};
}

}  // namespace qarv::definition
