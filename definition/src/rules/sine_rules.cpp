// The rules of the waves that are made of sines and pulses.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/numeric/index_conv.h"
#include "family/packet_layout.h"
#include "family/symmetry_layout.h"
#include "rules/rule_table.h"
#include "rules/rules.h"

namespace qarv::definition {

using common::int64;
using common::TruncToIndex;
using common::uint64;
using fmt::format;
using enum Severity;

Findings BrokenRules(const wave_def::CWaveDefSingle& set, double fsamp) {
  const uint64 N = set.GetNsamp();
  const uint64 edge = TruncToIndex(set.GetEdgeTime() / (1.0 / fsamp));
  return Broken({
      NoRate(fsamp),
      {Fails, N == 0, "Nsamp is 0"},
      OddRate(fsamp),
      NoPeriod(set.GetPeriod()),
      NoLevel("PeakLevel", set.GetPeakLevel()),
      TooCoarse("a period", set.GetPeriod() * fsamp, "Fsamp", fsamp),
      {Warns,
       edge > N / 2,
       format("two edges of {:g} s do not fit {} samples", set.GetEdgeTime(), N),
       {{"EdgeTime", static_cast<double>(N / 2) / fsamp}}},
  });
}

Findings BrokenRules(const wave_def::CWaveDefGradual& set, double fsamp) {
  using Set = wave_def::CWaveDefGradual;
  const uint64 N = set.GetNsamp();
  const bool byTime = set.GetLengthType() == Set::LENGTH_BY_TIME;
  const bool bySlope = set.GetLengthType() == Set::LENGTH_BY_SLOPE;
  const double slope = set.GetWaveSlope();
  const double time = byTime ? set.GetWaveTime() : (set.GetLevelEnd() - set.GetLevelBeg()) / slope;
  const double needed = (set.GetPreTime() + time) * fsamp;  // [sample] of rise and ramp
  std::vector<Remedy> longer;
  if (needed < 4e9) longer.push_back({"Nsamp", std::ceil(needed) + 1.0});
  return Broken({
      NoRate(fsamp),
      {Fails, N == 0, "Nsamp is 0"},
      {Fails, !byTime && !bySlope, "LengthType is neither LENGTH_BY_TIME nor LENGTH_BY_SLOPE"},
      {Fails, bySlope && slope == 0.0, "WaveSlope is 0"},
      OddRate(fsamp),
      NoPeriod(set.GetPeriod()),
      TooCoarse("a period", set.GetPeriod() * fsamp, "Fsamp", fsamp),
      {Warns,
       bySlope && time < 0.0,
       format("WaveSlope is {:g}, which leads away from LevelEnd", slope),
       {{"WaveSlope", -slope}}},
      {Warns, byTime && time < 0.0, format("WaveTime is {:g} s", time)},
      {Warns, time >= 0.0 && needed > static_cast<double>(N),
       format("rise and ramp take {:.6g} of {} samples, so that the fall is cut", needed, N),
       longer},
  });
}

Findings BrokenRules(const wave_def::CWaveDefSineBeatBurst& set, double fsamp) {
  using Set = wave_def::CWaveDefSineBeatBurst;
  const auto kind = set.GetWaveKind();
  const wave_def::PacketLayout layout = LayOut(set, fsamp);
  const bool complete =
      fsamp != 0.0 && set.GetFreq() != 0.0 && set.GetCycle() != 0 && set.GetFrame() != 0;
  const bool overlaps = set.GetRestTime() < 0.0 && set.GetFrame() > 1;
  const bool tapered = kind == Set::SINE_BURST && set.GetEdging();
  return Broken({
      NoRate(fsamp),
      {Fails, kind != Set::SINE_BEAT && kind != Set::SINE_BURST,
       "WaveKind is neither SINE_BEAT nor SINE_BURST"},
      {Fails, set.GetAmpl() == 0.0, "Ampl is 0"},
      {Fails, set.GetFreq() == 0.0, "Freq is 0"},
      {Fails, set.GetCycle() == 0, "Cycle is 0"},
      {Fails, set.GetFrame() == 0, "Frame is 0"},
      {Fails, complete && layout.packet == 0,
       format("a packet of {} cycles of {:g} Hz has no samples", set.GetCycle(), set.GetFreq())},
      {Fails, complete && layout.packet != 0 && !layout.total.IsPositive(),
       format("packets of {} and rests of {} samples leave none", static_cast<int64>(layout.packet),
              static_cast<int64>(layout.rest)),
       set.GetFreq() > 0.0 && fsamp > 0.0 ? std::vector<Remedy>{{"RestTime", 0.0}}
                                          : std::vector<Remedy>{}},
      OddRate(fsamp),
      {Warns,
       overlaps && complete && layout.total.IsPositive() && layout.total.Count() < layout.packet,
       format("RestTime is {:g} s, so that packets of {} samples overlap to nothing: the waveform "
              "is 0",
              set.GetRestTime(), layout.packet),
       {{"RestTime", 0.0}}},
      {Warns, set.GetFreq() < 0.0, format("Freq is {:g} Hz", set.GetFreq())},
      TooCoarse("a period", fsamp / set.GetFreq(), "Fsamp", fsamp),
      {Warns,
       overlaps,
       format("RestTime is {:g} s, so that packets overlap", set.GetRestTime()),
       {{"RestTime", 0.0}}},
      {Warns, tapered && uint64{set.GetEdgeRise()} + set.GetEdgeFall() > set.GetCycle(),
       format("tapers of {} and {} cycles overlap in a packet of {}", set.GetEdgeRise(),
              set.GetEdgeFall(), set.GetCycle())},
  });
}

// ---- Symmetry waves ----------------------------------------------------------------------------

Findings BrokenRules(const wave_def::CWaveDefSymmetry& set, double fsamp) {
  using namespace wave_def::wave_def_sub;
  const WAVE_KIND kind = set.GetWaveKind();
  const bool known = kind == HALF_SINE || kind == TRIANGLE || kind == HAVERSINE;
  const wave_def::SymmetryLayout layout = LayOut(set, fsamp);
  const bool complete = known && fsamp != 0.0 && set.GetPeak() != 0.0 && set.GetWidth() != 0.0;
  const bool positive = layout.total.IsPositive();
  const uint64 size = positive ? layout.total.Count() : 0;
  bool fits = PulseFits(set, layout.n, layout.main, size);
  for (const uint64 at : layout.Compensations()) fits = fits && PulseFits(set, layout.n, at, size);
  const bool peakOutside = kind == TRIANGLE && set.GetPeakPos() > 1.0;
  const double least = std::min({set.GetPreZero(), set.GetMidZero(), set.GetPostZero(),
                                 set.GetDevideComp() ? set.GetMidZeroBackward() : 0.0});
  return Broken({
      NoRate(fsamp),
      {Fails, !known, "WaveKind is not HALF_SINE, TRIANGLE or HAVERSINE"},
      {Fails, set.GetPeak() == 0.0, "Peak is 0"},
      {Fails, set.GetWidth() == 0.0, "Width is 0"},
      {Fails, complete && !positive, "pulses and silences have no samples"},
      {Fails,
       complete && positive && !fits && peakOutside,
       format("PeakPos is {:g}, behind the width", set.GetPeakPos()),
       {{"PeakPos", 1.0}}},
      {Fails, complete && positive && !fits && !peakOutside,
       format("a pulse of {} samples does not fit between the silences into {} samples",
              static_cast<int64>(layout.n), size)},
      OddRate(fsamp),
      {Warns, complete && layout.n == 0,
       format("Width is {:.3g} samples, so that there is no pulse", set.GetWidth() * fsamp)},
      TooCoarse("a pulse", set.GetWidth() * fsamp, "Fsamp", fsamp),
      {Warns, least < 0.0, format("a silence lasts {:g} s, so that pulses overlap", least)},
  });
}
}  // namespace qarv::definition
