// CWaveDefTolUserDef: its pulse levels and its record.
#include "wave_def/wave_def_tol_user_def.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefTolUserDef::~CWaveDefTolUserDef() = default;
bool CWaveDefTolUserDef::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

void CWaveDefTolUserDef::SetTolPulsParam(bool set, double begU, double begL, double endU,
                                         double endL) {
  set_->TolPulsSet = set;
  set_->TolPulsBegU = set ? begU : 0.0;
  set_->TolPulsBegL = set ? begL : 0.0;
  set_->TolPulsEndU = set ? endU : 0.0;
  set_->TolPulsEndL = set ? endL : 0.0;
}

}  // namespace qarv::wave_def
