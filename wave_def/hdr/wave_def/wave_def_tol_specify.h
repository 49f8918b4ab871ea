// CWaveDefTolSpecify: the levels of a tolerance band that follows a test standard.
#pragma once

#include <cstdint>
#include <string>
#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"
#include "wave_def/wave_def_sub.h"

namespace qarv::wave_def {

/// A tolerance band that follows a test standard: the standard, the pulse shape it is written for,
/// the levels before, on and after the pulse, and the widths of the regions.
///
/// Take it for a half-sine, a terminal-peak sawtooth or a trapezoid, whose standards are all of one
/// figure with other numbers; the kinds TOL_FIXED_1 to 9 of CWaveDefClassical have the usual ones
/// built in, and CWaveDefTolUserDef serves every shape.
///
///     CWaveDefTolSpecify levels;
///     levels.SetWaveKind(wave_def_sub::HALF_SINE);
///     levels.SetBaseStandard(CWaveDefTolSpecify::BASE_STD_1);
///     levels.SetMainPulseHi(1.15);
///     levels.SetMainPulseLo(0.85);  // and the other levels
///     pulse.SetTolKind(CWaveDefClassical::TOL_SPECIFY);  // before the levels
///     pulse.SetDefTolSpecify(levels);
///
/// Levels are ratios to the peak amplitude; lower levels are entered positive and applied negated,
/// except MainPulseLo, which like MainPulseHi is a multiple of the nominal pulse.  A value; no
/// setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefTolSpecify {
 public:
  /// The family of standards that a band follows.
  enum BASE_STANDARD_TYPE : std::int32_t {
    BASE_STD_NONE = 0,  ///< not set
    BASE_STD_1 = 1,     ///< sawtooth falls at once; half-sine lower band blends
    BASE_STD_2 = 2,     ///< sawtooth falls over PulseAfterWidth; half-sine lower band is capped
    BASE_STD_3 = 3,     ///< as 2
    BASE_STD_4 = 4,     ///< sawtooth as 1, half-sine as 2
    BASE_STD_5 = 5,     ///< sawtooth as 2, half-sine as 1
  };

 private:
  // The data model, in record order.
  struct Fields {
    std::string StdName;
    wave_def_sub::WAVE_KIND WaveKind = {};
    BASE_STANDARD_TYPE BaseStandard = BASE_STD_NONE;
    double TolBeginHi = 0.0;
    double TolBeginLo = 0.0;
    double PulseBeforeHi = 0.0;
    double PulseBeforeLo = 0.0;
    double PulseSlopeHi = 0.0;
    double PulseSlopeLo = 0.0;
    double MainPulseHi = 0.0;
    double MainPulseLo = 0.0;
    double TolEndHi = 0.0;
    double TolEndLo = 0.0;
    double PulseBeforeWidth = 0.0;
    double PulseAfterWidth = 0.0;
    double PulseRiseWidth = 0.0;
    double PulseFallWidth = 0.0;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.StdName, f.WaveKind, f.BaseStandard, f.TolBeginHi, f.TolBeginLo,
                      f.PulseBeforeHi, f.PulseBeforeLo, f.PulseSlopeHi, f.PulseSlopeLo,
                      f.MainPulseHi, f.MainPulseLo, f.TolEndHi, f.TolEndLo, f.PulseBeforeWidth,
                      f.PulseAfterWidth, f.PulseRiseWidth, f.PulseFallWidth);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefTolSpecify() = default;
  CWaveDefTolSpecify(const CWaveDefTolSpecify&) = default;
  CWaveDefTolSpecify(CWaveDefTolSpecify&&) = default;  ///< leaves the source cleared
  CWaveDefTolSpecify& operator=(const CWaveDefTolSpecify&) = default;
  CWaveDefTolSpecify& operator=(CWaveDefTolSpecify&&) = default;
  virtual ~CWaveDefTolSpecify();

