// The components of a damped-sine synthesis, and the one that brings them to rest.
#pragma once

#include <list>
#include <vector>

#include "common/int_types.h"
#include "wave_def/wave_def_damping.h"

namespace qarv::wave_def {

/// The components of a damped-sine definition as arrays, in list order.
struct DampingComponents {
  std::vector<double> freq, ampl, zeta, delay;
  std::vector<common::uint64> halves;

  explicit DampingComponents(const std::list<CWaveDefDampingElm>& elms);
};

/// The damped sine that brings a sum of damped sines to rest: its amplitude makes the final
/// velocity 0, its delay the final displacement.
struct CompensatingSine {
  double ampl;   // [amplitude unit]
  double delay;  // [s]
  double shift;  // [s] by which everything is delayed, so that it does not start before the origin
};

/// @param[in] freq,ampl,zeta,delay  count values each   @param[in] timeOrigin  [s]
/// @param[in] compFreq,compZeta  the compensating component [Hz], [1]
CompensatingSine CalcCompensatingSine(double timeOrigin, common::uint64 count, const double* freq,
                                      const double* ampl, const double* zeta, const double* delay,
                                      double compFreq, double compZeta);

}  // namespace qarv::wave_def
