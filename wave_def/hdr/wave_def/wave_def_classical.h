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
///     half sine  A sin(pi t / W)    haversine  A (1 - cos(2 pi t / W)) / 2
///     sawtooth   A t / W            triangle, trapezoid  straight lines from 0 to A and back
///     A = MainAmpl [amplitude unit],   W = MainWidth [s],   0 <= t <= W
///
/// Take it for the pulses of the shock standards, with the bands that these draw around them.
/// CWaveDefSymmetry compensates with a pulse as high as the main one; CWaveDefDamping serves a
/// required spectrum.
///
/// @code
/// CWaveDefClassical pulse;
/// pulse.SetWaveKind(wave_def_sub::HALF_SINE);
/// pulse.SetMainAmpl(50.0);
/// pulse.SetMainWidth(0.011);
/// pulse.SetFmax(1000.0);
/// pulse.SetNsamp(1024);
/// pulse.SetTolKind(CWaveDefClassical::TOL_FIXED_4);
/// CWaveDef def;
/// const bool defined = def.SetDefClassical(pulse);  // true
/// const auto peak = def.GetWave()[512];             // 50
/// @endcode
///
/// The pulse begins and ends on samples: its half width is rounded down to whole ones.
///
/// A value that owns its two nested sets; the setters store what they are given, except the two of
/// the nested sets, which ask for the tolerance kind to be set first.
///
/// Source: IEC 60068-2-27, Test Ea: Shock, for the half sine, the sawtooth and the trapezoid.
class QARV_WAVE_DEF_EXPORT CWaveDefClassical {
 public:
  /// Which tolerance definition applies.
  enum TOL_KIND : std::int32_t {
    TOL_NONE = 0,       ///< not set
    TOL_FIXED_1 = 1,    ///< built in, as all to 9; each shape offers some of them (docs/gallery.md)
    TOL_FIXED_2 = 2,    ///< built in
    TOL_FIXED_3 = 3,    ///< built in
    TOL_FIXED_4 = 4,    ///< built in
    TOL_FIXED_5 = 5,    ///< built in
    TOL_FIXED_6 = 6,    ///< built in
    TOL_FIXED_7 = 7,    ///< built in
    TOL_FIXED_8 = 8,    ///< built in
    TOL_FIXED_9 = 9,    ///< built in
    TOL_USER_DEF = 10,  ///< levels of the held CWaveDefTolUserDef
    TOL_SPECIFY = 11,   ///< levels of the held CWaveDefTolSpecify
  };

  /// The form of the compensation.
  enum COMP_TYPE : std::int32_t {
    CMP_NONE = 0,         ///< not set
    CMP_RAMP = 1,         ///< straight ramps
    CMP_COSINE = 2,       ///< a raised cosine on each side
    CMP_FLAT_COSINE = 3,  ///< a flat part and a raised-cosine taper on each side
    CMP_OPTIMIZED = 4,    ///< spends the share OptRatLevel of the tolerance on the stroke
  };

 private:
  // The data model, in record order.
  struct Fields {
    wave_def_sub::WAVE_KIND WaveKind = {};
    double MainAmpl = 0.0;
    double MainWidth = 0.0;
    double MainRise = 0.0;
    double MainFall = 0.0;
    double MainShift = 0.0;
    double RestPre = 0.0;
    double RestPost = 0.0;
    double Fmax = 0.0;
    unsigned int Nsamp = 0;
    double WaveShift = 0.0;
    TOL_KIND TolKind = TOL_NONE;
    CWaveDefTolUserDef DefTolUserDef;
    CWaveDefTolSpecify DefTolSpecify;
    bool AddCmp = false;
    bool CmpNonSym = false;
    COMP_TYPE CmpType = CMP_NONE;
    double CmpPre = 0.0;
    double CmpPost = 0.0;
    double CmpPcal = 0.0;
    double CmpU1 = 0.0;
    double CmpU2 = 0.0;
    double CmpRgm1 = 0.0;
    double CmpRgm2 = 0.0;
    double CmpCparam = 0.0;
    bool CmpErr = false;
    double OptRatLevel = 0.0;
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

