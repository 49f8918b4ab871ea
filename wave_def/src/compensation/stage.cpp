// The compensation stage of a classical pulse.
#include "compensation/stage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "compensation/drawing.h"
#include "compensation/gain_search.h"
#include "compensation/moves.h"
#include "compensation/optimised.h"
#include "compensation/reshape.h"
#include "compensation/tolerance.h"

namespace qarv::wave_def::compensation {

namespace {

/// Whether the pulse's bands leave its waveform no freedom at a sample, so that no reshaped one
/// keeps within them; only the peak is met exactly.
bool IsPinned(const Pulse& pulse) {
  for (auto i = static_cast<std::size_t>(pulse.at.iS); i <= static_cast<std::size_t>(pulse.at.iE);
       ++i) {
    if (pulse.upper[i] == kNoLimit || pulse.lower[i] == kNoLimit) continue;
    if (pulse.upper[i] <= pulse.lower[i] && pulse.wave[i] != pulse.A) return true;
  }
  return false;
}

/// Chooses among attempts: the first that passes at gain 1, or where a side is wanted the first
/// that passes and lies there, or failing that the first that passes; the first of all, if none
/// does.
class Choice {
 public:
  Choice(Reshaper* reshaper, const Settings& settings) : reshaper_(reshaper), settings_(settings) {}

  /// @return whether to offer no more: the attempt is all that can be wished for, or none can pass
  bool Offer(Attempt attempt) {
    Candidates candidates(reshaper_, attempt, settings_);
    Wave candidate;
    const bool passes = candidates.Make(1.0, &candidate);
    const bool wanted = passes && (!settings_.HasSideTest() || candidates.IsOnSide(candidate));
    const bool enough = wanted || (!passes && IsPinned(attempt.pulse));
    if (wanted || !chosen_ || (passes && !passes_)) {
      chosen_ = std::move(attempt);
      passes_ = passes;
    }
    return enough;
  }

  std::optional<Attempt>& Chosen() { return chosen_; }

 private:
  Reshaper* reshaper_;
  const Settings& settings_;
  std::optional<Attempt> chosen_;
  bool passes_ = false;
};

/// The attempt with moves added, which bring a table home that its pulses alone do not.
std::optional<Attempt> WithMoves(const Attempt& attempt, const Settings& settings) {
  constexpr std::array kParts{0.5};  // of the length, that accelerate
  constexpr double kPlanned = 0.95;  // of the limits: the rest is for the reshaping
  constexpr int kPairedMoves = 2;    // of each side
  const MoveSet moves = MovesAround(attempt.pulse, kParts);
  const Limits limits =
      LimitsInForce(attempt.pulse, settings.pre, settings.post, 1.0).Scaled(kPlanned);
  MoveMemory memory;
  const MovesFound found = BestMoves(attempt.comp, limits, moves,
                                     {.lead = 1.0, .top = kPairedMoves, .gentle = 0.0}, &memory);
  if (!found.home) return std::nullopt;
  Attempt moved(attempt);
  AddMoves(found, &moved.comp);
  return moved;
}

/// Whether there is a pulse in the frame to compensate.
bool IsPulse(const Pulse& pulse, const Settings& settings) {
  const Place& at = pulse.at;
  if (at.iS < 0 || at.iE >= pulse.N() || at.iS > at.iE || at.iPS > at.iS || at.iPE < at.iE)
    return false;
  if (std::isnan(settings.pre) || std::isnan(settings.post)) return false;
  const double S =
      SampleSum(pulse.wave.data(), static_cast<uint64>(at.iS), static_cast<uint64>(at.iE));
  return S * pulse.A > 0.0;
}

double ExcessAt(const Wave& candidate, const Pulse& pulse, const Settings& settings, int64 i) {
  const Limits limits = LimitsInForce(pulse, settings.pre, settings.post, HUGE_VAL);
  const auto k = static_cast<std::size_t>(i);
  return std::max(candidate[k] - limits.hi[k], limits.lo[k] - candidate[k]) / pulse.A;
}

}  // namespace

bool Compensate(Pulse* pulse, const Settings& settings, Results* results, Refusal* refusal,
                Work* work) {
  Work uncounted;
  if (work == nullptr) work = &uncounted;
  // A rest longer than the frame is as good as one of its length.
  pulse->at.iPS = std::max(pulse->at.iPS, -pulse->N());
  pulse->at.iPE = std::min(pulse->at.iPE, 2 * pulse->N());
  if (!IsPulse(*pulse, settings)) {
    refusal->reason = Refusal::NotAPulse;
    return false;
  }
  Reshaper reshaper(pulse->wave.size());
  Choice choice(&reshaper, settings);
  if (settings.type == CWaveDefClassical::CMP_OPTIMIZED) {
    TryOptimised(
        *pulse, settings, [&](Attempt attempt) { return choice.Offer(std::move(attempt)); }, work);
  } else if (auto drawn = PrepareDrawn(pulse, settings, &refusal->shortage, work)) {
    if (!choice.Offer(std::move(*drawn))) {
      if (auto moved = WithMoves(*choice.Chosen(), settings)) choice.Offer(std::move(*moved));
    }
  }
  if (!choice.Chosen()) {
    refusal->reason = Refusal::NoRoom;
    return false;
  }
  Attempt& attempt = *choice.Chosen();
  Candidates candidates(&reshaper, attempt, settings);
  GainFound found = SearchGain(&candidates, settings);
  if (found.passed) {
    CentreStroke(attempt.pulse, settings, &found.best);
  } else {
    refusal->reason = Refusal::OutOfTolerance;
    refusal->worst = found.worst;
    if (!found.best.empty())
      refusal->excess = ExcessAt(found.best, attempt.pulse, settings, found.worst);
  }
  *pulse = std::move(attempt.pulse);
  if (!found.best.empty()) pulse->wave = std::move(found.best);
  if (!found.passed) return false;
  *results = {attempt.drawn, found.gain,
              static_cast<double>(attempt.shift) / static_cast<double>(pulse->N())};
  return true;
}

}  // namespace qarv::wave_def::compensation
