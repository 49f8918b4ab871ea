// Where the table of each set's fields is found: for the libraries that bind them to something
// else.
#pragma once

#include "data_edit_log/data_edit_log.h"
#include "json_fields.h"
#include "wave_def/wave_def.h"

namespace qarv::definition {

/// The table of a set's fields.  It stands in the family's file; that of the settings (CWaveDef)
/// beside the definition.
template <class Set>
const FieldTable<Set>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDef>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefClassical>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefTolUserDef>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefTolSpecify>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefDamping>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefDampingElm>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefGradual>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefMeasure>& FieldsOf();
template <>
const FieldTable<data_edit_log::CDataEditLogElm>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefSineBeatBurst>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefSingle>& FieldsOf();
template <>
const FieldTable<wave_def::CWaveDefSymmetry>& FieldsOf();

}  // namespace qarv::definition
