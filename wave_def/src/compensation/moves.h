// Moves of the table before and after the shock, which centre its stroke.
//
// A table starts from the middle of its stroke, so the largest |displacement| counts.  The
// displacement of a compensated shock lies mostly on one side; a slow move to the other side before
// the shock and back after it halves the stroke at hardly any acceleration (a move by h over n
// samples takes about 2 pi h / n^2).
#pragma once

#include <algorithm>
#include <span>

#include "compensation/half_cycle.h"
#include "compensation/problem.h"
#include "compensation/tolerance.h"

namespace qarv::wave_def::compensation {

/// A move from rest to rest by +1, on n + 1 samples: half a sine that accelerates, half a sine that
/// brakes.
///
///   theta = pi / n1,  k = j - n1,  phi = pi / n2
///   acceleration  a1 sin(j theta), then -a2 sin(k phi),         a = 2 tan(theta / 2) / n
///   displacement  (j - cot(theta / 2) / 2 sin(j theta)) / n,  then (j + cot(phi / 2) / 2 sin(k
///   phi)) / n
///
/// The displacement is what the trapezoidal rule makes of the acceleration's samples, in closed
/// form.
struct Move {
  int64 n, n1, n2;  // length, and the samples that accelerate and that brake
  double a1, a2;

  /// The largest |acceleration|.
  double Peak() const { return std::max(a1, a2); }
  /// The displacement at sample j; 1 from n on.
  double TravelAt(int64 j) const;
  /// Calls f(j, acceleration) for the samples 0 .. n - 1; at n it is 0.
  template <class F>
  void ForEachSample(F f) const {
    HalfCycle up(static_cast<double>(n1));
    for (int64 j = 0; j < n1; ++j, up.Next()) f(j, a1 * up.Sin());
    HalfCycle down(static_cast<double>(n2));
    for (int64 k = 0; k < n2; ++k, down.Next()) f(n1 + k, -a2 * down.Sin());
  }
};

/// @param[in] n     length, at least 8 [sample]
/// @param[in] part  share of the length that accelerates
Move MakeMove(int64 n, double part);

/// Which moves are candidates on either side.  A move before the pulse lies at the frame's first
/// samples, one after it at the last ones, mirrored: it moves by -1.
struct MoveSet {
  std::vector<Move> pre, post;
};

/// The moves of the given lengths [sample] and parts; those shorter than 8 samples or longer than
/// `room` are left out.
std::vector<Move> MakeMoves(std::span<const double> lengths, std::span<const double> parts,
                            int64 room);

/// How BestMoves judges.
struct MoveRules {
  double lead;  // the negative side of the displacement counts this much more
  int top;      // candidates of each side that are paired
  double
      gentle;  // a pair this much worse than the best is taken for its lower acceleration [ratio]
};

/// A pair of moves and what they make of a waveform.
struct MovesFound {
  const Move* pre = nullptr;  // null: no move on this side
  const Move* post = nullptr;
  double h1 = 0.0;      // factor of the pre move
  double h2 = 0.0;      // and of the post move
  bool home = false;    // whether the table ends where it began
  double miss = 0.0;    // and by how much it does not
  double stroke = 0.0;  // max(largest displacement, -lead x least)
  double swing = 0.0;   // largest less least displacement
};

/// What searches share, so that they need not ask for memory again.
struct MoveMemory {
  Wave d;                          // displacement of the waveform, N samples
  std::vector<std::size_t> knots;  // where it has its extremes
  Wave atKnots, base, w;           // there: the displacement, and what the pairs make of it
  Wave travel;                     // and that of every candidate
};

/// The pair of moves that brings the table home with the least stroke, within limits.
/// @param[in] c       waveform, N samples
/// @param[in] limits  of the waveform with its moves
MovesFound BestMoves(const Wave& c, const Limits& limits, const MoveSet& moves,
                     const MoveRules& rules, MoveMemory* memory);

/// Adds the moves to the waveform.
void AddMoves(const MovesFound& found, Wave* c);

/// The moves for a finished waveform: several lengths up to the whole room before and after the
/// pulse.
MoveSet MovesAround(const Pulse& pulse, std::span<const double> parts);

/// Adds moves that lower the stroke of a waveform that has passed its tests, in at most two rounds;
/// a round that does not help or does not pass ends it.
void CentreStroke(const Pulse& pulse, const Settings& settings, Wave* best);

}  // namespace qarv::wave_def::compensation
