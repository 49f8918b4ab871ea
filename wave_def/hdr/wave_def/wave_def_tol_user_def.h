// CWaveDefTolUserDef: the levels of a tolerance band that the user defines.
#pragma once

#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// A tolerance band that the user defines: a level before the pulse, a transition into it, the main
/// pulse, a transition out of it and a level behind it.
///
///     over the pulse:  band = wave + ((1 - x) edge + x TolMain) A,   x = wave / A,   A the peak
///     [amplitude unit]
///
/// edge is the level before the pulse up to the peak and that after it from there on, or with a
/// transition TolPulsBeg and TolPulsEnd.  Take it where no standard's figure fits, and for
/// triangles and user trapezoids, which have no other band; CWaveDefTolSpecify draws the standards'
/// figures.
///
/// @code
/// CWaveDefTolUserDef levels;
/// levels.SetTolLeftU(0.05);
/// levels.SetTolLeftL(0.05);
/// levels.SetTolMainU(0.15);
/// levels.SetTolMainL(0.15);
/// levels.SetTolRightU(0.2);
/// levels.SetTolRightL(0.3);
/// CWaveDefClassical pulse;
/// pulse.SetTolKind(CWaveDefClassical::TOL_USER_DEF);  // before the levels
/// const bool taken = pulse.SetDefTolUserDef(levels);  // true
/// @endcode
///
/// Levels are ratios to the peak amplitude; lower levels are entered positive and applied negated.
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefTolUserDef {
  // The data model, in record order.
  struct Fields {
    double TolLeftU = 0.0;
    double TolLeftL = 0.0;
    double TolFrontA = 0.0;
    double TolMainU = 0.0;
    double TolMainL = 0.0;
    double TolRightU = 0.0;
    double TolRightL = 0.0;
    double TolRearA = 0.0;
    bool TolPulsSet = false;
    double TolPulsBegU = 0.0;
    double TolPulsBegL = 0.0;
    double TolPulsEndU = 0.0;
    double TolPulsEndL = 0.0;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.TolLeftU, f.TolLeftL, f.TolFrontA, f.TolMainU, f.TolMainL, f.TolRightU,
                      f.TolRightL, f.TolRearA, f.TolPulsSet, f.TolPulsBegU, f.TolPulsBegL,
                      f.TolPulsEndU, f.TolPulsEndL);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefTolUserDef() = default;
  CWaveDefTolUserDef(const CWaveDefTolUserDef&) = default;
  CWaveDefTolUserDef(CWaveDefTolUserDef&&) = default;  ///< leaves the source cleared
  CWaveDefTolUserDef& operator=(const CWaveDefTolUserDef&) = default;
  CWaveDefTolUserDef& operator=(CWaveDefTolUserDef&&) = default;
  virtual ~CWaveDefTolUserDef();

  bool operator==(const CWaveDefTolUserDef&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// Upper level before the pulse. [ratio]  Default 0; from 0.
  double GetTolLeftU() const { return set_->TolLeftU; }
  void SetTolLeftU(double v) { set_->TolLeftU = v; }
  /// Lower level before the pulse, entered positive. [ratio]  Default 0; from 0.
  double GetTolLeftL() const { return set_->TolLeftL; }
  void SetTolLeftL(double v) { set_->TolLeftL = v; }
  /// Length of the transition before the pulse. [width]  Default 0; from 0.  0 is none.
  double GetTolFrontA() const { return set_->TolFrontA; }
  void SetTolFrontA(double v) { set_->TolFrontA = v; }
  /// Upper margin at the peak of the pulse. [ratio]  Default 0; from 0.  Adds to the pulse.
  double GetTolMainU() const { return set_->TolMainU; }
  void SetTolMainU(double v) { set_->TolMainU = v; }
  /// Lower margin at the peak of the pulse, entered positive. [ratio]  Default 0; from 0.
  double GetTolMainL() const { return set_->TolMainL; }
  void SetTolMainL(double v) { set_->TolMainL = v; }
  /// Upper level after the pulse. [ratio]  Default 0; from 0.
  double GetTolRightU() const { return set_->TolRightU; }
  void SetTolRightU(double v) { set_->TolRightU = v; }
  /// Lower level after the pulse, entered positive. [ratio]  Default 0; from 0.
  double GetTolRightL() const { return set_->TolRightL; }
  void SetTolRightL(double v) { set_->TolRightL = v; }
  /// Length of the transition after the pulse. [width]  Default 0; from 0.  0 is none.
  double GetTolRearA() const { return set_->TolRearA; }
  void SetTolRearA(double v) { set_->TolRearA = v; }
  /// Whether the levels at the ends of the pulse are given.  Default false.
  bool GetTolPulsSet() const { return set_->TolPulsSet; }
  /// Upper level at the beginning of the pulse, with TolPulsSet. [ratio]  Default 0; any.  Where it
  /// is 0, TolMain counts for both bands.
  double GetTolPulsBegU() const { return set_->TolPulsBegU; }
  /// Lower level at the beginning of the pulse, with TolPulsSet. [ratio]  Default 0; any.  Applied
  /// negated.
  double GetTolPulsBegL() const { return set_->TolPulsBegL; }
  /// Upper level at the end of the pulse, with TolPulsSet. [ratio]  Default 0; any.  Where it is 0,
  /// TolMain counts for both bands.
  double GetTolPulsEndU() const { return set_->TolPulsEndU; }
  /// Lower level at the end of the pulse, with TolPulsSet. [ratio]  Default 0; any.  Applied
  /// negated.
  double GetTolPulsEndL() const { return set_->TolPulsEndL; }

  /// Sets the levels at the pulse's beginning and end, or with @p set false puts them out of force
  /// and at 0, whatever is given.
  void SetTolPulsParam(bool set, double begU, double begL, double endU, double endL);
};

}  // namespace qarv::wave_def
