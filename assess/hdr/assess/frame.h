// Where the frame of a judged shock lies in its record.
#pragma once

#include "assess/judgement.h"
#include "assess/record.h"
#include "common/data_array/data_array_float_t.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// A record on the samples of the definition where a shock was judged, in the unit of the
/// definition: the judged record itself, or what it was before its steps.  NaN where the record
/// does not reach.
/// @throws Error where its unit does not go with the definition's
common::CDataArrayFloatT<double> OnFrame(const wave_def::CWaveDef& def, const Judgement& judgement,
                                         const Record& record);

/// The samples of the judged record that the frame covers.
Stretch CoveredBy(const wave_def::CWaveDef& def, const Judgement& judgement, const Record& record);

}  // namespace qarv::assess
