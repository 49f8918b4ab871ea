// CDataEditLog: the record of the edits that were made to measured data.
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <tuple>

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"
#include "common/record/field_set.h"

namespace qarv::data_edit_log {

/// One edit: what was done, to which samples, with which parameters.  It changes no sample itself.
///
/// @code
/// CDataEditLogElm edit;
/// edit.SetKind(CDataEditLogElm::EDIT_LOW_PASS);
/// edit.SetFirst(0);
/// edit.SetLast(4095);
/// edit.SetParams({500.0, 4.0});  // Hz, order
/// CDataEditLog log;
/// log.Add(edit);
/// const auto edits = log.GetElmNum();  // 1
/// @endcode
///
/// A value; it checks nothing.
class CDataEditLogElm {
 public:
  /// What was done.
  enum EDIT_KIND : std::int32_t {
    EDIT_NONE = 0,            ///< not set
    EDIT_CUT = 1,             ///< samples outside the range removed
    EDIT_ZERO = 2,            ///< samples set to 0
    EDIT_OFFSET = 3,          ///< a constant added: the constant
    EDIT_SCALE = 4,           ///< multiplied: the factor
    EDIT_DETREND = 5,         ///< a polynomial removed: its coefficients, constant first
    EDIT_TAPER = 6,           ///< ends tapered: the level
    EDIT_LOW_PASS = 7,        ///< filtered: cut-off frequency [Hz], order
    EDIT_HIGH_PASS = 8,       ///< filtered: cut-off frequency [Hz], order
    EDIT_RESAMPLE = 9,        ///< sampled anew: the sampling frequency [Hz]
    EDIT_INTEGRATE = 10,      ///< integrated over time
    EDIT_DIFFERENTIATE = 11,  ///< differentiated over time
  };

 private:
  struct Fields {
    EDIT_KIND Kind = EDIT_NONE;
    common::uint64 First = 0;                 // [sample]
    common::uint64 Last = 0;                  // [sample], included
    common::CDataArrayFloatT<double> Params;  // as the kind has them
    std::string Note;                         // free text
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) { return std::tie(f.Kind, f.First, f.Last, f.Params, f.Note); }
  };
  common::FieldSet<Fields> set_;

 public:
  CDataEditLogElm() = default;
  CDataEditLogElm(const CDataEditLogElm&) = default;
  CDataEditLogElm(CDataEditLogElm&&) = default;  ///< leaves the source cleared
  CDataEditLogElm& operator=(const CDataEditLogElm&) = default;
  CDataEditLogElm& operator=(CDataEditLogElm&&) = default;
  virtual ~CDataEditLogElm();

  bool operator==(const CDataEditLogElm&) const = default;
  /// Back to the defaults.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// What was done.  Default EDIT_NONE.
  EDIT_KIND GetKind() const { return set_->Kind; }
  void SetKind(EDIT_KIND v) { set_->Kind = v; }
  /// First sample that was edited. [sample]  Default 0; from 0.
  common::uint64 GetFirst() const { return set_->First; }
  void SetFirst(common::uint64 v) { set_->First = v; }
  /// Last sample that was edited. [sample]  Default 0; from 0.  Included.
  common::uint64 GetLast() const { return set_->Last; }
  void SetLast(common::uint64 v) { set_->Last = v; }
  /// Parameters of the edit, as its kind has them.  Default none.
  const common::CDataArrayFloatT<double>& GetParams() const { return set_->Params; }
  void SetParams(const common::CDataArrayFloatT<double>& v) { set_->Params = v; }
  /// Note to the edit, free text.  Default empty.
  const std::string& GetNote() const { return set_->Note; }
  void SetNote(const std::string& v) { set_->Note = v; }
};

/// The edits made to measured data, in the order in which they were made: what CWaveDefMeasure
/// keeps beside its samples.  See CDataEditLogElm for lines of use.  A value.
class CDataEditLog {
  struct Fields {
    std::list<CDataEditLogElm> Elms;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) { return std::tie(f.Elms); }
  };
  common::FieldSet<Fields> set_;

 public:
  CDataEditLog() = default;
  CDataEditLog(const CDataEditLog&) = default;
  CDataEditLog(CDataEditLog&&) = default;  ///< leaves the source empty
  CDataEditLog& operator=(const CDataEditLog&) = default;
  CDataEditLog& operator=(CDataEditLog&&) = default;
  virtual ~CDataEditLog();

  bool operator==(const CDataEditLog&) const = default;
  /// Back to the defaults.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// The number of edits.  Default 0.
  common::uint64 GetElmNum() const { return set_->Elms.size(); }
  /// The edits, the first one first.  Default none.
  const std::list<CDataEditLogElm>& GetElmList() const { return set_->Elms; }
  /// Appends an edit.
  void Add(const CDataEditLogElm& elm) { set_->Elms.push_back(elm); }
};

}  // namespace qarv::data_edit_log
