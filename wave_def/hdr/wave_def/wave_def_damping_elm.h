// CWaveDefDampingElm: one component of a damped-sine synthesis.
#pragma once

#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// One component of a damped-sine synthesis.  A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefDampingElm {
  // The data model, in record order.
  struct Fields {
    double Freq = 0.0;         // [Hz] frequency
    double Ampl = 0.0;         // [amplitude unit] amplitude
    double Zeta = 0.0;         // [1] damping ratio
    unsigned int NumHalf = 0;  // [half cycles] wavelet method only
    double Delay = 0.0;        // [s] start, from the first sample
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

  double GetFreq() const { return set_->Freq; }
  void SetFreq(double v) { set_->Freq = v; }
  double GetAmpl() const { return set_->Ampl; }
  void SetAmpl(double v) { set_->Ampl = v; }
  double GetZeta() const { return set_->Zeta; }
  void SetZeta(double v) { set_->Zeta = v; }
  unsigned int GetNumHalf() const { return set_->NumHalf; }
  void SetNumHalf(unsigned int v) { set_->NumHalf = v; }
  double GetDelay() const { return set_->Delay; }
  void SetDelay(double v) { set_->Delay = v; }
};

}  // namespace qarv::wave_def
