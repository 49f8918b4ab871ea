// CUnitCtrl: the descriptor of a physical unit, its record and its printed form.
#include "common/unit/unit_ctrl.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

#include "common/record/record_codec.h"

namespace qarv::common {
namespace {

using Unit = CUnitCtrl;

struct CodeName {
  Unit::UNIT_CODE code;
  std::string_view name;
};
struct SuffixName {
  Unit::UNIT_SUFFIX suffix;
  std::string_view name;
};

// clang-format off
constexpr std::array<CodeName, 33> kCodeNames{{
  {Unit::UNIT_CODE_M,       "m"     },
  {Unit::UNIT_CODE_MM,      "mm"    },
  {Unit::UNIT_CODE_UM,      "um"    },
  {Unit::UNIT_CODE_CM,      "cm"    },
  {Unit::UNIT_CODE_INCH,    "in"    },
  {Unit::UNIT_CODE_FOOT,    "ft"    },
  {Unit::UNIT_CODE_S,       "s"     },
  {Unit::UNIT_CODE_MS,      "ms"    },
  {Unit::UNIT_CODE_MIN,     "min"   },
  {Unit::UNIT_CODE_KG,      "kg"    },
  {Unit::UNIT_CODE_GRAM,    "gram"  },
  {Unit::UNIT_CODE_LB,      "lb"    },
  {Unit::UNIT_CODE_G,       "g"     },
  {Unit::UNIT_CODE_GAL,     "Gal"   },
  {Unit::UNIT_CODE_N,       "N"     },
  {Unit::UNIT_CODE_KN,      "kN"    },
  {Unit::UNIT_CODE_LBF,     "lbf"   },
  {Unit::UNIT_CODE_PA,      "Pa"    },
  {Unit::UNIT_CODE_KPA,     "kPa"   },
  {Unit::UNIT_CODE_MPA,     "MPa"   },
  {Unit::UNIT_CODE_HZ,      "Hz"    },
  {Unit::UNIT_CODE_RAD,     "rad"   },
  {Unit::UNIT_CODE_DEG,     "deg"   },
  {Unit::UNIT_CODE_V,       "V"     },
  {Unit::UNIT_CODE_MV,      "mV"    },
  {Unit::UNIT_CODE_A,       "A"     },
  {Unit::UNIT_CODE_PC,      "pC"    },
  {Unit::UNIT_CODE_K,       "K"     },
  {Unit::UNIT_CODE_DEGC,    "degC"  },
  {Unit::UNIT_CODE_W,       "W"     },
  {Unit::UNIT_CODE_DB,      "dB"    },
  {Unit::UNIT_CODE_PERCENT, "%"     },
  {Unit::UNIT_CODE_STRAIN,  "strain"},
}};
constexpr std::array<SuffixName, 3> kSuffixNames{{
  {Unit::UNIT_SUFFIX_RMS,          " rms" },
  {Unit::UNIT_SUFFIX_PEAK,         " peak"},
  {Unit::UNIT_SUFFIX_PEAK_TO_PEAK, " p-p" },
}};
// clang-format on

/// The row whose key is @p value, or the table's end.
template <class Table, class Row, class T>
auto RowOf(const Table& table, T Row::*key, const T& value) {
  return std::find_if(table.begin(), table.end(),
                      [&](const Row& row) { return row.*key == value; });
}

std::string_view NameOf(Unit::UNIT_CODE code) {
  const auto row = RowOf(kCodeNames, &CodeName::code, code);
  return row == kCodeNames.end() ? "?" : row->name;
}

std::string_view NameOf(Unit::UNIT_SUFFIX suffix) {
  if (suffix == Unit::UNIT_SUFFIX_NONE) return "";
  const auto row = RowOf(kSuffixNames, &SuffixName::suffix, suffix);
  return row == kSuffixNames.end() ? " ?" : row->name;
}

/// The product of units as text: each once, in the order of its first use, with its power.
std::string Product(const std::vector<std::string_view>& names) {
  std::string text;
  for (auto it = names.begin(); it != names.end(); ++it) {
    if (std::find(names.begin(), it, *it) != it) continue;  // has been counted
    const auto power = std::count(it, names.end(), *it);
    if (!text.empty()) text += '*';
    text += *it;
    if (power > 1) text += '^' + std::to_string(power);
  }
  return text;
}

/// Reads one unit with an optional power, "s^2", into as many factors.
bool ParsePower(std::string_view text, Unit::UNIT_CALC calc,
                std::vector<std::pair<Unit::UNIT_CODE, Unit::UNIT_CALC>>* factors) {
  const auto hat = text.find('^');
  const auto row = RowOf(kCodeNames, &CodeName::name, text.substr(0, hat));
  if (row == kCodeNames.end()) return false;
  int power = 1;
  if (hat != std::string_view::npos) {
    const std::string_view digits = text.substr(hat + 1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), power);
    if (error != std::errc{} || end != digits.data() + digits.size()) return false;
    if (power < 2 || power > Unit::kFactors) return false;
  }
  factors->insert(factors->end(), static_cast<std::size_t>(power), {row->code, calc});
  return true;
}

/// Reads a product, "N*m".
bool ParseProduct(std::string_view text, Unit::UNIT_CALC calc,
                  std::vector<std::pair<Unit::UNIT_CODE, Unit::UNIT_CALC>>* factors) {
  for (;;) {
    const auto star = text.find('*');
    if (!ParsePower(text.substr(0, star), calc, factors)) return false;
    if (star == std::string_view::npos) return true;
    text.remove_prefix(star + 1);
  }
}

}  // namespace

