// CWaveDefSymmetry: its record.
#include "wave_def/wave_def_symmetry.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefSymmetry::~CWaveDefSymmetry() = default;
bool CWaveDefSymmetry::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::wave_def
