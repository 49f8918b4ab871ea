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
///     x(t) = e(t) sin(2 pi t / Period),   e: 0 to LevelBeg in PreTime, on to LevelEnd in the ramp,
///                                         and in a straight line towards 0 at the end
///     Period, PreTime, t [s],   levels [amplitude unit]
///
/// Take it to find the level at which something happens, at one frequency.  CWaveDefSingle stays at
/// one level.
///
/// @code
/// CWaveDefGradual ramp;
/// ramp.SetPeriod(0.01);
/// ramp.SetLevelBeg(1.0);
/// ramp.SetLevelEnd(5.0);
/// ramp.SetLengthType(CWaveDefGradual::LENGTH_BY_TIME);
/// ramp.SetWaveTime(2.0);
/// ramp.SetPreTime(0.1);
/// ramp.SetNsamp(2300);
/// CWaveDef def;
/// def.SetFsamp(1000.0);
/// const bool defined = def.SetDefGradual(ramp);  // true
/// @endcode
///
/// The fall does not reach 0: the last sample is that of the line one sample before its end.  A
/// value; no setter checks.
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
    double Period = 0.0;
    double LevelBeg = 0.0;
    double LevelEnd = 0.0;
    LENGTH_TYPE LengthType = LENGTH_TYPE_NONE;
    double WaveTime = 0.0;
    double WaveSlope = 0.0;
    double PreTime = 0.0;
    double EdgeTime = 0.0;
    unsigned int Nsamp = 0;
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

  /// Period of the sine. [s]  Default 0; above 0.  At least two sampling intervals.
  double GetPeriod() const { return set_->Period; }
  void SetPeriod(double v) { set_->Period = v; }
  /// Amplitude at the beginning of the ramp. [amplitude unit]  Default 0; any.
  double GetLevelBeg() const { return set_->LevelBeg; }
  void SetLevelBeg(double v) { set_->LevelBeg = v; }
  /// Amplitude at the end of the ramp. [amplitude unit]  Default 0; any.
  double GetLevelEnd() const { return set_->LevelEnd; }
  void SetLevelEnd(double v) { set_->LevelEnd = v; }
  /// What gives the length of the ramp.  Default LENGTH_TYPE_NONE.  That is refused.
  LENGTH_TYPE GetLengthType() const { return set_->LengthType; }
  void SetLengthType(LENGTH_TYPE v) { set_->LengthType = v; }
  /// Length of the ramp, for LENGTH_BY_TIME. [s]  Default 0; from 0.
  double GetWaveTime() const { return set_->WaveTime; }
  void SetWaveTime(double v) { set_->WaveTime = v; }
  /// Change of the amplitude, for LENGTH_BY_SLOPE; not 0. [amplitude unit/s]  Default 0; any.  Of
  /// the sign of LevelEnd - LevelBeg.
  double GetWaveSlope() const { return set_->WaveSlope; }
  void SetWaveSlope(double v) { set_->WaveSlope = v; }
  /// Length of the rise from 0 to LevelBeg. [s]  Default 0; from 0.
  double GetPreTime() const { return set_->PreTime; }
  void SetPreTime(double v) { set_->PreTime = v; }
  /// Kept for the controller. [s]  Default 0.  Not generated from.
  double GetEdgeTime() const { return set_->EdgeTime; }
  void SetEdgeTime(double v) { set_->EdgeTime = v; }
  /// Length of the waveform. [sample]  Default 0; from 1.  What lies behind the ramp is the fall.
  unsigned int GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(unsigned int v) { set_->Nsamp = v; }
};

}  // namespace qarv::wave_def
