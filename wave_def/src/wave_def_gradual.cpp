// CWaveDefGradual: its record.
#include "wave_def/wave_def_gradual.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefGradual::~CWaveDefGradual() = default;
bool CWaveDefGradual::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::wave_def
