// CWaveDefGradual: a sine whose level changes gradually from one value to another.
#pragma once

#include <cstdint>
#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// A sine in three linear sections of amplitude: up from 0 to a beginning level over the pre-time,
/// from there to an end level over a ramp, and down towards 0 over the remaining samples.
///
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefGradual {
 public:
  /// How the length of the ramp is given.
  enum LENGTH_TYPE : std::int32_t {
    LENGTH_TYPE_NONE = 0,  ///< not set
    LENGTH_BY_TIME = 1,    ///< the ramp lasts WaveTime
    LENGTH_BY_SLOPE = 2,   ///< the ramp lasts (LevelEnd - LevelBeg) / WaveSlope
  };

 private:
  // The data model, in record order.
  struct Fields {
    double Period = 0.0;    // [s] period of the sine
    double LevelBeg = 0.0;  // [amplitude unit] amplitude at the start of the ramp
    double LevelEnd = 0.0;  // [amplitude unit] amplitude at the end of the ramp
    LENGTH_TYPE LengthType = LENGTH_TYPE_NONE;  // whether the ramp is given by time or by slope
    double WaveTime = 0.0;                      // [s] duration of the ramp, with LENGTH_BY_TIME
    double WaveSlope = 0.0;  // [amplitude unit / s] slope of the ramp, with LENGTH_BY_SLOPE
    double PreTime = 0.0;    // [s] duration of the rise from 0 to LevelBeg
    double EdgeTime = 0.0;   // [s] kept for the caller; not generated from
    unsigned int Nsamp = 0;  // [sample] length of the wave
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.Period, f.LevelBeg, f.LevelEnd, f.LengthType, f.WaveTime, f.WaveSlope,
                      f.PreTime, f.EdgeTime, f.Nsamp);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefGradual() = default;
  CWaveDefGradual(const CWaveDefGradual&) = default;
  CWaveDefGradual(CWaveDefGradual&&) = default;  ///< leaves the source cleared
  CWaveDefGradual& operator=(const CWaveDefGradual&) = default;
  CWaveDefGradual& operator=(CWaveDefGradual&&) = default;
  virtual ~CWaveDefGradual();

  bool operator==(const CWaveDefGradual&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  double GetPeriod() const { return set_->Period; }
  void SetPeriod(double v) { set_->Period = v; }
  double GetLevelBeg() const { return set_->LevelBeg; }
  void SetLevelBeg(double v) { set_->LevelBeg = v; }
  double GetLevelEnd() const { return set_->LevelEnd; }
  void SetLevelEnd(double v) { set_->LevelEnd = v; }
  LENGTH_TYPE GetLengthType() const { return set_->LengthType; }
  void SetLengthType(LENGTH_TYPE v) { set_->LengthType = v; }
  double GetWaveTime() const { return set_->WaveTime; }
  void SetWaveTime(double v) { set_->WaveTime = v; }
  double GetWaveSlope() const { return set_->WaveSlope; }
  void SetWaveSlope(double v) { set_->WaveSlope = v; }
  double GetPreTime() const { return set_->PreTime; }
  void SetPreTime(double v) { set_->PreTime = v; }
  double GetEdgeTime() const { return set_->EdgeTime; }
  void SetEdgeTime(double v) { set_->EdgeTime = v; }
  unsigned int GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(unsigned int v) { set_->Nsamp = v; }
};

}  // namespace qarv::wave_def
