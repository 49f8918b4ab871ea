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
    std::string StdName;                    // name of the standard, free text
    wave_def_sub::WAVE_KIND WaveKind = {};  // the pulse shape that the values were written for
    BASE_STANDARD_TYPE BaseStandard =
        BASE_STD_NONE;              // the family of standards that the band follows
    double TolBeginHi = 0.0;        // [ratio] upper level before the front region
    double TolBeginLo = 0.0;        // [ratio] lower level there
    double PulseBeforeHi = 0.0;     // [ratio] upper level at the start of the pulse
    double PulseBeforeLo = 0.0;     // [ratio] lower level there
    double PulseSlopeHi = 0.0;      // [ratio] upper level on the slopes
    double PulseSlopeLo = 0.0;      // [ratio] lower level on the slopes
    double MainPulseHi = 0.0;       // [multiple of the nominal pulse] upper limit on the main pulse
    double MainPulseLo = 0.0;       // [multiple of the nominal pulse] lower limit on the main pulse
    double TolEndHi = 0.0;          // [ratio] upper level after the pulse
    double TolEndLo = 0.0;          // [ratio] lower level after the pulse
    double PulseBeforeWidth = 0.0;  // [width] front region before the pulse
    double PulseAfterWidth = 0.0;   // [width] region after the pulse; fall of a sawtooth
    double PulseRiseWidth = 0.0;    // [width] rise of a trapezoid
    double PulseFallWidth = 0.0;    // [width] fall of a trapezoid
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

  const std::string& GetStdName() const { return set_->StdName; }
  void SetStdName(const std::string& v) { set_->StdName = v; }
  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  BASE_STANDARD_TYPE GetBaseStandard() const { return set_->BaseStandard; }
  void SetBaseStandard(BASE_STANDARD_TYPE v) { set_->BaseStandard = v; }
  double GetTolBeginHi() const { return set_->TolBeginHi; }
  void SetTolBeginHi(double v) { set_->TolBeginHi = v; }
  double GetTolBeginLo() const { return set_->TolBeginLo; }
  void SetTolBeginLo(double v) { set_->TolBeginLo = v; }
  double GetPulseBeforeHi() const { return set_->PulseBeforeHi; }
  void SetPulseBeforeHi(double v) { set_->PulseBeforeHi = v; }
  double GetPulseBeforeLo() const { return set_->PulseBeforeLo; }
  void SetPulseBeforeLo(double v) { set_->PulseBeforeLo = v; }
  double GetPulseSlopeHi() const { return set_->PulseSlopeHi; }
  void SetPulseSlopeHi(double v) { set_->PulseSlopeHi = v; }
  double GetPulseSlopeLo() const { return set_->PulseSlopeLo; }
  void SetPulseSlopeLo(double v) { set_->PulseSlopeLo = v; }
  double GetMainPulseHi() const { return set_->MainPulseHi; }
  void SetMainPulseHi(double v) { set_->MainPulseHi = v; }
  double GetMainPulseLo() const { return set_->MainPulseLo; }
  void SetMainPulseLo(double v) { set_->MainPulseLo = v; }
  double GetTolEndHi() const { return set_->TolEndHi; }
  void SetTolEndHi(double v) { set_->TolEndHi = v; }
  double GetTolEndLo() const { return set_->TolEndLo; }
  void SetTolEndLo(double v) { set_->TolEndLo = v; }
  double GetPulseBeforeWidth() const { return set_->PulseBeforeWidth; }
  void SetPulseBeforeWidth(double v) { set_->PulseBeforeWidth = v; }
  double GetPulseAfterWidth() const { return set_->PulseAfterWidth; }
  void SetPulseAfterWidth(double v) { set_->PulseAfterWidth = v; }
  double GetPulseRiseWidth() const { return set_->PulseRiseWidth; }
  void SetPulseRiseWidth(double v) { set_->PulseRiseWidth = v; }
  double GetPulseFallWidth() const { return set_->PulseFallWidth; }
  void SetPulseFallWidth(double v) { set_->PulseFallWidth = v; }
};

}  // namespace qarv::wave_def
