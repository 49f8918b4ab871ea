// CWaveDefSingle: its record.
#include "wave_def/wave_def_single.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefSingle::~CWaveDefSingle() = default;
bool CWaveDefSingle::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::wave_def
