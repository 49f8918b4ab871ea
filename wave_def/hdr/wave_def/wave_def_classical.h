// CWaveDefClassical: the parameters of a classical shock pulse.
#pragma once

#include <cstdint>
#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"
#include "wave_def/wave_def_sub.h"
#include "wave_def/wave_def_tol_specify.h"
#include "wave_def/wave_def_tol_user_def.h"

namespace qarv::wave_def {

/// The parameters of a classical shock pulse: its shape, size and place, the sampling of the frame,
/// the tolerance definition, and the compensation before and after the pulse.
///
/// A value that owns its two nested sets; the setters store what they are given, except the two of
/// the nested sets, which ask for the tolerance kind to be set first.
class QARV_WAVE_DEF_EXPORT CWaveDefClassical {
 public:
  /// Which tolerance definition applies.
  enum TOL_KIND : std::int32_t {
    TOL_NONE = 0,     ///< not set
    TOL_FIXED_1 = 1,  ///< built-in definitions; each shape offers its own subset
    TOL_FIXED_2 = 2,
    TOL_FIXED_3 = 3,
    TOL_FIXED_4 = 4,
    TOL_FIXED_5 = 5,
    TOL_FIXED_6 = 6,
    TOL_FIXED_7 = 7,
    TOL_FIXED_8 = 8,
    TOL_FIXED_9 = 9,
    TOL_USER_DEF = 10,  ///< levels of the held CWaveDefTolUserDef
    TOL_SPECIFY = 11,   ///< levels of the held CWaveDefTolSpecify
  };

  /// The form of the compensation.
  enum COMP_TYPE : std::int32_t {
    CMP_NONE = 0,         ///< not set
    CMP_RAMP = 1,         ///< straight ramps
    CMP_COSINE = 2,       ///< a raised cosine on each side
    CMP_FLAT_COSINE = 3,  ///< a flat part and a raised-cosine taper on each side
    CMP_OPTIMIZED = 4,    ///< blended by OptRatLevel, then optimised
  };

 private:
  // The data model, in record order.
  struct Fields {
    wave_def_sub::WAVE_KIND WaveKind = {};  // shape of the pulse
    double MainAmpl = 0.0;                  // [amplitude unit] peak of the main pulse, not 0
    double MainWidth = 0.0;                 // [s] width of the main pulse
    double MainRise = 0.0;                  // [width] rise, USER_TRAPEZOID only
    double MainFall = 0.0;                  // [width] fall, USER_TRAPEZOID only
    double MainShift = 0.0;  // [frame] place of the pulse's centre, from the middle of the frame
    double RestPre = 0.0;    // [s] rest before the main pulse, behind the pre-compensation
    double RestPost = 0.0;   // [s] rest after the main pulse, ahead of the post-compensation
    double Fmax = 0.0;       // [Hz] upper analysis frequency, not 0; sets the sample interval
    unsigned int Nsamp = 0;  // [sample] length of the frame, not 0
    double WaveShift = 0.0;  // [frame] result: shift that the compensation applied
    TOL_KIND TolKind = TOL_NONE;       // which tolerance definition applies
    CWaveDefTolUserDef DefTolUserDef;  // levels for TOL_USER_DEF
    CWaveDefTolSpecify DefTolSpecify;  // levels for TOL_SPECIFY
    bool AddCmp = false;               // add compensation before and after the pulse
    bool CmpNonSym = false;            // let pre- and post-compensation differ
    COMP_TYPE CmpType = CMP_NONE;      // form of the compensation
    double CmpPre = 0.0;               // [ratio] level of the pre-compensation
    double CmpPost = 0.0;              // [ratio] level of the post-compensation
    double CmpPcal = 0.0;              // kept for the caller; not generated from
    double CmpU1 = 0.0;                // [ratio] result: level of the drawn pre-compensation
    double CmpU2 = 0.0;                // [ratio] result: level of the drawn post-compensation
    double CmpRgm1 = 0.0;    // [1] result: share of the main area that the pre-compensation cancels
    double CmpRgm2 = 0.0;    // [1] result: share that the post-compensation cancels
    double CmpCparam = 0.0;  // [1] result: the spectrum gain that the search found
    bool CmpErr = false;     // kept for the caller; not generated from
    double OptRatLevel = 0.0;  // [1] blend of CMP_OPTIMIZED, used clamped to 0..1
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.WaveKind, f.MainAmpl, f.MainWidth, f.MainRise, f.MainFall, f.MainShift,
                      f.RestPre, f.RestPost, f.Fmax, f.Nsamp, f.WaveShift, f.TolKind,
                      f.DefTolUserDef, f.DefTolSpecify, f.AddCmp, f.CmpNonSym, f.CmpType, f.CmpPre,
                      f.CmpPost, f.CmpPcal, f.CmpU1, f.CmpU2, f.CmpRgm1, f.CmpRgm2, f.CmpCparam,
                      f.CmpErr, f.OptRatLevel);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefClassical() = default;
  CWaveDefClassical(const CWaveDefClassical&) = default;
  CWaveDefClassical(CWaveDefClassical&&) = default;  ///< leaves the source cleared
  CWaveDefClassical& operator=(const CWaveDefClassical&) = default;
  CWaveDefClassical& operator=(CWaveDefClassical&&) = default;
  virtual ~CWaveDefClassical();

