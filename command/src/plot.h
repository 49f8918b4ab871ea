// Waveforms and their bands as pictures.
#pragma once

#include <string>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "gnuplot.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// What a curve stands for.
enum class Role { Wave, Upper, Lower, Reference, Violation };

struct Curve {
  std::string label;  // in the legend
  Role role;
  const common::CDataArrayFloatT<double>* samples;  // a NaN is not drawn
};

/// One diagram over time: an axis and its curves.
struct Panel {
  std::string label;  // of the axis
  std::vector<Curve> curves;
};

/// The label of an axis of amplitudes, with the unit.
std::string AmplitudeLabel(const wave_def::CWaveDef& def);

/// Plots diagrams one below the other, with the legend of the first.
/// Ends the command where gnuplot is missing or does not succeed.
/// @param[in] fsamp  sampling frequency of all curves [Hz]
void PlotPanels(const std::vector<Panel>& panels, double fsamp, const std::string& title,
                PlotFormat format, const std::string& file);

/// Whether a picture shows velocity and displacement below the waveform.
enum class Motion { Hidden, Shown };

/// Plots a definition's waveform under its name, and its motion where it is compensated.
/// Ends the command where gnuplot is missing or does not succeed.
void PlotDefinition(const wave_def::CWaveDef& def, const std::string& name, PlotFormat format,
                    const std::string& file);

/// Plots the waveform, its bands dashed, over time.
/// Ends the command where gnuplot is missing or does not succeed.
void PlotWave(const wave_def::CWaveDef& def, const std::string& title, Motion motion,
              PlotFormat format, const std::string& file);

}  // namespace qarv::command
