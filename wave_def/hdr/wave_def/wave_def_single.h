// CWaveDefSingle: a sine of one frequency with linear edges.
#pragma once

#include <cstdint>
#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// A sine of one frequency: its amplitude rises from 0 over the edge time, stays at the peak level,
/// and falls again over the edge time at the end.
///
/// A value; no setter checks.  `Period`, `PeakLevel`, `EdgeTime` and `Nsamp` make the wave; the
/// rest is kept for the caller.
class QARV_WAVE_DEF_EXPORT CWaveDefSingle {
 public:
  /// How the caller expressed the length.  The values other than 0 are the caller's own.
  enum LENGTH_TYPE : std::int32_t {
    LENGTH_TYPE_NONE = 0,  ///< not set
  };

 private:
  // The data model, in record order.
  struct Fields {
    double Period = 0.0;     // [s] period of the sine
    double PeakLevel = 0.0;  // [amplitude unit] amplitude between the edges
    LENGTH_TYPE LengthType =
        LENGTH_TYPE_NONE;     // how the caller stated the length; not generated from
    double WaveTime = 0.0;    // [s] duration as the caller stated it; not generated from
    double WavePeriod = 0.0;  // length in the caller's terms; not generated from
    double EdgeTime = 0.0;    // [s] duration of each linear edge
    unsigned int Nsamp = 0;   // [sample] length of the wave
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.Period, f.PeakLevel, f.LengthType, f.WaveTime, f.WavePeriod, f.EdgeTime,
                      f.Nsamp);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefSingle() = default;
  CWaveDefSingle(const CWaveDefSingle&) = default;
  CWaveDefSingle(CWaveDefSingle&&) = default;  ///< leaves the source cleared
  CWaveDefSingle& operator=(const CWaveDefSingle&) = default;
  CWaveDefSingle& operator=(CWaveDefSingle&&) = default;
  virtual ~CWaveDefSingle();

  bool operator==(const CWaveDefSingle&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  double GetPeriod() const { return set_->Period; }
  void SetPeriod(double v) { set_->Period = v; }
  double GetPeakLevel() const { return set_->PeakLevel; }
  void SetPeakLevel(double v) { set_->PeakLevel = v; }
  LENGTH_TYPE GetLengthType() const { return set_->LengthType; }
  void SetLengthType(LENGTH_TYPE v) { set_->LengthType = v; }
  double GetWaveTime() const { return set_->WaveTime; }
  void SetWaveTime(double v) { set_->WaveTime = v; }
  double GetWavePeriod() const { return set_->WavePeriod; }
  void SetWavePeriod(double v) { set_->WavePeriod = v; }
  double GetEdgeTime() const { return set_->EdgeTime; }
  void SetEdgeTime(double v) { set_->EdgeTime = v; }
  unsigned int GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(unsigned int v) { set_->Nsamp = v; }
};

}  // namespace qarv::wave_def
