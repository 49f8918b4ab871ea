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
///     x(t) = e(t) sin(2 pi t / Period),   e = PeakLevel t / EdgeTime  in the first EdgeTime,
///                                         e = PeakLevel               between the edges,
///                                         e = PeakLevel (T - t) / EdgeTime  in the last, T the end
///     Period, EdgeTime, t [s],   PeakLevel [amplitude unit]
///
/// Take it for a dwell at one frequency.  CWaveDefGradual changes the amplitude on the way,
/// CWaveDefSineBeatBurst repeats short packets.
///
/// @code
/// CWaveDefSingle sine;
/// sine.SetPeriod(0.01);
/// sine.SetPeakLevel(2.0);
/// sine.SetNsamp(1000);
/// CWaveDef def;
/// def.SetFsamp(1000.0);
/// const bool defined = def.SetDefSingle(sine);  // true
/// const auto n = def.GetNsamp();                // 1000
/// @endcode
///
/// Phase and amplitude come from the sample's index, so that no error builds up in a long wave.  A
/// value; no setter checks.  `Period`, `PeakLevel`, `EdgeTime` and `Nsamp` make the wave.
class QARV_WAVE_DEF_EXPORT CWaveDefSingle {
 public:
  /// How the caller expressed the length.  The values other than 0 are the caller's own.
  enum LENGTH_TYPE : std::int32_t {
    LENGTH_TYPE_NONE = 0,  ///< not set
  };

 private:
  // The data model, in record order.
  struct Fields {
    double Period = 0.0;
    double PeakLevel = 0.0;
    LENGTH_TYPE LengthType = LENGTH_TYPE_NONE;
    double WaveTime = 0.0;
    double WavePeriod = 0.0;
    double EdgeTime = 0.0;
    unsigned int Nsamp = 0;
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

  /// Period of the sine. [s]  Default 0; above 0.  At least two sampling intervals.
  double GetPeriod() const { return set_->Period; }
  void SetPeriod(double v) { set_->Period = v; }
  /// Amplitude of the sine. [amplitude unit]  Default 0; any.  A negative one begins downwards.
  double GetPeakLevel() const { return set_->PeakLevel; }
  void SetPeakLevel(double v) { set_->PeakLevel = v; }
  /// How the length was stated; kept for the controller.  Default 0.  Not generated from.
  LENGTH_TYPE GetLengthType() const { return set_->LengthType; }
  void SetLengthType(LENGTH_TYPE v) { set_->LengthType = v; }
  /// Duration as it was stated; kept for the controller. [s]  Default 0.  Not generated from.
  double GetWaveTime() const { return set_->WaveTime; }
  void SetWaveTime(double v) { set_->WaveTime = v; }
  /// Length in terms of its own; kept for the controller. [1]  Default 0.  Not generated from.
  double GetWavePeriod() const { return set_->WavePeriod; }
  void SetWavePeriod(double v) { set_->WavePeriod = v; }
  /// Length of each linear edge. [s]  Default 0; from 0.  Up to half the duration of the wave; 0 is
  /// no edges.
  double GetEdgeTime() const { return set_->EdgeTime; }
  void SetEdgeTime(double v) { set_->EdgeTime = v; }
  /// Length of the waveform. [sample]  Default 0; from 1.
  unsigned int GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(unsigned int v) { set_->Nsamp = v; }
};

}  // namespace qarv::wave_def
