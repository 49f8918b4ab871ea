// qarv-wave srs: the shock response spectrum of a waveform.
#include "jobs/srs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <optional>

#include "analysis/srs.h"
#include "assess/spectrum.h"
#include "assessment.h"
#include "definition/definition.h"
#include "diagnostics.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "pictures/gnuplot.h"
#include "pictures/spectrum_plot.h"
#include "progress.h"
#include "text/text.h"

namespace qarv::command {

using assess::Spectrum;
using text::Plain;

using analysis::SrsPoint;

namespace {

void WriteSpectrumCsv(const Spectrum& spectrum, const std::string& file) {
  const double factor = spectrum.factor;
  fmt::memory_buffer text;
  const auto out = std::back_inserter(text);
  fmt::format_to(out,
                 "frequency,maximax,positive,negative,primary_positive,primary_negative,"
                 "residual_positive,residual_negative\n");
  for (const SrsPoint& p : spectrum.points) {
    const analysis::SrsExtremes total = p.Total();
    fmt::format_to(out, "{}", p.frequency);
    for (const double v : {total.Maximax(), total.positive, total.negative, p.primary.positive,
                           p.primary.negative, p.residual.positive, p.residual.negative}) {
      fmt::format_to(out, ",{}", Plain(factor * v));
    }
    text.push_back('\n');
  }
  WriteFile(file, {text.data(), text.size()});
}

/// What is said of a spectrum.
std::string Summary(const Spectrum& spectrum) {
  const auto& points = spectrum.points;
  const auto largest =
      std::max_element(points.begin(), points.end(), [](const SrsPoint& a, const SrsPoint& b) {
        return a.Total().Maximax() < b.Total().Maximax();
      });
  const std::string unit = spectrum.unit.empty() ? "" : " " + spectrum.unit;
  std::string text = fmt::format("response:  {}\n", spectrum.response);
  text += fmt::format("damping:   {:.4g} (Q {:.4g})\n", spectrum.zeta, 0.5 / spectrum.zeta);
  text += fmt::format("lines:     {} from {:.6g} to {:.6g} Hz\n", points.size(),
                      points.front().frequency, points.back().frequency);
  text +=
      fmt::format("largest:   {:.6g}{} at {:.6g} Hz\n",
                  Plain(spectrum.factor * largest->Total().Maximax()), unit, largest->frequency);
  return text;
}

/// @param[in] input  that the waveform stands for
Spectrum SpectrumOf(const std::string& input, const InputWave& wave,
                    const assess::SpectrumSettings& settings) {
  std::optional<Progress> progress;
  return Assessed(input, [&] {
    return assess::SpectrumOf({definition::SpanOf(wave.samples), wave.fsamp, wave.unit, wave.begin},
                              settings, [&](std::size_t done, std::size_t all) {
                                if (!progress) progress.emplace(all);
                                progress->Show(done, "lines of the spectrum");
                              });
  });
}

}  // namespace

std::optional<Spectrum> SpectrumOf(const wave_def::CWaveDef& def, const std::string& name) {
  const InputWave wave = InputWaveOf(def);
  const auto isNumber = [](double v) { return std::isfinite(v); };
  if (!std::all_of(wave.samples.begin(), wave.samples.end(), isNumber)) return {};
  return SpectrumOf(name, wave, {});
}

void Srs(const SrsOptions& options) {
  const InputWave wave = LoadInputWave(options.input, options.fsamp);
  assess::SpectrumSettings settings = options.settings;
  if (options.tripartite) settings.response = "pseudo-velocity";
  const Spectrum spectrum = SpectrumOf(options.input, wave, settings);
  OutputFiles files;
  if (!options.csv.empty()) WriteSpectrumCsv(spectrum, files.Reserve(options.csv));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string name = std::filesystem::path(options.input).stem().string();
    PlotSpectrum(spectrum, wave.title.empty() ? name : name + ": " + wave.title,
                 options.tripartite ? Axes::FourWay : Axes::Plain, format,
                 files.Reserve(options.plot));
  }
  if (assess::IsCoarse(spectrum, wave.fsamp)) {
    Warn(options.input, assess::CoarseText(wave.fsamp));
  }
  files.Commit(Summary(spectrum));
}

}  // namespace qarv::command