  bool operator==(const CWaveDefClassical&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  double GetMainAmpl() const { return set_->MainAmpl; }
  void SetMainAmpl(double v) { set_->MainAmpl = v; }
  double GetMainWidth() const { return set_->MainWidth; }
  void SetMainWidth(double v) { set_->MainWidth = v; }
  double GetMainRise() const { return set_->MainRise; }
  void SetMainRise(double v) { set_->MainRise = v; }
  double GetMainFall() const { return set_->MainFall; }
  void SetMainFall(double v) { set_->MainFall = v; }
  double GetMainShift() const { return set_->MainShift; }
  void SetMainShift(double v) { set_->MainShift = v; }
  double GetRestPre() const { return set_->RestPre; }
  void SetRestPre(double v) { set_->RestPre = v; }
  double GetRestPost() const { return set_->RestPost; }
  void SetRestPost(double v) { set_->RestPost = v; }
  double GetFmax() const { return set_->Fmax; }
  void SetFmax(double v) { set_->Fmax = v; }
  unsigned int GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(unsigned int v) { set_->Nsamp = v; }
  double GetWaveShift() const { return set_->WaveShift; }
  void SetWaveShift(double v) { set_->WaveShift = v; }
  TOL_KIND GetTolKind() const { return set_->TolKind; }
  void SetTolKind(TOL_KIND v) { set_->TolKind = v; }
  bool GetAddCmp() const { return set_->AddCmp; }
  void SetAddCmp(bool v) { set_->AddCmp = v; }
  bool GetCmpNonSym() const { return set_->CmpNonSym; }
  void SetCmpNonSym(bool v) { set_->CmpNonSym = v; }
  COMP_TYPE GetCmpType() const { return set_->CmpType; }
  void SetCmpType(COMP_TYPE v) { set_->CmpType = v; }
  double GetCmpPre() const { return set_->CmpPre; }
  void SetCmpPre(double v) { set_->CmpPre = v; }
  double GetCmpPost() const { return set_->CmpPost; }
  void SetCmpPost(double v) { set_->CmpPost = v; }
  double GetCmpPcal() const { return set_->CmpPcal; }
  void SetCmpPcal(double v) { set_->CmpPcal = v; }
  double GetCmpU1() const { return set_->CmpU1; }
  void SetCmpU1(double v) { set_->CmpU1 = v; }
  double GetCmpU2() const { return set_->CmpU2; }
  void SetCmpU2(double v) { set_->CmpU2 = v; }
  double GetCmpRgm1() const { return set_->CmpRgm1; }
  void SetCmpRgm1(double v) { set_->CmpRgm1 = v; }
  double GetCmpRgm2() const { return set_->CmpRgm2; }
  void SetCmpRgm2(double v) { set_->CmpRgm2 = v; }
  double GetCmpCparam() const { return set_->CmpCparam; }
  void SetCmpCparam(double v) { set_->CmpCparam = v; }
  bool GetCmpErr() const { return set_->CmpErr; }
  void SetCmpErr(bool v) { set_->CmpErr = v; }
  double GetOptRatLevel() const { return set_->OptRatLevel; }
  void SetOptRatLevel(double v) { set_->OptRatLevel = v; }

  /// The levels of the user-defined band.  The setter takes them only while TolKind is
  /// TOL_USER_DEF.
  /// @return false, with nothing changed, for any other kind
  const CWaveDefTolUserDef& GetDefTolUserDef() const { return set_->DefTolUserDef; }
  bool SetDefTolUserDef(const CWaveDefTolUserDef& v);
  /// The levels of the standard's band.  The setter takes them only while TolKind is TOL_SPECIFY.
  /// @return false, with nothing changed, for any other kind
  const CWaveDefTolSpecify& GetDefTolSpecify() const { return set_->DefTolSpecify; }
  bool SetDefTolSpecify(const CWaveDefTolSpecify& v);
};

}  // namespace qarv::wave_def
