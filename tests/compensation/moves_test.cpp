// Moves of the table: their shape, their limits, and the stroke that they leave.
#include "compensation/moves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "random_values.h"

namespace qarv::wave_def::compensation {
namespace {

/// The acceleration of a move, n + 1 samples.
Wave ShapeOf(const Move& move) {
  Wave shape(static_cast<std::size_t>(move.n) + 1);
  move.ForEachSample([&](int64 j, double m) { shape.at(static_cast<std::size_t>(j)) = m; });
  return shape;
}

Wave DisplacementOf(const Wave& a) {
  Wave v(a.size());
  Wave d(a.size());
  for (std::size_t i = 1; i < a.size(); ++i) v[i] = v[i - 1] + (a[i] + a[i - 1]) / 2;
  for (std::size_t i = 1; i < a.size(); ++i) d[i] = d[i - 1] + (v[i] + v[i - 1]) / 2;
  return d;
}

MovesFound BestMoves(const Wave& c, const Limits& limits, const MoveSet& moves,
                     const MoveRules& rules) {
  MoveMemory memory;
  return compensation::BestMoves(c, limits, moves, rules, &memory);
}

TEST(Move, GoesFromRestToRestByOne) {
  for (const int64 n : {8, 9, 20, 101, 5000}) {
    for (const double part : {0.5, 1.0 / 3, 0.01, 0.99}) {
      const Move move = MakeMove(n, part);
      const Wave shape = ShapeOf(move);
      const Wave travel = DisplacementOf(shape);
      EXPECT_EQ(shape.front(), 0.0);
      EXPECT_NEAR(std::accumulate(shape.begin(), shape.end(), 0.0), 0.0, 1e-14);
      EXPECT_NEAR(travel.back(), 1.0, 1e-12) << n << " " << part;
      double peak = 0;
      for (std::size_t j = 1; j < travel.size(); ++j) {
        EXPECT_GE(travel[j], travel[j - 1] - 1e-12) << "it never goes back";
        EXPECT_NEAR(move.TravelAt(static_cast<int64>(j)), travel[j], 1e-12);
        peak = std::max(peak, std::fabs(shape[j]));
      }
      EXPECT_EQ(move.TravelAt(n + 1), 1.0);
      EXPECT_GE(move.Peak() * (1 + 1e-12), peak);
      EXPECT_LE(move.Peak(), 2 * peak);
    }
  }
}

TEST(MakeMoves, LeavesOutWhatIsTooShortOrThereAlready) {
  constexpr std::array kParts{0.5};
  const std::array lengths{30.0, 30.4, 7.9, 100.0, 90.0, -5.0, std::nan("")};
  const auto moves = MakeMoves(lengths, kParts, 60);
  ASSERT_EQ(moves.size(), 2U);
  EXPECT_EQ(moves[0].n, 30);
  EXPECT_EQ(moves[1].n, 60) << "cut to the room";
  EXPECT_TRUE(MakeMoves(lengths, kParts, 7).empty());
}

/// A push that leaves the table at rest, displaced by about 1, in a frame of 400.
Wave Push() {
  Wave c(400);
  for (std::size_t j = 0; j < 10; ++j) {
    c[200 + j] = 0.01;
    c[220 + j] = -0.01;
  }
  return c;
}

TEST(BestMoves, BringTheTableHomeWithinTheLimits) {
  constexpr std::array kParts{0.5, 1.0 / 3};
  const std::array lengths{180.0, 100.0};
  const MoveSet moves{MakeMoves(lengths, kParts, 190), MakeMoves(lengths, kParts, 160)};
  const Wave c = Push();
  for (const double limit : {1.0, 1e-3}) {
    const Limits limits{Wave(400, -limit), Wave(400, limit)};
    const MovesFound found = BestMoves(c, limits, moves, {1.0, 4, 0.0});
    ASSERT_TRUE(found.home);
    Wave moved(c);
    AddMoves(found, &moved);
    const Wave d = DisplacementOf(moved);
    EXPECT_NEAR(d.back(), 0.0, 1e-12);
    double stroke = 0;
    for (const double v : d) stroke = std::max(stroke, std::fabs(v));
    EXPECT_NEAR(found.stroke, stroke, 1e-9);
    const double free = DisplacementOf(c).back();
    if (limit == 1.0) {
      EXPECT_NEAR(stroke, free / 2, 0.02 * free) << "half to each side";
    }
    for (std::size_t i = 0; i < 400; ++i) {
      if (i >= 195 && i < 235) continue;
      EXPECT_LE(std::fabs(moved[i]), limit * (1 + 1e-12));
    }
  }
}

// A shock is short beside such a frame, and its limits would let the table go a billion times as
// far.
TEST(BestMoves, CentreAShortShockInALongFrame) {
  const std::size_t N = 500000;
  Wave c(N);
  for (std::size_t j = 0; j < 10; ++j) {  // there and back, within 40 samples
    c[250000 + j] = c[250030 + j] = 1.0;
    c[250010 + j] = c[250020 + j] = -1.0;
  }
  constexpr std::array kParts{0.5};
  const std::array lengths{249000.0, 200.0};
  const MoveSet moves{MakeMoves(lengths, kParts, 249000), MakeMoves(lengths, kParts, 249000)};
  const Limits limits{Wave(N, -1.0), Wave(N, 1.0)};
  const MovesFound found = BestMoves(c, limits, moves, {1.0, 2, 0.0});
  ASSERT_TRUE(found.home);
  EXPECT_LE(found.stroke, 0.501 * found.swing);
}

TEST(BestMoves, SayWhenTheTableCannotComeHome) {
  const std::array lengths{100.0};
  constexpr std::array kParts{0.5};
  const MoveSet moves{MakeMoves(lengths, kParts, 190), MakeMoves(lengths, kParts, 160)};
  const Limits narrow{Wave(400, -1e-6), Wave(400, 1e-6)};
  const MovesFound far = BestMoves(Push(), narrow, moves, {1.0, 4, 0.0});
  EXPECT_FALSE(far.home);
  const Limits wider{Wave(400, -2e-6), Wave(400, 2e-6)};
  const MovesFound nearer = BestMoves(Push(), wider, moves, {1.0, 4, 0.0});
  EXPECT_FALSE(nearer.home);
  EXPECT_GT(nearer.miss, 0.0);
  EXPECT_GT(far.miss, nearer.miss) << "and how far it is from there";
  EXPECT_FALSE(BestMoves(Push(), {Wave(400, -1.0), Wave(400, 1.0)}, {}, {1.0, 4, 0.0}).home)
      << "no moves";
}

TEST(BestMoves, ALeadFavoursThePositiveSide) {
  const std::array lengths{180.0};
  constexpr std::array kParts{0.5};
  const MoveSet moves{MakeMoves(lengths, kParts, 190), MakeMoves(lengths, kParts, 160)};
  const Limits limits{Wave(400, -1.0), Wave(400, 1.0)};
  Wave moved = Push();
  AddMoves(BestMoves(moved, limits, moves, {1.1, 4, 0.0}), &moved);
  const Wave d = DisplacementOf(moved);
  const auto [low, high] = std::minmax_element(d.begin(), d.end());
  EXPECT_GT(*high, -*low * 1.05);
}

}  // namespace
}  // namespace qarv::wave_def::compensation
