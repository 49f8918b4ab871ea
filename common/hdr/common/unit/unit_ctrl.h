// CUnitCtrl: the descriptor of a physical unit.
#pragma once

#include <cstdint>
#include <string>
#include <tuple>

#include "common/record/field_set.h"

namespace qarv::common {

class CSerialData;

/// A physical unit: up to four factors, each a unit that is multiplied or divided, and a suffix
/// that says how the quantity is meant.  m/s^2 is m multiplied, s divided, s divided.
///
/// @code
/// CUnitCtrl unit;
/// const bool known = CUnitCtrl::FromText("m/s^2", &unit);  // true
/// const std::string text = unit.GetText();                 // "m/s^2"
/// @endcode
///
/// A value; it checks nothing, so that any record can be held.  By default it is without unit.
class CUnitCtrl {
 public:
  /// The unit of one factor.  The values stand in records.
  enum UNIT_CODE : std::int32_t {
    UNIT_CODE_NONE = 1,  ///< no unit: the factor is not there
    UNIT_CODE_M = 2,
    UNIT_CODE_MM = 3,
    UNIT_CODE_UM = 4,
    UNIT_CODE_CM = 5,
    UNIT_CODE_INCH = 6,
    UNIT_CODE_FOOT = 7,
    UNIT_CODE_S = 8,
    UNIT_CODE_MS = 9,
    UNIT_CODE_MIN = 10,
    UNIT_CODE_KG = 11,
    UNIT_CODE_GRAM = 12,
    UNIT_CODE_LB = 13,
    UNIT_CODE_G = 14,  ///< standard acceleration of free fall, 9.80665 m/s^2
    UNIT_CODE_GAL = 15,
    UNIT_CODE_N = 16,
    UNIT_CODE_KN = 17,
    UNIT_CODE_LBF = 18,
    UNIT_CODE_PA = 19,
    UNIT_CODE_KPA = 20,
    UNIT_CODE_MPA = 21,
    UNIT_CODE_HZ = 22,
    UNIT_CODE_RAD = 23,
    UNIT_CODE_DEG = 24,
    UNIT_CODE_V = 25,
    UNIT_CODE_MV = 26,
    UNIT_CODE_A = 27,
    UNIT_CODE_PC = 28,
    UNIT_CODE_K = 29,
    UNIT_CODE_DEGC = 30,
    UNIT_CODE_W = 31,
    UNIT_CODE_DB = 32,
    UNIT_CODE_PERCENT = 33,
    UNIT_CODE_STRAIN = 34,
  };

  /// How a factor enters.
  enum UNIT_CALC : std::int32_t {
    UNIT_CALC_MUL = 1,  ///< multiplied
    UNIT_CALC_DIV = 2,  ///< divided
  };

  /// How the quantity is meant.
  enum UNIT_SUFFIX : std::int32_t {
    UNIT_SUFFIX_NONE = 0,          ///< not said
    UNIT_SUFFIX_RMS = 1,           ///< root mean square
    UNIT_SUFFIX_PEAK = 2,          ///< from 0 to the peak
    UNIT_SUFFIX_PEAK_TO_PEAK = 3,  ///< from the lowest to the highest value
  };

  /// The most factors of a unit.
  static constexpr int kFactors = 4;

 private:
  struct Fields {
    UNIT_CODE Code1 = UNIT_CODE_NONE;
    UNIT_CALC Calc1 = UNIT_CALC_MUL;
    UNIT_CODE Code2 = UNIT_CODE_NONE;
    UNIT_CALC Calc2 = UNIT_CALC_MUL;
    UNIT_CODE Code3 = UNIT_CODE_NONE;
    UNIT_CALC Calc3 = UNIT_CALC_MUL;
    UNIT_CODE Code4 = UNIT_CODE_NONE;
    UNIT_CALC Calc4 = UNIT_CALC_MUL;
    UNIT_SUFFIX Suffix = UNIT_SUFFIX_NONE;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.Code1, f.Calc1, f.Code2, f.Calc2, f.Code3, f.Calc3, f.Code4, f.Calc4,
                      f.Suffix);
    }
  };
  FieldSet<Fields> set_;

 public:
  CUnitCtrl() = default;
  /// Factor by factor; one that is not there is UNIT_CODE_NONE, UNIT_CALC_MUL.
  CUnitCtrl(UNIT_CODE code1, UNIT_CALC calc1, UNIT_CODE code2, UNIT_CALC calc2, UNIT_CODE code3,
            UNIT_CALC calc3, UNIT_CODE code4, UNIT_CALC calc4, UNIT_SUFFIX suffix);
  CUnitCtrl(const CUnitCtrl&) = default;
  CUnitCtrl(CUnitCtrl&&) = default;  ///< leaves the source without unit
  CUnitCtrl& operator=(const CUnitCtrl&) = default;
  CUnitCtrl& operator=(CUnitCtrl&&) = default;
  virtual ~CUnitCtrl();

  bool operator==(const CUnitCtrl&) const = default;
  /// Back to no unit.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record; false as FieldSet::Serialize.
  bool Serialize(CSerialData* stream);

  /// The unit of factor i, 0 <= i < kFactors; outside that, none.  Default UNIT_CODE_NONE.
  UNIT_CODE GetCode(int i) const;
  /// How factor i enters; outside 0 <= i < kFactors it is multiplied.  Default UNIT_CALC_MUL.
  UNIT_CALC GetCalc(int i) const;
  /// How the quantity is meant.  Default UNIT_SUFFIX_NONE.
  UNIT_SUFFIX GetSuffix() const { return set_->Suffix; }

  /// The unit as it is printed: "m/s^2", "g", "1/s", "N*m", "kg/(m*s)", "mm p-p".  Without unit it
  /// is empty; a factor or a suffix that is not known here prints as "?".
  std::string GetText() const;

  /// The unit that prints as `text`.
  /// @param[out] unit  the unit, with the multiplied factors first
  /// @return false, with `unit` unchanged, if it is null, the text is not of GetText's form or
  ///         needs more than four factors
  static bool FromText(const std::string& text, CUnitCtrl* unit);
};

}  // namespace qarv::common
