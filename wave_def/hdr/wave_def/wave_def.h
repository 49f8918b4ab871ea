// CWaveDef: the waveform definition of a shock and vibration test, with its tolerance bands.
#pragma once

#include <cstdint>
#include <tuple>

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"
#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "common/unit/unit_ctrl.h"
#include "wave_def/export.h"
#include "wave_def/wave_def_classical.h"
#include "wave_def/wave_def_damping.h"
#include "wave_def/wave_def_gradual.h"
#include "wave_def/wave_def_measure.h"
#include "wave_def/wave_def_sine_beat_burst.h"
#include "wave_def/wave_def_single.h"
#include "wave_def/wave_def_symmetry.h"

namespace qarv::wave_def {

/// A test waveform: the sampling settings, the parameter set of one waveform family, and the
/// samples generated from it with an upper and a lower tolerance band of the same length.
///
/// The caller sets the sampling and the tolerance ratios and hands a filled parameter set to one
/// `SetDef...` operation, which drops the definition before it, generates the waveform and builds
/// the bands.  The settings survive a definition and take effect at the next one.
///
///     TolU[i] = Wave[i] + peak TolUpperRat,   TolL[i] = Wave[i] + peak TolLowerRat
///     peak the largest magnitude of Wave [amplitude unit];   a classical pulse has its own bands
///
/// @code
/// CWaveDefSingle sine;
/// sine.SetPeriod(0.01);
/// sine.SetPeakLevel(2.0);
/// sine.SetNsamp(1000);
/// CWaveDef def;
/// def.SetFsamp(1000.0);
/// def.SetTolUpperRat(0.1);
/// def.SetTolLowerRat(-0.1);  // below the waveform: negative
/// const bool defined = def.SetDefSingle(sine);              // true
/// const auto n = def.GetNsamp();                            // 1000
/// const bool within = def.GetTolL()[3] < def.GetWave()[3];  // true
/// @endcode
///
/// The samples have the same bits on every machine, compiler and operating system.
///
/// The object is either undefined (`WAVE_TYPE_NONE`: fresh, cleared, after a failed definition or
/// load) or defined.  It is a plain value that owns all it holds, and it is used from one thread at
/// a time.  No setter checks.  Failures are reported by false; only the standard allocation, length
/// and out-of-range errors are thrown.  One that a definition ends in leaves the object undefined,
/// with no parameter set and no samples and with its settings; one that a copy assignment or a load
/// ends in leaves it cleared.
class QARV_WAVE_DEF_EXPORT CWaveDef {
 public:
  /// Which family is defined.  The values stand in records.
  enum WAVE_TYPE : std::int32_t {
    WAVE_TYPE_NONE = 0,             ///< undefined
    WAVE_TYPE_CLASSICAL = 1,        ///< CWaveDefClassical
    WAVE_TYPE_SYMMETRY = 2,         ///< CWaveDefSymmetry
    WAVE_TYPE_SINE_BEAT_BURST = 3,  ///< CWaveDefSineBeatBurst
    WAVE_TYPE_MEASURE = 4,          ///< CWaveDefMeasure
    WAVE_TYPE_GRADUAL = 5,          ///< CWaveDefGradual
    WAVE_TYPE_SINGLE = 6,           ///< CWaveDefSingle
    WAVE_TYPE_DAMPING = 7,          ///< CWaveDefDamping
  };

