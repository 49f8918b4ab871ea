// Samples as variables of MAT files.
#pragma once

#include <vector>

#include "exchange/signal.h"

namespace qarv::exchange {

/// Reads every variable of real numbers of a MAT file of version 5 or 7.3, also the fields of a
/// structure ("name.field").  Of a table the longer dimension counts the samples: each row or
/// column along it is a signal ("name(2)").
///
/// What is called t or time [s] becomes the times of all signals of its length, what is called fs,
/// fsamp or sampling_frequency the sampling frequency [Hz]; neither is a signal then.
/// Throws Error where it is no such file, or has no variable of real numbers.
std::vector<Signal> ReadMat(Bytes bytes);

}  // namespace qarv::exchange
