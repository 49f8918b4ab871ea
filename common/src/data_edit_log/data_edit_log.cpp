// CDataEditLog: the record of the edits that were made to measured data.
#include "data_edit_log/data_edit_log.h"

#include "common/record/record_codec.h"

namespace qarv::data_edit_log {

CDataEditLogElm::~CDataEditLogElm() = default;
bool CDataEditLogElm::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

CDataEditLog::~CDataEditLog() = default;
bool CDataEditLog::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::data_edit_log