 private:
  // The leading fields of the data model, in record order.
  struct Fields {
    WAVE_TYPE WaveType = WAVE_TYPE_NONE;
    bool LongWave = false;
    common::uint64 MaxNsamp = 0;
    bool AutoFsamp = false;
    double Fsamp = 0.0;
    common::CUnitCtrl UnitAmpl;
    double TolUpperRat = 0.0;
    double TolLowerRat = 0.0;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.WaveType, f.LongWave, f.MaxNsamp, f.AutoFsamp, f.Fsamp, f.UnitAmpl,
                      f.TolUpperRat, f.TolLowerRat);
    }
  };

  // What a definition makes: the parameter sets, of which the active one counts and the others are
  // cleared, and the samples.
  struct Definition {
    CWaveDefClassical Classical;
    CWaveDefSymmetry Symmetry;
    CWaveDefSineBeatBurst SineBeatBurst;
    CWaveDefMeasure Measure;
    CWaveDefGradual Gradual;
    CWaveDefSingle Single;
    CWaveDefDamping Damping;
    common::CDataArrayFloatT<double> Wave;  // [amplitude unit]
    common::CDataArrayFloatT<double> TolU;  // [amplitude unit] upper band
    common::CDataArrayFloatT<double> TolL;  // [amplitude unit] lower band
  };

  common::FieldSet<Fields> head_;
  Definition def_;

 public:
  CWaveDef() = default;
  CWaveDef(const CWaveDef&) = default;
  CWaveDef(CWaveDef&&) = default;  ///< leaves the source cleared
  CWaveDef& operator=(const CWaveDef& other);
  CWaveDef& operator=(CWaveDef&&) = default;
  virtual ~CWaveDef();

  /// The settings, the active parameter set and the three arrays; true for the same object.  A NaN
  /// in any of them is equal to nothing.
  bool operator==(const CWaveDef& other) const;

  /// Back to the defaults: undefined, every setting 0.
  void Clear();

  /// Writes or reads the definition: the settings, the active parameter set and the samples.
  ///
  /// @return false if the stream is null (nothing touched); writing, at the first item that cannot
  ///         be written, and for an undefined object, which is no storable record (its settings are
  ///         in the stream then); reading, at the first item that cannot be read or if the record
  ///         names no family (cleared then)
  // Deliberate: an undefined object cannot be stored.  Only a defined waveform is a record.
  bool Serialize(common::CSerialData* stream);

  /// Which family is defined.  Default WAVE_TYPE_NONE; no setter, as a definition sets it.
  WAVE_TYPE GetWaveType() const { return head_->WaveType; }
  /// Long-wave mode; kept for the controller.  Default false.  Not generated from.
  bool GetLongWave() const { return head_->LongWave; }
  void SetLongWave(bool v) { head_->LongWave = v; }
  /// Largest length that is allowed; kept for the controller. [sample]  Default 0.  Not generated
  /// from.
  common::uint64 GetMaxNsamp() const { return head_->MaxNsamp; }
  void SetMaxNsamp(common::uint64 v) { head_->MaxNsamp = v; }
  /// Automatic sampling; kept for the controller.  Default false.  Not generated from.
  bool GetAutoFsamp() const { return head_->AutoFsamp; }
  void SetAutoFsamp(bool v) { head_->AutoFsamp = v; }
  /// Sampling frequency; a classical pulse has its own, 2.56 Fmax. [Hz]  Default 0; above 0.  Set
  /// it to that all the same, for GetMainPulsPos.
  double GetFsamp() const { return head_->Fsamp; }
  void SetFsamp(double v) { head_->Fsamp = v; }
  /// Unit of the amplitude.  Default none.  Not generated from.
  const common::CUnitCtrl& GetUnitAmpl() const { return head_->UnitAmpl; }
  void SetUnitAmpl(const common::CUnitCtrl& v) { head_->UnitAmpl = v; }
  /// Distance of the upper band from the waveform. [ratio]  Default 0; from 0.  To the waveform's
  /// largest magnitude.  A classical pulse has bands of its own.
  double GetTolUpperRat() const { return head_->TolUpperRat; }
  void SetTolUpperRat(double v) { head_->TolUpperRat = v; }
  /// Distance of the lower band from the waveform; negative. [ratio]  Default 0; up to 0.  Added
  /// with its sign, as the upper one.
  double GetTolLowerRat() const { return head_->TolLowerRat; }
  void SetTolLowerRat(double v) { head_->TolLowerRat = v; }

  /// The number of samples of the waveform.
  common::uint64 GetNsamp() const { return def_.Wave.GetSize(); }
  /// The waveform and its bands [amplitude unit], GetNsamp() samples each after a definition.  A
  /// record loads with bands of any length, also shorter than the waveform: whoever has loaded one
  /// looks at GetSize() of a band before its samples.
  const common::CDataArrayFloatT<double>& GetWave() const { return def_.Wave; }
  const common::CDataArrayFloatT<double>& GetTolU() const { return def_.TolU; }
  const common::CDataArrayFloatT<double>& GetTolL() const { return def_.TolL; }

  /// The stored parameter sets; all but the active one hold their defaults.
  const CWaveDefClassical& GetDefClassical() const { return def_.Classical; }
  const CWaveDefSymmetry& GetDefSymmetry() const { return def_.Symmetry; }
  const CWaveDefSineBeatBurst& GetDefSineBeatBurst() const { return def_.SineBeatBurst; }
  const CWaveDefMeasure& GetDefMeasure() const { return def_.Measure; }
  const CWaveDefGradual& GetDefGradual() const { return def_.Gradual; }
  const CWaveDefSingle& GetDefSingle() const { return def_.Single; }
  const CWaveDefDamping& GetDefDamping() const { return def_.Damping; }

  // Every definition first drops the one before it, so that a failure leaves the object undefined.
  // The object's own stored set is therefore no argument: it is cleared before it is looked at.

  /// Defines a sine of one frequency with linear edges.
  ///
  ///     wave[k] = envelope(k) sin(k / (Period / dt) 2 pi),   dt = 1 / Fsamp
  ///
  /// The envelope rises by PeakLevel / E per sample over the first E = EdgeTime / dt samples
  /// (truncated), stays at PeakLevel, and falls by as much per sample over the last E.
  /// @param[in] def  the parameters; not this object's own set, which is cleared first
  /// @return false if Fsamp or Nsamp is 0
  bool SetDefSingle(const CWaveDefSingle& def);

  /// Defines a measured waveform from its samples.
  /// @param[in] def      origin and edits of the samples; not this object's own set
  /// @param[in] samples  the waveform, of any length and any values, taken at Fsamp [amplitude
  ///                     unit]
  /// @return true
  // Deliberate: the object's own GetWave() as `samples` ends as an empty waveform, because the
  // definition before is dropped before the samples are looked at; so do its bands.
  bool SetDefMeasure(const CWaveDefMeasure& def, const common::CDataArrayFloatT<double>& samples);

  /// Defines a sine whose amplitude rises to LevelBeg, changes gradually to LevelEnd, and falls.
  /// @param[in] def  the parameters; not this object's own set
  /// @return false if Fsamp or Nsamp is 0, LengthType is not set, or the ramp is given by a slope
  ///         of 0
  bool SetDefGradual(const CWaveDefGradual& def);

  /// Defines sine beats or bursts: Frame packets of Cycle cycles with RestTime between them.
  /// @param[in] def  the parameters; not this object's own set
  /// @return false if Fsamp, Ampl, Freq, Cycle or Frame is 0, WaveKind is not set, or there are no
  ///         samples
  bool SetDefSineBeatBurst(const CWaveDefSineBeatBurst& def);

  /// Defines a shock pulse and its compensation of the same shape, with no net area.
  /// @param[in] def  the parameters; not this object's own set
  /// @return false if Fsamp, Peak or Width is 0, WaveKind is not HALF_SINE, TRIANGLE or HAVERSINE,
  ///         there are no samples, or a pulse does not fit between the silences
  bool SetDefSymmetry(const CWaveDefSymmetry& def);

  /// Defines a sum of damped sines or wavelets.
  /// @param[in] def  the parameters; not this object's own set
  /// @return false if Fsamp or Nsamp is 0, there are no elements, or SyncWaveType is not set
  bool SetDefDamping(const CWaveDefDamping& def);

  /// Defines a classical shock pulse with its own bands; the tolerance ratios take no part.
  ///
  /// The sample interval comes from Fmax, not from Fsamp.  With AddCmp the pulse gets compensation
  /// before and after it, so that velocity and displacement end at 0 and the whole keeps within the
  /// bands, scaled by CmpPre and CmpPost outside the pulse.  The stored set is the argument with
  /// the results of the compensation: levels (CmpU1, CmpU2), shares of the main area (CmpRgm1,
  /// CmpRgm2), gain (CmpCparam) and shift (WaveShift).
  /// @param[in] def  the parameters; not this object's own set
  /// @return false if TolKind or WaveKind is not set, MainAmpl, Fmax or Nsamp is 0, the pulse or a
  ///         band does not fit the frame, the shape does not offer the tolerance kind, or with
  ///         AddCmp CmpType is not set, the frame has no room for the compensation, or it does not
  ///         keep within the bands
  // Deliberate: after a failed compensation the arrays hold the waveform that it has come to, while
  // the object is undefined.
  bool SetDefClassical(const CWaveDefClassical& def);

  /// Where the main pulse of a classical waveform lies, from its parameters: MainWidth Fsamp
  /// samples about the middle of the frame plus MainShift of it.
  ///
  /// @param[out] start,end  first and last sample [sample]
  /// @return false, with nothing written, if a place is null or the waveform is not classical
  ///
  /// They are the samples of the drawn pulse where Fsamp is 2.56 Fmax; another Fsamp makes them
  /// too wide or too narrow.  A shift that the compensation applied (WaveShift) is not included:
  /// add WaveShift Nsamp.  Where MainShift is no whole number of samples, they may lie one sample
  /// beside the pulse: behind it for a negative shift, which is truncated towards 0 here and
  /// rounded down there, and before it for a positive one in a frame of an odd number of samples.
  ///
  /// Not limited to the frame: a pulse wider than what lies before its centre wraps below 0.
  bool GetMainPulsPos(common::uint64* start, common::uint64* end) const;
  /// The same with result places of the other 64-bit spelling.
  template <common::Uint64Place Start, common::Uint64Place End>
  requires(common::OtherUint64Place<Start> ||
           common::OtherUint64Place<End>) bool GetMainPulsPos(Start start, End end) const {
    common::uint64 first = 0;
    common::uint64 last = 0;
    if (start == nullptr || end == nullptr || !GetMainPulsPos(&first, &last)) return false;
    if constexpr (!std::is_null_pointer_v<Start>) *start = first;
    if constexpr (!std::is_null_pointer_v<End>) *end = last;
    return true;
  }

 protected:
  /// Drops the definition: no type, all parameter sets cleared, the arrays empty with their storage
  /// kept.  The settings stay.
  void LelWaveTypeClear();

  /// Builds both bands of a waveform that is not classical: the waveform moved up or down by the
  /// ratio times its largest absolute sample.
  ///
  ///     TolU[i] = Wave[i] + peak TolUpperRat,   TolL[i] = Wave[i] + peak TolLowerRat
  ///
  /// @return false, with nothing changed, if nothing is defined; true, with nothing changed, for a
  ///         classical waveform, which has its own bands
  // Deliberate: the lower ratio is added like the upper one, so a band below the waveform needs a
  // negative ratio.
  bool LclCalcTolData();

 private:
  template <class F>
  static bool WithActiveSet(WAVE_TYPE type, F f);
  template <class Make>
  bool Define(WAVE_TYPE type, Make make);
  template <class Set, class Generate>
  bool DefineFrom(WAVE_TYPE type, Set Definition::*set, const Set& def, Generate generate);
  bool SerializeItems(common::CSerialData* stream);
};

}  // namespace qarv::wave_def
