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
/// Levels are ratios to the peak amplitude; lower levels are entered positive and applied negated.
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefTolUserDef {
  // The data model, in record order.
  struct Fields {
    double TolLeftU = 0.0;     // [ratio] upper level before the pulse
    double TolLeftL = 0.0;     // [ratio] lower level before the pulse
    double TolFrontA = 0.0;    // [width] transition into the pulse; 0 = none
    double TolMainU = 0.0;     // [ratio] upper level on the main pulse
    double TolMainL = 0.0;     // [ratio] lower level on the main pulse
    double TolRightU = 0.0;    // [ratio] upper level after the pulse
    double TolRightL = 0.0;    // [ratio] lower level after the pulse
    double TolRearA = 0.0;     // [width] transition out of the pulse; 0 = none
    bool TolPulsSet = false;   // the four levels below are in force
    double TolPulsBegU = 0.0;  // [ratio] upper level at the pulse's beginning
    double TolPulsBegL = 0.0;  // [ratio] lower level at the pulse's beginning
    double TolPulsEndU = 0.0;  // [ratio] upper level at the pulse's end
    double TolPulsEndL = 0.0;  // [ratio] lower level at the pulse's end
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

  double GetTolLeftU() const { return set_->TolLeftU; }
  void SetTolLeftU(double v) { set_->TolLeftU = v; }
  double GetTolLeftL() const { return set_->TolLeftL; }
  void SetTolLeftL(double v) { set_->TolLeftL = v; }
  double GetTolFrontA() const { return set_->TolFrontA; }
  void SetTolFrontA(double v) { set_->TolFrontA = v; }
  double GetTolMainU() const { return set_->TolMainU; }
  void SetTolMainU(double v) { set_->TolMainU = v; }
  double GetTolMainL() const { return set_->TolMainL; }
  void SetTolMainL(double v) { set_->TolMainL = v; }
  double GetTolRightU() const { return set_->TolRightU; }
  void SetTolRightU(double v) { set_->TolRightU = v; }
  double GetTolRightL() const { return set_->TolRightL; }
  void SetTolRightL(double v) { set_->TolRightL = v; }
  double GetTolRearA() const { return set_->TolRearA; }
  void SetTolRearA(double v) { set_->TolRearA = v; }
  bool GetTolPulsSet() const { return set_->TolPulsSet; }
  double GetTolPulsBegU() const { return set_->TolPulsBegU; }
  double GetTolPulsBegL() const { return set_->TolPulsBegL; }
  double GetTolPulsEndU() const { return set_->TolPulsEndU; }
  double GetTolPulsEndL() const { return set_->TolPulsEndL; }

  /// Sets the levels at the pulse's beginning and end, or with @p set false puts them out of force
  /// and at 0, whatever is given.
  void SetTolPulsParam(bool set, double begU, double begL, double endU, double endL);
};

}  // namespace qarv::wave_def
