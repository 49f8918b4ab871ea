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
///     beat:   x(t) = Ampl sin(2 pi Freq t) sin(pi Freq t / Cycle),   0 <= t < Cycle / Freq
///     burst:  x(t) = Ampl sin(2 pi Freq t)
///     Ampl [amplitude unit],   Freq [Hz],   Cycle [cycles],   t [s] from the start of the packet
///
/// Take it for tests of equipment at its resonances, as for earthquakes; the beat is the gentler
/// one.  CWaveDefSingle goes on without a rest.
///
/// @code
/// CWaveDefSineBeatBurst beats;
/// beats.SetWaveKind(CWaveDefSineBeatBurst::SINE_BEAT);
/// beats.SetAmpl(1.0);
/// beats.SetFreq(5.0);
/// beats.SetCycle(10);
/// beats.SetFrame(5);
/// beats.SetRestTime(2.0);
/// CWaveDef def;
/// def.SetFsamp(256.0);
/// const bool defined = def.SetDefSineBeatBurst(beats);  // true
/// const auto n = def.GetNsamp();                        // 4608
/// @endcode
///
/// Packet and rest are whole samples, each rounded half up, so a packet may begin up to half a
/// sample per packet and rest before it beside its time.  A value; no setter checks.
///
/// Source: IEC 60068-2-57, Test Ff: Time-history and sine-beat method.
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
    WAVE_KIND WaveKind = WAVE_KIND_NONE;
    double Ampl = 0.0;
    double Freq = 0.0;
    unsigned int Cycle = 0;
    unsigned int Frame = 0;
    double RestTime = 0.0;
    bool Edging = false;
    unsigned int EdgeRise = 0;
    unsigned int EdgeFall = 0;
    WINDOW_TYPE EdgeWindow = WINDOW_NONE;
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

  /// Beat or burst.  Default WAVE_KIND_NONE.  That is refused.
  WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(WAVE_KIND v) { set_->WaveKind = v; }
  /// Amplitude of the sine; not 0. [amplitude unit]  Default 0; any.
  double GetAmpl() const { return set_->Ampl; }
  void SetAmpl(double v) { set_->Ampl = v; }
  /// Frequency of the sine. [Hz]  Default 0; above 0.  Up to half the sampling frequency.
  double GetFreq() const { return set_->Freq; }
  void SetFreq(double v) { set_->Freq = v; }
  /// Length of a packet. [cycles]  Default 0; from 1.
  unsigned int GetCycle() const { return set_->Cycle; }
  void SetCycle(unsigned int v) { set_->Cycle = v; }
  /// Number of packets. [packets]  Default 0; from 1.
  unsigned int GetFrame() const { return set_->Frame; }
  void SetFrame(unsigned int v) { set_->Frame = v; }
  /// Rest between packets. [s]  Default 0; from 0.  A negative one makes packets overlap.
  double GetRestTime() const { return set_->RestTime; }
  void SetRestTime(double v) { set_->RestTime = v; }
  /// Whether the packets of a burst are tapered.  Default false.
  bool GetEdging() const { return set_->Edging; }
  /// Length of the taper at the beginning, with Edging. [cycles]  Default 0; from 0.
  unsigned int GetEdgeRise() const { return set_->EdgeRise; }
  /// Length of the taper at the end, with Edging. [cycles]  Default 0; from 0.
  unsigned int GetEdgeFall() const { return set_->EdgeFall; }
  /// Shape of the tapers, with Edging.  Default WINDOW_NONE.
  WINDOW_TYPE GetEdgeWindow() const { return set_->EdgeWindow; }

  /// Sets the edges of a burst.  With @p edging false the lengths and the window become 0, whatever
  /// is given.
  /// @param[in] rise,fall  length of the rising and the falling taper [cycles]
  void SetEdging(bool edging, unsigned int rise, unsigned int fall, WINDOW_TYPE window);
};

}  // namespace qarv::wave_def
