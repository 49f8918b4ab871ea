// CWaveDefDamping: the parameters of a damped-sine synthesis.
#pragma once

#include <list>
#include <tuple>
#include <utility>

#include "com_def/com_def_const.h"
#include "common/int_types.h"
#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "wave_def/export.h"
#include "wave_def/wave_def_damping_elm.h"

namespace qarv::wave_def {

/// A shock made of decaying sines, each with its own frequency, amplitude, damping and start.
///
///     x(t) = sum A_i e^(-z_i w_i (t - d_i)) sin(w_i (t - d_i)),   t >= d_i
///     of component i: A = Ampl [amplitude unit], z = Zeta [1], d = Delay [s], w = 2 pi Freq
///
/// Take it for a required shock response spectrum, where a classical pulse has the wrong shape.
/// With SYNC_WAVE_DAMPED_SINE one more component brings velocity and displacement back to 0; with
/// the two other methods (SYNC_WAVE_WAVELET among them) every component does so by itself.
///
/// @code
/// CWaveDefDampingElm component;
/// component.SetFreq(50.0);
/// component.SetAmpl(10.0);
/// component.SetNumHalf(7);
/// CWaveDefDamping shock;
/// shock.SetSyncWaveType(com_def::comdefconst::SYNC_WAVE_WAVELET);
/// shock.SetNsamp(4096);
/// shock.Add(component);
/// CWaveDef def;
/// def.SetFsamp(4096.0);
/// const bool defined = def.SetDefDamping(shock);  // true
/// @endcode
///
/// At rest at the end as far as the components have died away by then: Nsamp cuts what has not.  A
/// value that owns its elements; no setter checks.
///
/// Source: D. O. Smallwood, A. R. Nord, Matching shock spectra with sums of decaying sinusoids
/// (1974).
class QARV_WAVE_DEF_EXPORT CWaveDefDamping {
  // The data model, in record order.
  struct Fields {
    common::uint64 Nsamp = 0;
    com_def::comdefconst::SYNC_WAVE_TYPE SyncWaveType = com_def::comdefconst::SYNC_WAVE_NONE;
    double Freq = 0.0;
    double Zeta = 0.0;
    std::list<CWaveDefDampingElm> Elms;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.Nsamp, f.SyncWaveType, f.Freq, f.Zeta, f.Elms);
    }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefDamping() = default;
  CWaveDefDamping(const CWaveDefDamping&) = default;
  CWaveDefDamping(CWaveDefDamping&&) = default;  ///< leaves the source cleared
  CWaveDefDamping& operator=(const CWaveDefDamping&) = default;
  CWaveDefDamping& operator=(CWaveDefDamping&&) = default;
  virtual ~CWaveDefDamping();

  bool operator==(const CWaveDefDamping&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// Length of the waveform. [sample]  Default 0; from 1.
  common::uint64 GetNsamp() const { return set_->Nsamp; }
  void SetNsamp(common::uint64 v) { set_->Nsamp = v; }
  /// Method of the synthesis.  Default SYNC_WAVE_NONE.  That is refused.
  com_def::comdefconst::SYNC_WAVE_TYPE GetSyncWaveType() const { return set_->SyncWaveType; }
  void SetSyncWaveType(com_def::comdefconst::SYNC_WAVE_TYPE v) { set_->SyncWaveType = v; }
  /// Frequency of the compensating component, for SYNC_WAVE_DAMPED_SINE. [Hz]  Default 0; from 0.
  /// Below those of the components.
  double GetFreq() const { return set_->Freq; }
  void SetFreq(double v) { set_->Freq = v; }
  /// Damping ratio of the compensating component, for SYNC_WAVE_DAMPED_SINE. [1]  Default 0; from
  /// 0.  Not 0, or it never dies away.
  double GetZeta() const { return set_->Zeta; }
  void SetZeta(double v) { set_->Zeta = v; }

  /// The number of elements.
  common::uint64 GetElmNum() const { return set_->Elms.size(); }
  /// The components.  Default none.  In the caller's order.
  const std::list<CWaveDefDampingElm>& GetDefDampingElmList() const { return set_->Elms; }
  /// Replaces all elements by copies of the given ones.
  void SetDefDampingElmList(const std::list<CWaveDefDampingElm>& v) { set_->Elms = v; }

  /// Appends an element.
  void Add(const CWaveDefDampingElm& elm) { set_->Elms.push_back(elm); }
  void Add(CWaveDefDampingElm&& elm) { set_->Elms.push_back(std::move(elm)); }

  /// Inserts an element before the one at `index`.
  /// @return false, with nothing changed, unless index < GetElmNum()
  // Deliberate: an insertion never appends, so an empty list takes none; Add is there for that.
  bool Insert(common::uint64 index, const CWaveDefDampingElm& elm);
  bool Insert(common::uint64 index, CWaveDefDampingElm&& elm);

  /// Copies an element over the one at `index`.
  /// @return false, with nothing changed, unless index < GetElmNum()
  bool Change(common::uint64 index, const CWaveDefDampingElm& elm);

  /// Removes the element at `index`, which must be below GetElmNum(): it is not checked.
  void DeleteElmByIndex(common::uint64 index);
  /// Removes every element.
  void DeleteAll() { set_->Elms.clear(); }

  /// The element at `index`, which must be below GetElmNum(): it is not checked.  The list is
  /// walked from its nearer end, so a loop over all elements goes through GetDefDampingElmList.
  CWaveDefDampingElm& operator[](common::uint64 index);
  const CWaveDefDampingElm& operator[](common::uint64 index) const;
  const CWaveDefDampingElm& GetElmByIndex(common::uint64 index) const { return (*this)[index]; }
};

}  // namespace qarv::wave_def
