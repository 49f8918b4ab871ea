// CWaveDefMeasure: where a measured waveform came from and how it was edited.
#pragma once

#include <string>
#include <tuple>

#include "common/record/field_set.h"
#include "common/serial/serial_data.h"
#include "data_edit_log/data_edit_log.h"
#include "wave_def/export.h"

namespace qarv::wave_def {

/// The origin of a measured waveform: its path and the log of its edits.  The samples themselves
/// are handed to CWaveDef beside it, and nothing is ever read from the path.
///
/// Take it to run a recorded shock or vibration again; all other families make their samples.
///
/// @code
/// CWaveDefMeasure origin;
/// origin.SetMeasPath("drop_test.csv");
/// CWaveDef def;
/// def.SetFsamp(1000.0);
/// const bool defined = def.SetDefMeasure(origin, {0.0, 3.1, 7.4, 2.9});  // true
/// const auto n = def.GetNsamp();                                         // 4
/// @endcode
///
/// A value; no setter checks.
class QARV_WAVE_DEF_EXPORT CWaveDefMeasure {
  // The data model, in record order.
  struct Fields {
    std::string MeasPath;
    data_edit_log::CDataEditLog DataEditLog;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) { return std::tie(f.MeasPath, f.DataEditLog); }
  };
  common::FieldSet<Fields> set_;

 public:
  CWaveDefMeasure() = default;
  CWaveDefMeasure(const CWaveDefMeasure&) = default;
  CWaveDefMeasure(CWaveDefMeasure&&) = default;  ///< leaves the source cleared
  CWaveDefMeasure& operator=(const CWaveDefMeasure&) = default;
  CWaveDefMeasure& operator=(CWaveDefMeasure&&) = default;
  virtual ~CWaveDefMeasure();

  bool operator==(const CWaveDefMeasure&) const = default;
  /// Every field back to its default.
  void Clear() { set_.Clear(); }
  /// Writes or reads the record, by the direction of the stream; false as FieldSet::Serialize.
  bool Serialize(common::CSerialData* stream);

  /// File that was measured; the samples are read from it, unless there are Samples.  Default
  /// empty.  Not by this library, which opens no file: they are handed over beside the set.
  const std::string& GetMeasPath() const { return set_->MeasPath; }
  void SetMeasPath(const std::string& v) { set_->MeasPath = v; }
  /// Edits that were made to the samples.  Default none.
  const data_edit_log::CDataEditLog& GetDataEditLog() const { return set_->DataEditLog; }
  void SetDataEditLog(const data_edit_log::CDataEditLog& v) { set_->DataEditLog = v; }
};

}  // namespace qarv::wave_def
