// CWaveDefSineBeatBurst: repeated sine packets, beats or bursts.
#pragma once

#include <cstdint>
#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// A sine packet, repeated with a silent rest in between: a beat, whose amplitude follows one half
/// sine over the packet, or a burst of constant amplitude, whose ends may be tapered.
///
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefSineBeatBurst {
 public:
  /// The kind of packet.
  enum WAVE_KIND : std::int32_t {
    WAVE_KIND_NONE = 0,  ///< not set
    SINE_BEAT = 1,       ///< a sine under one half sine over the packet
    SINE_BURST = 2,      ///< a sine of constant amplitude
  };

  /// The shape of a burst's tapers.
  enum WINDOW_TYPE : std::int32_t {
    WINDOW_NONE = 0,          ///< no taper
    WINDOW_HALF_HANNING = 1,  ///< half a Hanning window
    WINDOW_RAMP = 2,          ///< a straight line
  };

 private:
  // The data model, in record order.
  struct Fields {
    WAVE_KIND WaveKind = WAVE_KIND_NONE;   // beat or burst
    double Ampl = 0.0;                     // [amplitude unit] peak amplitude
    double Freq = 0.0;                     // [Hz] frequency of the sine
    unsigned int Cycle = 0;                // [cycles] length of a packet
    unsigned int Frame = 0;                // number of packets
    double RestTime = 0.0;                 // [s] silence between two packets
    bool Edging = false;                   // whether a burst's ends are tapered
    unsigned int EdgeRise = 0;             // [cycles] length of the rising taper
    unsigned int EdgeFall = 0;             // [cycles] length of the falling taper
    WINDOW_TYPE EdgeWindow = WINDOW_NONE;  // shape of the tapers
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.WaveKind, f.Ampl, f.Freq, f.Cycle, f.Frame, f.RestTime, f.Edging,
                      f.EdgeRise, f.EdgeFall, f.EdgeWindow);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefSineBeatBurst() = default;
  CWaveDefSineBeatBurst(const CWaveDefSineBeatBurst&) = default;
  CWaveDefSineBeatBurst(CWaveDefSineBeatBurst&&) = default;  ///< leaves the source cleared
  CWaveDefSineBeatBurst& operator=(const CWaveDefSineBeatBurst&) = default;
  CWaveDefSineBeatBurst& operator=(CWaveDefSineBeatBurst&&) = default;
  virtual ~CWaveDefSineBeatBurst();

  bool operator==(const CWaveDefSineBeatBurst&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(WAVE_KIND v) { set_->WaveKind = v; }
  double GetAmpl() const { return set_->Ampl; }
  void SetAmpl(double v) { set_->Ampl = v; }
  double GetFreq() const { return set_->Freq; }
  void SetFreq(double v) { set_->Freq = v; }
  unsigned int GetCycle() const { return set_->Cycle; }
  void SetCycle(unsigned int v) { set_->Cycle = v; }
  unsigned int GetFrame() const { return set_->Frame; }
  void SetFrame(unsigned int v) { set_->Frame = v; }
  double GetRestTime() const { return set_->RestTime; }
  void SetRestTime(double v) { set_->RestTime = v; }
  bool GetEdging() const { return set_->Edging; }
  unsigned int GetEdgeRise() const { return set_->EdgeRise; }
  unsigned int GetEdgeFall() const { return set_->EdgeFall; }
  WINDOW_TYPE GetEdgeWindow() const { return set_->EdgeWindow; }

  /// Sets the edges of a burst.  With @p edging false the lengths and the window become 0, whatever
  /// is given.
  /// @param[in] rise,fall  length of the rising and the falling taper [cycles]
  void SetEdging(bool edging, unsigned int rise, unsigned int fall, WINDOW_TYPE window);
};

}  // namespace qarv::wave_def
