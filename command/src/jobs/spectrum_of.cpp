// The spectrum of a waveform that was read.
#include "jobs/spectrum_of.h"

#include <fmt/format.h>

#include <optional>

#include "assess/motion.h"
#include "assess/upsampling.h"
#include "assessment.h"
#include "command_error.h"
#include "definition/definition.h"
#include "progress.h"

namespace qarv::command {

using assess::Spectrum;

void ConvertTo(const std::string& unit, const char* whose, const std::string& input,
               InputWave* wave) {
  const std::string own = wave->unit;
  wave->unit = unit;
  if (own.empty() || own == unit) return;
  const assess::MotionUnits from = assess::MotionUnitsOf(own);
  const assess::MotionUnits to = assess::MotionUnitsOf(unit);
  if (!from.known || !to.known) {
    Fail(input, fmt::format("its unit {} does not go with {}, {}", own, whose, unit));
  }
  for (double& v : wave->samples) v *= from.velocity / to.velocity;
  wave->remarks.push_back(fmt::format("converted from {} to {}", own, unit));
}

int Upsample(double highest, const std::string& input, InputWave* wave) {
  const assess::Upsampling found =
      assess::UpsamplingFor(wave->samples.GetSize(), wave->fsamp, highest);
  const std::string enough =
      fmt::format("{:g} samples per cycle at {:g} Hz", assess::kSamplesPerCycle, highest);
  if (found.factor > 1) {
    const assess::OwnedRecord finer = Assessed(input, [&] {
      return assess::Upsampled(
          {definition::SpanOf(wave->samples), wave->fsamp, wave->unit, wave->begin}, found.factor);
    });
    wave->samples.SetData(finer.samples.size(), finer.samples.data(), false);
    wave->fsamp = finer.fsamp;
    wave->begin = finer.begin;
    wave->remarks.push_back(fmt::format("upsampled {} times to {:g} Hz{}", found.factor,
                                        finer.fsamp,
                                        found.factor == found.wanted ? ": " + enough : ""));
  }
  if (found.factor < found.wanted) {
    wave->remarks.push_back(fmt::format("{} times would give {}: not beyond {} samples",
                                        found.wanted, enough, assess::kMostUpsampled));
  }
  return found.factor;
}

assess::SpectrumSettings RequiredSettings(const assess::Requirement& requirement) {
  const synthesis::SrsRequirement& required = requirement.spectrum;
  assess::SpectrumSettings settings;
  settings.damping = required.zeta;
  settings.from = required.points.front().frequency;
  settings.to = required.points.back().frequency;
  settings.perOctave = required.perOctave;
  return settings;
}

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

synthesis::SrsComparison Compare(const assess::Requirement& requirement, const InputWave& wave,
                                 const std::string& input) {
  const auto comparison =
      synthesis::CompareSrs(requirement.spectrum, definition::SpanOf(wave.samples), wave.fsamp);
  if (comparison.onGrid.lines == 0) {
    Fail(input, fmt::format("its sampling frequency of {:g} Hz is too low for {:g} Hz", wave.fsamp,
                            requirement.spectrum.points.back().frequency));
  }
  return comparison;
}

}  // namespace qarv::command
