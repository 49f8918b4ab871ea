// CWaveDefSineBeatBurst: its edges and its record.
#include "wave_def/wave_def_sine_beat_burst.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefSineBeatBurst::~CWaveDefSineBeatBurst() = default;
bool CWaveDefSineBeatBurst::Serialize(common::CSerialData* stream) {
  return set_.Serialize(stream);
}

void CWaveDefSineBeatBurst::SetEdging(bool edging, unsigned int rise, unsigned int fall,
                                      WINDOW_TYPE window) {
  set_->Edging = edging;
  set_->EdgeRise = edging ? rise : 0;
  set_->EdgeFall = edging ? fall : 0;
  set_->EdgeWindow = edging ? window : WINDOW_NONE;
}

}  // namespace qarv::wave_def
