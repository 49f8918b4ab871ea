// CWaveDefDampingElm: one component of a damped-sine synthesis.
#pragma once

#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// One component of a damped-sine synthesis (CWaveDefDamping): a decaying sine, or a wavelet of
/// NumHalf half cycles under a half-sine window.
///
///     damped sine  Ampl e^(-Zeta w t) sin(w t),   w = 2 pi Freq
///     wavelet      Ampl sin(w t) sin(w t / NumHalf),   0 <= t <= NumHalf / (2 Freq)
///     t from Delay on [s],   Ampl [amplitude unit],   Freq [Hz],   Zeta [1]
///
/// Take a damped sine where the response has to ring like a structure, a wavelet where the
/// component has to end within a given time.
///
/// @code
/// CWaveDefDampingElm component;
/// component.SetFreq(50.0);
/// component.SetAmpl(10.0);
/// component.SetZeta(0.05);
/// const double zeta = component.GetZeta();  // 0.05
/// @endcode
///
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefDampingElm {
  // The data model, in record order.
  struct Fields {
    double Freq = 0.0;
    double Ampl = 0.0;
    double Zeta = 0.0;
    unsigned int NumHalf = 0;
    double Delay = 0.0;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) { return std::tie(f.Freq, f.Ampl, f.Zeta, f.NumHalf, f.Delay); }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefDampingElm() = default;
  CWaveDefDampingElm(const CWaveDefDampingElm&) = default;
  CWaveDefDampingElm(CWaveDefDampingElm&&) = default;  ///< leaves the source cleared
  CWaveDefDampingElm& operator=(const CWaveDefDampingElm&) = default;
  CWaveDefDampingElm& operator=(CWaveDefDampingElm&&) = default;
  virtual ~CWaveDefDampingElm();

  bool operator==(const CWaveDefDampingElm&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// Frequency of the component. [Hz]  Default 0; above 0.  Up to half the sampling frequency.
  double GetFreq() const { return set_->Freq; }
  void SetFreq(double v) { set_->Freq = v; }
  /// Amplitude of the component. [amplitude unit]  Default 0; any.
  double GetAmpl() const { return set_->Ampl; }
  void SetAmpl(double v) { set_->Ampl = v; }
  /// Damping ratio of the component; without effect on a wavelet. [1]  Default 0; from 0.  Below
  /// 1; usually 0.01 to 0.2.
  double GetZeta() const { return set_->Zeta; }
  void SetZeta(double v) { set_->Zeta = v; }
  /// Length of a wavelet; odd, 3 or more. [half cycles]  Default 0; from 0.  Only then it ends at
  /// rest: less is drawn as 3, an even number as the next one.
  unsigned int GetNumHalf() const { return set_->NumHalf; }
  void SetNumHalf(unsigned int v) { set_->NumHalf = v; }
  /// Beginning of the component. [s]  Default 0; from 0.  From the first sample.
  double GetDelay() const { return set_->Delay; }
  void SetDelay(double v) { set_->Delay = v; }
};

}  // namespace qarv::wave_def
