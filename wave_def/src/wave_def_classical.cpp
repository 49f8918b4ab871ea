// CWaveDefClassical: its nested tolerance sets and its record.
#include "wave_def/wave_def_classical.h"

#include "common/record/record_codec.h"

namespace qarv::wave_def {

CWaveDefClassical::~CWaveDefClassical() = default;
bool CWaveDefClassical::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

bool CWaveDefClassical::SetDefTolUserDef(const CWaveDefTolUserDef& v) {
  if (set_->TolKind != TOL_USER_DEF) return false;
  set_->DefTolUserDef = v;
  return true;
}

bool CWaveDefClassical::SetDefTolSpecify(const CWaveDefTolSpecify& v) {
  if (set_->TolKind != TOL_SPECIFY) return false;
  set_->DefTolSpecify = v;
  return true;
}

}  // namespace qarv::wave_def
