// CWaveDefSymmetry: a shock pulse with a compensating pulse of the same shape.
#pragma once

#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"
#include "wave_def/wave_def_sub.h"

namespace qarv::wave_def {

/// A main pulse and a compensating pulse of the same shape and width and of opposite sign, so that
/// the net area is zero.  The compensation stands whole before or behind the main pulse, or as two
/// halves of half the amplitude around it.
///
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefSymmetry {
  // The data model, in record order.
  struct Fields {
    wave_def_sub::WAVE_KIND WaveKind = {};  // shape of the pulses: HALF_SINE, TRIANGLE or HAVERSINE
    double Peak = 0.0;                      // [amplitude unit] peak of the main pulse
    double Width = 0.0;                     // [s] width of each pulse
    double PeakPos = 0.0;                   // [width] place of a triangle's peak
    double PreZero = 0.0;                   // [s] silence before the first pulse
    double MidZero = 0.0;                   // [s] silence between the first pulse and the next
    double PostZero = 0.0;                  // [s] silence after the last pulse
    bool DevideComp = false;  // the compensating pulse is divided into halves around the main pulse
    bool CompForward = false;      // the whole compensating pulse comes before the main pulse
    bool MidBackward = false;      // kept for the caller; not generated from
    double MidZeroBackward = 0.0;  // [s] silence between the main pulse and the second half
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.WaveKind, f.Peak, f.Width, f.PeakPos, f.PreZero, f.MidZero, f.PostZero,
                      f.DevideComp, f.CompForward, f.MidBackward, f.MidZeroBackward);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefSymmetry() = default;
  CWaveDefSymmetry(const CWaveDefSymmetry&) = default;
  CWaveDefSymmetry(CWaveDefSymmetry&&) = default;  ///< leaves the source cleared
  CWaveDefSymmetry& operator=(const CWaveDefSymmetry&) = default;
  CWaveDefSymmetry& operator=(CWaveDefSymmetry&&) = default;
  virtual ~CWaveDefSymmetry();

  bool operator==(const CWaveDefSymmetry&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  double GetPeak() const { return set_->Peak; }
  void SetPeak(double v) { set_->Peak = v; }
  double GetWidth() const { return set_->Width; }
  void SetWidth(double v) { set_->Width = v; }
  double GetPeakPos() const { return set_->PeakPos; }
  void SetPeakPos(double v) { set_->PeakPos = v; }
  double GetPreZero() const { return set_->PreZero; }
  void SetPreZero(double v) { set_->PreZero = v; }
  double GetMidZero() const { return set_->MidZero; }
  void SetMidZero(double v) { set_->MidZero = v; }
  double GetPostZero() const { return set_->PostZero; }
  void SetPostZero(double v) { set_->PostZero = v; }
  bool GetDevideComp() const { return set_->DevideComp; }
  void SetDevideComp(bool v) { set_->DevideComp = v; }
  bool GetCompForward() const { return set_->CompForward; }
  void SetCompForward(bool v) { set_->CompForward = v; }
  bool GetMidBackward() const { return set_->MidBackward; }
  void SetMidBackward(bool v) { set_->MidBackward = v; }
  double GetMidZeroBackward() const { return set_->MidZeroBackward; }
  void SetMidZeroBackward(double v) { set_->MidZeroBackward = v; }
};

}  // namespace qarv::wave_def
