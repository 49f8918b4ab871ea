// Measured samples from a CSV file.
#pragma once

#include <string>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"
#include "files/input_file.h"

namespace qarv::command {

/// What a CSV file of one measured channel holds.
struct MeasuredCsv {
  std::string file;
  common::CDataArrayFloatT<double> values;  // [amplitude unit]
  std::vector<double> times;                // [s] as many, or none in a file of values only
  std::vector<common::uint64> lines;        // where each value stands
};

/// Reads a file of the forms that exchange::ReadCsv takes.
/// Ends the command where the file cannot be read or a line is not of such a form.
MeasuredCsv ReadCsv(InputFile in);

/// Ends the command, with its line, where a value is NaN or infinite.
void RequireNumbers(const MeasuredCsv& csv);

/// The sampling frequency of the time column [Hz], from its mean step.
/// Ends the command where there are no times or a step differs from the mean by more than 0.1 %.
double SampleRateOf(const MeasuredCsv& csv);

}  // namespace qarv::command