  /// Shape of the pulse.  Default 0.  No shape, which is refused.
  wave_def_sub::WAVE_KIND GetWaveKind() const { return set_->WaveKind; }
  void SetWaveKind(wave_def_sub::WAVE_KIND v) { set_->WaveKind = v; }
  /// Peak of the pulse. [amplitude unit]  Default 0; above 0.  A negative one crosses the bands,
  /// or gives no pulse at all.
  double GetMainAmpl() const { return set_->MainAmpl; }
  void SetMainAmpl(double v) { set_->MainAmpl = v; }
  /// Nominal width of the pulse. [s]  Default 0; above 0.  Shorter than the frame.
  double GetMainWidth() const { return set_->MainWidth; }
  void SetMainWidth(double v) { set_->MainWidth = v; }
  /// Rise of a user trapezoid. [width]  Default 0; 0 to 1.
  double GetMainRise() const { return set_->MainRise; }
  void SetMainRise(double v) { set_->MainRise = v; }
  /// Fall of a user trapezoid. [width]  Default 0; 0 to 1.
  double GetMainFall() const { return set_->MainFall; }
  void SetMainFall(double v) { set_->MainFall = v; }
  /// Shift of the centre of the pulse from the middle of the frame. [frame]  Default 0; -0.5 to
  /// 0.5.  Both ends excluded.
  double GetMainShift() const { return set_->MainShift; }
  void SetMainShift(double v) { set_->MainShift = v; }
  /// Rest between the compensation and the pulse. [s]  Default 0; from 0.
  double GetRestPre() const { return set_->RestPre; }
  void SetRestPre(double v) { set_->RestPre = v; }
  /// Rest between the pulse and the compensation. [s]  Default 0; from 0.
  double GetRestPost() const { return set_->RestPost; }
  void SetRestPost(double v) { set_->RestPost = v; }
  /// Highest frequency of the analysis; the samples are taken at 2.56 times it. [Hz]  Default 0;
  /// above 0.
  double GetFmax() const { return set_->Fmax; }
  void SetFmax(double v) { set_->Fmax = v; }
  /// Length of the frame. [sample]  Default 0; from 2.
  unsigned int GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(unsigned int v) { set_->Nsamp = v; }
  /// Result: by how much the compensation has shifted the pulse. [frame]  Default 0.  Positive to
  /// the right.
  double GetWaveShift() const { return set_->WaveShift; }
  void SetWaveShift(double v) { set_->WaveShift = v; }
  /// Kind of the tolerance bands.  Default TOL_NONE.  That is refused.
  TOL_KIND GetTolKind() const { return set_->TolKind; }
  void SetTolKind(TOL_KIND v) { set_->TolKind = v; }
  /// Whether compensation is added, so that the table ends at rest where it began.  Default false.
  bool GetAddCmp() const { return set_->AddCmp; }
  void SetAddCmp(bool v) { set_->AddCmp = v; }
  /// Whether the compensation before and after the pulse may differ.  Default false.  Compensation
  /// of one side alone is never symmetric, whatever this says.
  bool GetCmpNonSym() const { return set_->CmpNonSym; }
  void SetCmpNonSym(bool v) { set_->CmpNonSym = v; }
  /// Shape of the compensation.  Default CMP_NONE.  That is refused with AddCmp.
  COMP_TYPE GetCmpType() const { return set_->CmpType; }
  void SetCmpType(COMP_TYPE v) { set_->CmpType = v; }
  /// Scale of the bands before the pulse, within which the compensation keeps; usually 1. [1]
  /// Default 0; from 0.  0 leaves that side no more than 1 % of the peak.  Not a level: the levels
  /// are results (CmpU1, CmpU2), and the bands themselves stay as they are drawn.
  double GetCmpPre() const { return set_->CmpPre; }
  void SetCmpPre(double v) { set_->CmpPre = v; }
  /// Scale of the bands after the pulse, within which the compensation keeps; usually 1. [1]
  /// Default 0; from 0.  As CmpPre.
  double GetCmpPost() const { return set_->CmpPost; }
  void SetCmpPost(double v) { set_->CmpPost = v; }
  /// Kept for the controller. [1]  Default 0.  Not generated from.
  double GetCmpPcal() const { return set_->CmpPcal; }
  void SetCmpPcal(double v) { set_->CmpPcal = v; }
  /// Result: level of the compensation before the pulse. [ratio]  Default 0.
  double GetCmpU1() const { return set_->CmpU1; }
  void SetCmpU1(double v) { set_->CmpU1 = v; }
  /// Result: level of the compensation after the pulse. [ratio]  Default 0.
  double GetCmpU2() const { return set_->CmpU2; }
  void SetCmpU2(double v) { set_->CmpU2 = v; }
  /// Result: share of the area that the compensation before the pulse takes. [1]  Default 0.
  double GetCmpRgm1() const { return set_->CmpRgm1; }
  void SetCmpRgm1(double v) { set_->CmpRgm1 = v; }
  /// Result: share of the area that the compensation after the pulse takes. [1]  Default 0.
  double GetCmpRgm2() const { return set_->CmpRgm2; }
  void SetCmpRgm2(double v) { set_->CmpRgm2 = v; }
  /// Result: gain of the reshaping. [1]  Default 0.
  double GetCmpCparam() const { return set_->CmpCparam; }
  void SetCmpCparam(double v) { set_->CmpCparam = v; }
  /// Kept for the controller.  Default false.  Not generated from.
  bool GetCmpErr() const { return set_->CmpErr; }
  void SetCmpErr(bool v) { set_->CmpErr = v; }
  /// Of CMP_OPTIMIZED: share of the tolerance that is spent on the stroke; 0 keeps the pulse
  /// nominal. [1]  Default 0; 0 to 1.  Clamped to that.
  double GetOptRatLevel() const { return set_->OptRatLevel; }
  void SetOptRatLevel(double v) { set_->OptRatLevel = v; }

  /// The user's levels, for TOL_USER_DEF and for a haversine.  Default none.  The setter takes them
  /// only while TolKind is TOL_USER_DEF.
  /// @return false, with nothing changed, for any other kind
  const CWaveDefTolUserDef& GetDefTolUserDef() const { return set_->DefTolUserDef; }
  bool SetDefTolUserDef(const CWaveDefTolUserDef& v);
  /// The levels of a standard, for TOL_SPECIFY.  Default none.  The setter takes them only while
  /// TolKind is TOL_SPECIFY.
  /// @return false, with nothing changed, for any other kind
  const CWaveDefTolSpecify& GetDefTolSpecify() const { return set_->DefTolSpecify; }
  bool SetDefTolSpecify(const CWaveDefTolSpecify& v);
};

}  // namespace qarv::wave_def
