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
///     before and after the pulse  upper = Hi A,           lower = -Lo A
///     at its peak                 upper = MainPulseHi A,  lower = MainPulseLo A
///     A the peak of the pulse [amplitude unit],   levels [ratio],   widths [width]
///
/// Take it for a half-sine, a terminal-peak sawtooth or a trapezoid, whose standards are all of one
/// figure with other numbers; the kinds TOL_FIXED_1 to 9 of CWaveDefClassical have the usual ones
/// built in, and CWaveDefTolUserDef serves every shape.
///
/// @code
/// CWaveDefTolSpecify levels;
/// levels.SetWaveKind(wave_def_sub::HALF_SINE);
/// levels.SetBaseStandard(CWaveDefTolSpecify::BASE_STD_1);
/// levels.SetMainPulseHi(1.15);
/// levels.SetMainPulseLo(0.85);  // and the other levels
/// CWaveDefClassical pulse;
/// pulse.SetTolKind(CWaveDefClassical::TOL_SPECIFY);   // before the levels
/// const bool taken = pulse.SetDefTolSpecify(levels);  // true
/// @endcode
///
/// Levels are ratios to the peak amplitude; lower levels are entered positive and applied negated,
/// except MainPulseLo, which like MainPulseHi is a multiple of the nominal pulse.  A value; no
/// setter checks.
///
/// Source: IEC 60068-2-27, Test Ea: Shock, figures 1 to 3.
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

  /// Name of the standard.  Default empty.  Free text, not generated from.
  const std::string& GetStdName() const { return set_->StdName; }
  void SetStdName(const std::string& v) { set_->StdName = v; }
  /// Shape that the levels are written for; that of the pulse.  Default 0.  A pulse of another
  /// shape is refused.
  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  /// Family of standards that shapes the band.  Default BASE_STD_NONE.
  BASE_STANDARD_TYPE GetBaseStandard() const { return set_->BaseStandard; }
  void SetBaseStandard(BASE_STANDARD_TYPE v) { set_->BaseStandard = v; }
  /// Upper level at the beginning of the frame. [ratio]  Default 0; from 0.
  double GetTolBeginHi() const { return set_->TolBeginHi; }
  void SetTolBeginHi(double v) { set_->TolBeginHi = v; }
  /// Lower level at the beginning of the frame, entered positive. [ratio]  Default 0; from 0.
  double GetTolBeginLo() const { return set_->TolBeginLo; }
  void SetTolBeginLo(double v) { set_->TolBeginLo = v; }
  /// Upper level just before the pulse. [ratio]  Default 0; from 0.
  double GetPulseBeforeHi() const { return set_->PulseBeforeHi; }
  void SetPulseBeforeHi(double v) { set_->PulseBeforeHi = v; }
  /// Lower level just before the pulse, entered positive. [ratio]  Default 0; from 0.
  double GetPulseBeforeLo() const { return set_->PulseBeforeLo; }
  void SetPulseBeforeLo(double v) { set_->PulseBeforeLo = v; }
  /// Upper level along the slopes of the pulse. [ratio]  Default 0; from 0.
  double GetPulseSlopeHi() const { return set_->PulseSlopeHi; }
  void SetPulseSlopeHi(double v) { set_->PulseSlopeHi = v; }
  /// Lower level along the slopes of the pulse, entered positive. [ratio]  Default 0; from 0.
  double GetPulseSlopeLo() const { return set_->PulseSlopeLo; }
  void SetPulseSlopeLo(double v) { set_->PulseSlopeLo = v; }
  /// Upper limit over the top of the pulse; 1 or more. [multiples of the pulse]  Default 0; from 0.
  double GetMainPulseHi() const { return set_->MainPulseHi; }
  void SetMainPulseHi(double v) { set_->MainPulseHi = v; }
  /// Lower limit over the top of the pulse; up to 1. [multiples of the pulse]  Default 0; from 0.
  /// Applied as it is.
  double GetMainPulseLo() const { return set_->MainPulseLo; }
  void SetMainPulseLo(double v) { set_->MainPulseLo = v; }
  /// Upper level after the pulse. [ratio]  Default 0; from 0.
  double GetTolEndHi() const { return set_->TolEndHi; }
  void SetTolEndHi(double v) { set_->TolEndHi = v; }
  /// Lower level after the pulse, entered positive. [ratio]  Default 0; from 0.
  double GetTolEndLo() const { return set_->TolEndLo; }
  void SetTolEndLo(double v) { set_->TolEndLo = v; }
  /// Length of the region before the pulse. [width]  Default 0; from 0.
  double GetPulseBeforeWidth() const { return set_->PulseBeforeWidth; }
  void SetPulseBeforeWidth(double v) { set_->PulseBeforeWidth = v; }
  /// Length of the region after the pulse. [width]  Default 0; from 0.
  double GetPulseAfterWidth() const { return set_->PulseAfterWidth; }
  void SetPulseAfterWidth(double v) { set_->PulseAfterWidth = v; }
  /// Rise of the pulse that the standard asks for. [width]  Default 0; 0 to 1.
  double GetPulseRiseWidth() const { return set_->PulseRiseWidth; }
  void SetPulseRiseWidth(double v) { set_->PulseRiseWidth = v; }
  /// Fall of the pulse that the standard asks for. [width]  Default 0; 0 to 1.
  double GetPulseFallWidth() const { return set_->PulseFallWidth; }
  void SetPulseFallWidth(double v) { set_->PulseFallWidth = v; }
};

}  // namespace qarv::wave_def
