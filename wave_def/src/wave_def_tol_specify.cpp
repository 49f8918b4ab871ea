// CWaveDefTolSpecify: its record.
#include "wave_def/wave_def_tol_specify.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefTolSpecify::~CWaveDefTolSpecify() = default;
bool CWaveDefTolSpecify::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::wave_def