CUnitCtrl::CUnitCtrl(UNIT_CODE code1, UNIT_CALC calc1, UNIT_CODE code2, UNIT_CALC calc2,
                     UNIT_CODE code3, UNIT_CALC calc3, UNIT_CODE code4, UNIT_CALC calc4,
                     UNIT_SUFFIX suffix)
    : set_({code1, calc1, code2, calc2, code3, calc3, code4, calc4, suffix}) {}

CUnitCtrl::~CUnitCtrl() = default;

bool CUnitCtrl::Serialize(CSerialData* stream) { return set_.Serialize(stream); }

CUnitCtrl::UNIT_CODE CUnitCtrl::GetCode(int i) const {
  const std::array codes{set_->Code1, set_->Code2, set_->Code3, set_->Code4};
  return i >= 0 && i < kFactors ? codes[static_cast<std::size_t>(i)] : UNIT_CODE_NONE;
}

CUnitCtrl::UNIT_CALC CUnitCtrl::GetCalc(int i) const {
  const std::array calcs{set_->Calc1, set_->Calc2, set_->Calc3, set_->Calc4};
  return i >= 0 && i < kFactors ? calcs[static_cast<std::size_t>(i)] : UNIT_CALC_MUL;
}

std::string CUnitCtrl::GetText() const {
  std::vector<std::string_view> over;
  std::vector<std::string_view> under;
  for (int i = 0; i < kFactors; ++i) {
    if (GetCode(i) == UNIT_CODE_NONE) continue;
    const bool known = GetCalc(i) == UNIT_CALC_MUL || GetCalc(i) == UNIT_CALC_DIV;
    auto& side = GetCalc(i) == UNIT_CALC_DIV ? under : over;
    side.push_back(known ? NameOf(GetCode(i)) : "?");
  }
  std::string text = Product(over);
  if (!under.empty()) {
    const std::string divisor = Product(under);
    const bool several = divisor.find('*') != std::string::npos;
    text = (text.empty() ? "1" : text) + '/' + (several ? '(' + divisor + ')' : divisor);
  }
  return text.append(NameOf(set_->Suffix));
}

bool CUnitCtrl::FromText(const std::string& text, CUnitCtrl* unit) {
  if (unit == nullptr) return false;
  std::string_view rest = text;
  UNIT_SUFFIX suffix = UNIT_SUFFIX_NONE;
  for (const SuffixName& row : kSuffixNames) {
    if (!rest.ends_with(row.name)) continue;
    suffix = row.suffix;
    rest.remove_suffix(row.name.size());
    break;
  }
  const auto slash = rest.find('/');
  const std::string_view over = rest.substr(0, slash);
  std::vector<std::pair<UNIT_CODE, UNIT_CALC>> factors;
  const bool noneOver = slash == std::string_view::npos ? over.empty() : over == "1";
  if (!noneOver && !ParseProduct(over, UNIT_CALC_MUL, &factors)) return false;
  if (slash != std::string_view::npos) {
    std::string_view under = rest.substr(slash + 1);
    if (under.starts_with('(') && under.ends_with(')')) under = under.substr(1, under.size() - 2);
    if (!ParseProduct(under, UNIT_CALC_DIV, &factors)) return false;
  }
  if (factors.size() > kFactors) return false;
  factors.resize(kFactors, {UNIT_CODE_NONE, UNIT_CALC_MUL});
  *unit =
      CUnitCtrl(factors[0].first, factors[0].second, factors[1].first, factors[1].second,
                factors[2].first, factors[2].second, factors[3].first, factors[3].second, suffix);
  return true;
}

}  // namespace qarv::common
