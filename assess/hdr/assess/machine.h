// A shaker or shock machine: what it can do, from its JSON text, and whether a waveform fits it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "assess/entries.h"
#include "assess/error.h"
#include "wave_def/wave_def.h"

namespace qarv::assess {

/// What a machine can do; what is not there has no limit.
struct Machine {
  std::string name;
  std::optional<double> force;            // [N]
  std::optional<double> acceleration;     // [m/s^2]
  std::optional<double> mass;             // [kg] that the force moves
  std::optional<double> velocity;         // [m/s]
  std::optional<double> stroke;           // [mm] from one end to the other
  double start = 0.5;                     // share of the stroke below the table before it moves
  std::optional<double> jerk;             // [m/s^3]
  std::optional<double> lowestFrequency;  // [Hz]
};

/// Reads a machine: one JSON object.  A number is in the unit of its key; a text has a unit of its
/// own ("2 in", "500 lbf").
///
///   Name, About        text
///   UnitAmpl           unit of the numbers of MaxAccel and MaxJerk ("g")
///   MaxForce           [N]; needs MovingMass
///   MaxAccel           [UnitAmpl]; not beside MaxForce
///   MovingMass         [kg] of armature, fixture and payload
///   MaxVelocity        [m/s]
///   Stroke             [mm] peak to peak
///   StartPosition      "centred" or the share of the stroke below the table, 0 to 1
///   MaxJerk            [UnitAmpl/s]
///   LowestFrequency    [Hz]
///
/// @throws Error, with key and line, where it is not one, or states no limit at all
Machine MachineFromJson(std::string_view text);

/// The limits of a machine in the units that a waveform's motion is shown in; 0 in `up` and `down`
/// is a limit, too.
struct MachineLimits {
  std::optional<double> acceleration;     // [amplitude unit], to both sides
  std::optional<double> velocity;         // [m/s], to both sides
  std::optional<double> stroke;           // [mm] peak to peak
  std::optional<double> up, down;         // [mm] from the start position
  std::optional<double> jerk;             // [amplitude unit/s]
  std::optional<double> lowestFrequency;  // [Hz]
};

/// @param[in] amplitudeUnit  of the waveform
/// @throws Error ("machine") where it is not known as an acceleration
MachineLimits LimitsOf(const Machine& machine, const std::string& amplitudeUnit);

/// A quantity of a waveform beside what the machine can do.
struct MachineRow {
  std::string key;    // in JSON
  std::string label;  // for people
  double value, limit;
  std::string unit;
  bool atLeast;   // the limit is the least, not the most
  double margin;  // [% of the limit] that is left; negative where the limit is passed
  bool fits;
};

/// What a machine has to do, each quantity that it has a limit for.
struct MachineComparison {
  std::string machine;  // its name
  std::vector<MachineRow> rows;
  bool Fits() const;
};

/// Compares a defined waveform with a machine.  The table starts at rest in the start position; the
/// motion within the record counts, by the trapezoidal rule.  The jerk is the largest change from
/// sample to sample, from rest and back to it, times the sampling frequency.  The lowest frequency
/// is that of the sines, beats, bursts or components that the waveform is made of; pulses,
/// symmetric shocks and measured waveforms have none.
/// @throws Error ("machine") where the amplitude unit is not known as an acceleration
MachineComparison CompareWithMachine(const wave_def::CWaveDef& def, const Machine& machine);

/// The rows with their limits and margins, and whether all of them fit.
Entries MachineEntries(const MachineComparison& comparison);

/// One text for each limit that is passed.
std::vector<std::string> MachineWarnings(const MachineComparison& comparison);

}  // namespace qarv::assess
