// CWaveDefMeasure: its record.
#include "wave_def/wave_def_measure.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefMeasure::~CWaveDefMeasure() = default;
bool CWaveDefMeasure::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

}  // namespace qarv::wave_def
