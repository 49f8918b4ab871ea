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
///     half sine  Peak sin(pi t / Width)          triangle  0 to Peak at PeakPos Width, and back
///     haversine  Peak (1 - cos(2 pi t / Width)) / 2
///     Peak [amplitude unit],   Width [s],   PeakPos [width],   0 <= t <= Width
///
/// Take it for a shock whose compensation may be as high as the pulse: it is the shortest one that
/// ends at rest.  CWaveDefClassical keeps the compensation within the bands of a standard, in a
/// longer frame.
///
/// @code
/// CWaveDefSymmetry shock;
/// shock.SetWaveKind(wave_def_sub::HALF_SINE);
/// shock.SetPeak(10.0);
/// shock.SetWidth(0.02);
/// shock.SetDevideComp(true);
/// CWaveDef def;
/// def.SetFsamp(10000.0);
/// const bool defined = def.SetDefSymmetry(shock);  // true
/// @endcode
///
/// The velocity ends at 0.  The displacement does so only with two halves that lie symmetrically.
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefSymmetry {
  // The data model, in record order.
  struct Fields {
    wave_def_sub::WAVE_KIND WaveKind = {};
    double Peak = 0.0;
    double Width = 0.0;
    double PeakPos = 0.0;
    double PreZero = 0.0;
    double MidZero = 0.0;
    double PostZero = 0.0;
    bool DevideComp = false;
    bool CompForward = false;
    bool MidBackward = false;
    double MidZeroBackward = 0.0;
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

  /// Shape of the pulses: HALF_SINE, TRIANGLE or HAVERSINE.  Default 0.  No shape, which is
  /// refused.
  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  /// Peak of the main pulse; not 0. [amplitude unit]  Default 0; any.
  double GetPeak() const { return set_->Peak; }
  void SetPeak(double v) { set_->Peak = v; }
  /// Width of every pulse. [s]  Default 0; above 0.
  double GetWidth() const { return set_->Width; }
  void SetWidth(double v) { set_->Width = v; }
  /// Place of the peak of a triangle. [width]  Default 0; 0 to 1.
  double GetPeakPos() const { return set_->PeakPos; }
  void SetPeakPos(double v) { set_->PeakPos = v; }
  /// Silence before the first pulse. [s]  Default 0; from 0.
  double GetPreZero() const { return set_->PreZero; }
  void SetPreZero(double v) { set_->PreZero = v; }
  /// Silence between pulse and compensation, or before the divided pulse. [s]  Default 0; from 0.
  double GetMidZero() const { return set_->MidZero; }
  void SetMidZero(double v) { set_->MidZero = v; }
  /// Silence after the last pulse. [s]  Default 0; from 0.
  double GetPostZero() const { return set_->PostZero; }
  void SetPostZero(double v) { set_->PostZero = v; }
  /// Whether the compensation is divided into halves before and after the pulse.  Default false.
  bool GetDevideComp() const { return set_->DevideComp; }
  void SetDevideComp(bool v) { set_->DevideComp = v; }
  /// Whether the compensation comes first, where it is not divided.  Default false.
  bool GetCompForward() const { return set_->CompForward; }
  void SetCompForward(bool v) { set_->CompForward = v; }
  /// Kept for the controller.  Default false.  Not generated from.
  bool GetMidBackward() const { return set_->MidBackward; }
  void SetMidBackward(bool v) { set_->MidBackward = v; }
  /// Silence between the pulse and the second half, where it is divided. [s]  Default 0; from 0.
  double GetMidZeroBackward() const { return set_->MidZeroBackward; }
  void SetMidZeroBackward(double v) { set_->MidZeroBackward = v; }
};

}  // namespace qarv::wave_def
