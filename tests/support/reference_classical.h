// A second computation of the classical pulses and their bands, written rule by rule.
#pragma once

#include <optional>

#include "expect_wave.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::test::reference {

using wave_def::CWaveDefClassical;

/// Half the width of a pulse in samples.
struct HalfWidth {
  double h;
  uint64 n;
};
std::optional<HalfWidth> HalfWidthOf(double width, double dt, uint64 N);

/// The pulse alone.
std::optional<Wave> Pulse(const CWaveDefClassical& def, uint64 centre, double dt);

/// A band of a drawn pulse.
std::optional<Wave> Band(const CWaveDefClassical& def, bool upper, uint64 centre, double dt,
                         const Wave& wave);

/// The sample interval and the centre of a definition's pulse; nothing if it has no pulse in its
/// frame.
struct Place {
  double dt;
  uint64 centre;
};
std::optional<Place> PlaceOf(const CWaveDefClassical& def);

struct Definition {
  Wave wave, upper, lower;
};
/// The whole definition without compensation.
std::optional<Definition> Define(const CWaveDefClassical& def);

}  // namespace qarv::test::reference
