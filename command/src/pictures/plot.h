// Waveforms and their bands as pictures.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "assess/machine.h"
#include "common/data_array/data_array_float_t.h"
#include "pictures/gnuplot.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// What a curve stands for.
enum class Role { Wave, Upper, Lower, Reference, Violation, Before };

struct Curve {
  std::string label;  // in the legend
  Role role;
  const common::CDataArrayFloatT<double>* samples;  // a NaN is not drawn
};

/// One diagram over time: an axis and its curves.
struct Panel {
  std::string label;  // of the axis
  std::vector<Curve> curves;
  std::vector<double> limits = {};  // levels that the curves have to keep within
};

/// A stretch of samples, both ends included.
struct Stretch {
  std::size_t first, last;  // [sample]
};

/// Diagrams one below the other, with the legend of the first.
struct Picture {
  std::string title;            // none, if it stands beside the picture
  double fsamp;                 // [Hz] of all curves
  std::optional<Stretch> zoom;  // of the first panel, which is drawn once more with this alone
  std::vector<Panel> panels;
};

/// The main pulse with its surroundings, where it is too short to be seen in the whole frame: less
/// than a third of it.
std::optional<Stretch> ZoomOf(const wave_def::CWaveDef& def);

/// The label of an axis of amplitudes, with the unit.
std::string AmplitudeLabel(const wave_def::CWaveDef& def);

/// Draws a picture.
/// Ends the command where gnuplot is missing or does not succeed.
void Plot(const Picture& picture, PlotFormat format, const std::string& file);

/// Whether a picture shows velocity and displacement below the waveform.
enum class Motion { Hidden, Shown };

/// Plots a definition's waveform under its name and what it is, and its motion where it is
/// compensated.
/// Ends the command where gnuplot is missing or does not succeed.
void PlotDefinition(const wave_def::CWaveDef& def, const std::string& name, PlotFormat format,
                    const std::string& file);

/// Plots the waveform, its bands dashed, over time.
/// @param[in] machine  if there is one: its limits as lines.  The axes reach to a limit unless the
///                     curves would become small for it
/// Ends the command where gnuplot is missing or does not succeed.
void PlotWave(const wave_def::CWaveDef& def, const std::string& title, Motion motion,
              PlotFormat format, const std::string& file,
              const std::optional<assess::Machine>& machine = {});

}  // namespace qarv::command