  bool operator==(const CWaveDefTolSpecify&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// Name of the standard, free text; default empty; kept, not generated from.
  const std::string& GetStdName() const { return set_->StdName; }
  void SetStdName(const std::string& v) { set_->StdName = v; }
  /// The pulse shape that the levels were written for; default 0; a pulse of another shape is
  /// refused.
  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  /// The family of standards that the band follows; default BASE_STD_NONE.
  BASE_STANDARD_TYPE GetBaseStandard() const { return set_->BaseStandard; }
  void SetBaseStandard(BASE_STANDARD_TYPE v) { set_->BaseStandard = v; }
  /// Upper level before the front region [ratio]; default 0; 0 or above.
  double GetTolBeginHi() const { return set_->TolBeginHi; }
  void SetTolBeginHi(double v) { set_->TolBeginHi = v; }
  /// Lower level there [ratio]; default 0; 0 or above, applied negated.
  double GetTolBeginLo() const { return set_->TolBeginLo; }
  void SetTolBeginLo(double v) { set_->TolBeginLo = v; }
  /// Upper level at the start of the pulse [ratio]; default 0; 0 or above.
  double GetPulseBeforeHi() const { return set_->PulseBeforeHi; }
  void SetPulseBeforeHi(double v) { set_->PulseBeforeHi = v; }
  /// Lower level there [ratio]; default 0; 0 or above, applied negated.
  double GetPulseBeforeLo() const { return set_->PulseBeforeLo; }
  void SetPulseBeforeLo(double v) { set_->PulseBeforeLo = v; }
  /// Upper level on the slopes [ratio]; default 0; 0 or above.
  double GetPulseSlopeHi() const { return set_->PulseSlopeHi; }
  void SetPulseSlopeHi(double v) { set_->PulseSlopeHi = v; }
  /// Lower level on the slopes [ratio]; default 0; 0 or above, applied negated.
  double GetPulseSlopeLo() const { return set_->PulseSlopeLo; }
  void SetPulseSlopeLo(double v) { set_->PulseSlopeLo = v; }
  /// Upper limit on the main pulse [multiple of the nominal pulse]; default 0; 1 or above.
  double GetMainPulseHi() const { return set_->MainPulseHi; }
  void SetMainPulseHi(double v) { set_->MainPulseHi = v; }
  /// Lower limit on the main pulse [multiple of the nominal pulse]; default 0; 0 to 1, applied as
  /// it is.
  double GetMainPulseLo() const { return set_->MainPulseLo; }
  void SetMainPulseLo(double v) { set_->MainPulseLo = v; }
  /// Upper level after the pulse [ratio]; default 0; 0 or above.
  double GetTolEndHi() const { return set_->TolEndHi; }
  void SetTolEndHi(double v) { set_->TolEndHi = v; }
  /// Lower level after the pulse [ratio]; default 0; 0 or above, applied negated.
  double GetTolEndLo() const { return set_->TolEndLo; }
  void SetTolEndLo(double v) { set_->TolEndLo = v; }
  /// Front region before the pulse [width]; default 0; 0 or above.
  double GetPulseBeforeWidth() const { return set_->PulseBeforeWidth; }
  void SetPulseBeforeWidth(double v) { set_->PulseBeforeWidth = v; }
  /// Region after the pulse, the fall of a sawtooth [width]; default 0; 0 or above.
  double GetPulseAfterWidth() const { return set_->PulseAfterWidth; }
  void SetPulseAfterWidth(double v) { set_->PulseAfterWidth = v; }
  /// Rise of a trapezoid [width]; default 0; 0 or above.
  double GetPulseRiseWidth() const { return set_->PulseRiseWidth; }
  void SetPulseRiseWidth(double v) { set_->PulseRiseWidth = v; }
  /// Fall of a trapezoid [width]; default 0; 0 or above.
  double GetPulseFallWidth() const { return set_->PulseFallWidth; }
  void SetPulseFallWidth(double v) { set_->PulseFallWidth = v; }
};

}  // namespace qarv::wave_def
