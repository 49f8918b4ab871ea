// What a waveform is, in the few words that stand above its picture.
#include "definition/title.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "analysis/shock.h"
#include "definition/definition.h"

namespace qarv::definition {

using wave_def::CWaveDef;
using wave_def::CWaveDefClassical;
using wave_def::CWaveDefSineBeatBurst;

namespace {

const char* ShapeText(wave_def::wave_def_sub::WAVE_KIND kind) {
  using namespace wave_def::wave_def_sub;
  switch (kind) {
    case HALF_SINE:
      return "half-sine";
    case TERMINAL_PEAK_SAWTOOTH:
      return "terminal-peak sawtooth";
    case TRAPEZOID:
    case USER_TRAPEZOID:
      return "trapezoid";
    case TRIANGLE:
      return "triangle";
    case HAVERSINE:
      return "haversine";
  }
  return "pulse";
}

const char* CompensationText(CWaveDefClassical::COMP_TYPE type) {
  switch (type) {
    case CWaveDefClassical::CMP_RAMP:
      return "ramp compensation";
    case CWaveDefClassical::CMP_COSINE:
      return "cosine compensation";
    case CWaveDefClassical::CMP_FLAT_COSINE:
      return "flat cosine compensation";
    case CWaveDefClassical::CMP_OPTIMIZED:
      return "optimized compensation";
    default:
      return "compensated";
  }
}

/// A level with its unit.
std::string Level(const CWaveDef& def, double v) {
  const std::string unit = def.GetUnitAmpl().GetText();
  return fmt::format("{:.4g}{}{}", v, unit.empty() ? "" : " ", unit);
}

std::string Time(double seconds) {
  return std::fabs(seconds) < 1.0 ? fmt::format("{:.4g} ms", 1000.0 * seconds)
                                  : fmt::format("{:.4g} s", seconds);
}

/// The frequency of a sine; none for a period without one.
std::string FrequencyOf(double period) {
  return period > 0.0 ? fmt::format(", {:.4g} Hz", 1.0 / period) : "";
}

std::string ClassicalTitle(const CWaveDef& def) {
  const CWaveDefClassical& set = def.GetDefClassical();
  const std::string pulse = fmt::format("{} {}, {}", ShapeText(set.GetWaveKind()),
                                        Level(def, set.GetMainAmpl()), Time(set.GetMainWidth()));
  return set.GetAddCmp() ? pulse + ", " + CompensationText(set.GetCmpType()) : pulse;
}

std::string SymmetryTitle(const CWaveDef& def) {
  const auto& set = def.GetDefSymmetry();
  return fmt::format("symmetry wave of {} {}, {}", ShapeText(set.GetWaveKind()),
                     Level(def, set.GetPeak()), Time(set.GetWidth()));
}

std::string SineBeatBurstTitle(const CWaveDef& def) {
  const CWaveDefSineBeatBurst& set = def.GetDefSineBeatBurst();
  const char* const kind =
      set.GetWaveKind() == CWaveDefSineBeatBurst::SINE_BEAT ? "sine beat" : "sine burst";
  return fmt::format("{} {}, {:.4g} Hz, {} x {} cycles", kind, Level(def, set.GetAmpl()),
                     set.GetFreq(), set.GetFrame(), set.GetCycle());
}

std::string GradualTitle(const CWaveDef& def) {
  const auto& set = def.GetDefGradual();
  return fmt::format("gradual sine {:.4g} to {}{}", set.GetLevelBeg(),
                     Level(def, set.GetLevelEnd()), FrequencyOf(set.GetPeriod()));
}

std::string DampingTitle(const CWaveDef& def) {
  const auto& set = def.GetDefDamping();
  const bool wavelets = set.GetSyncWaveType() == com_def::comdefconst::SYNC_WAVE_WAVELET;
  const char* const kind = wavelets ? "wavelet" : "damped sine";
  const auto& list = set.GetDefDampingElmList();
  if (list.empty()) return fmt::format("no {}s", kind);
  const auto [low, high] =
      std::minmax_element(list.begin(), list.end(),
                          [](const auto& a, const auto& b) { return a.GetFreq() < b.GetFreq(); });
  const std::string peak = Level(def, std::fabs(analysis::PeakOf(SpanOf(def.GetWave())).value));
  return list.size() == 1 ? fmt::format("{} {}, {:.4g} Hz", kind, peak, low->GetFreq())
                          : fmt::format("{} {}s, peak {}, {:.4g} to {:.4g} Hz", list.size(), kind,
                                        peak, low->GetFreq(), high->GetFreq());
}

std::string MeasureTitle(const CWaveDef& def) {
  if (def.GetNsamp() == 0) return "measured waveform";
  const double duration = static_cast<double>(def.GetNsamp()) / SampleRateOf(def);
  return fmt::format("measured waveform, peak {}, {}",
                     Level(def, analysis::PeakOf(SpanOf(def.GetWave())).value), Time(duration));
}

}  // namespace

std::string TitleOf(const CWaveDef& def) {
  switch (def.GetWaveType()) {
    case CWaveDef::WAVE_TYPE_CLASSICAL:
      return ClassicalTitle(def);
    case CWaveDef::WAVE_TYPE_SYMMETRY:
      return SymmetryTitle(def);
    case CWaveDef::WAVE_TYPE_SINE_BEAT_BURST:
      return SineBeatBurstTitle(def);
    case CWaveDef::WAVE_TYPE_MEASURE:
      return MeasureTitle(def);
    case CWaveDef::WAVE_TYPE_GRADUAL:
      return GradualTitle(def);
    case CWaveDef::WAVE_TYPE_SINGLE: {
      const auto& set = def.GetDefSingle();
      return fmt::format("sine {}{}", Level(def, set.GetPeakLevel()), FrequencyOf(set.GetPeriod()));
    }
    case CWaveDef::WAVE_TYPE_DAMPING:
      return DampingTitle(def);
    case CWaveDef::WAVE_TYPE_NONE:
      break;
  }
  return "no waveform";
}

}  // namespace qarv::definition
