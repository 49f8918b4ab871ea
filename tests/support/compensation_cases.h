// The reference cases of the compensation: definitions, and the least stroke that any waveform
// inside their tolerance can have, found by linear programming.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "wave_def/wave_def_classical.h"

namespace qarv::test {

/// One case, from a line of the file; samples are taken at 8192 Hz.
class CompensationCase {
 public:
  explicit CompensationCase(std::map<std::string, double> values) : values_(std::move(values)) {}

  /// The definition, with the compensation of a type.
  wave_def::CWaveDefClassical Definition(int type, bool nonSymmetric, double optRatLevel) const;

  /// The nominal pulse.
  wave_def::CWaveDefClassical NominalDefinition() const;

  /// The least stroke with the main pulse free between its bands ("free"), keeping its shape
  /// ("shape"), or as it is ("nominal"), over A dt^2; infinite where there is none.
  double LeastStroke(const char* pulse, bool nonSymmetric) const;

  double At(const std::string& column) const { return values_.at(column); }
  double FrameOverWidth() const { return At("Nsamp") / At("width_samples"); }
  bool IsOneSided() const { return (At("CmpPre") == 0) != (At("CmpPost") == 0); }
  /// The everyday use: both levels 1, a frame of 32 widths or more.
  bool IsEveryday() const {
    return At("CmpPre") == 1 && At("CmpPost") == 1 && FrameOverWidth() >= 32;
  }

 private:
  std::map<std::string, double> values_;
};

std::vector<CompensationCase> ReadCompensationCases(const std::string& file);

/// What a compensated definition does to the table.
struct StrokeResult {
  bool done;
  double stroke;                        // largest |displacement| over A dt^2
  double up;                            // largest displacement to the positive side
  double swing;                         // largest less least displacement
  double velocity;                      // largest |velocity| over A dt
  double endVelocity, endDisplacement;  // at the end, over the largest of each
  wave_def::CWaveDefClassical params;
  std::vector<double> wave, upper, lower;
};
StrokeResult Compensate(const wave_def::CWaveDefClassical& definition);

/// By how much the sum of the main pulse is below that of the nominal one, the same definition
/// without compensation.  [1]
double VelocityLoss(const StrokeResult& nominal, const StrokeResult& result);

/// The q-quantile of values, by linear interpolation; NaN of none.
double Quantile(std::vector<double> values, double q);

}  // namespace qarv::test
