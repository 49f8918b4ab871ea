// CWaveDefDampingElm: its record.
#include "wave_def/wave_def_damping_elm.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefDampingElm::~CWaveDefDampingElm() = default;
bool CWaveDefDampingElm::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::wave_def
