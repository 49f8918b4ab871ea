// Moves of the table before and after the shock, which centre its stroke.
//
//   d          displacement of the waveform, the sample interval being 1
//   gap        what the moves have to add at the end to bring the table home
//   m1, m2     a pre move by +1 and a post move by -1;   h1 m1 + h2 m2 adds h1 - h2 = gap
#include "compensation/moves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "common/numeric/calc_wave.h"
#include "common/numeric/constants.h"
#include "numeric/elementary.h"
#include "numeric/sample_blocks.h"

namespace qarv::wave_def::compensation {

using common::CCalcWave;

namespace {

// What chose each number is in docs/compensation.md, "Its numbers".

constexpr int64 kShortest = 8;  // [sample]
/// What counts as home, where rounding leaves a miss: a share of the largest |displacement|.
constexpr double kHome = 1e-9;

std::size_t At(int64 i) { return static_cast<std::size_t>(i); }

void Displace(const Wave& a, Wave* d) {
  d->resize(a.size());
  CCalcWave::IntegTime(d->size(), d->data(), a.data(), 1.0);
  CCalcWave::IntegTime(d->size(), d->data(), d->data(), 1.0);
}

/// A candidate on one side: the move and how far it can go within the limits.
struct Reach {
  const Move* move = nullptr;
  double up = 0.0;
  double down = 0.0;
};

/// How far a move that begins at sample `first`, or ends at it mirrored, can go on top of c.
Reach ReachOf(const Move& move, bool post, const Wave& c, const Limits& limits) {
  double up = HUGE_VAL;
  double down = -HUGE_VAL;
  const std::size_t N = c.size();
  move.ForEachSample([&](int64 j, double m) {
    if (m == 0.0) return;
    const std::size_t i = post ? N - 1 - At(j) : At(j);
    const double inverse = 1.0 / m;
    const double toHi = (limits.hi[i] - c[i]) * inverse;
    const double toLo = (limits.lo[i] - c[i]) * inverse;
    up = std::min(up, std::max(toHi, toLo));
    down = std::max(down, std::min(toHi, toLo));
  });
  return {&move, std::max(up, 0.0), std::min(down, 0.0)};
}

/// The candidates of one side with the largest reach up; the move of nothing, if there is none.
std::vector<Reach> BestReaches(const std::vector<Move>& moves, bool post, const Wave& c,
                               const Limits& limits, int top) {
  std::vector<Reach> reaches;
  reaches.reserve(moves.size());
  for (const Move& move : moves) reaches.push_back(ReachOf(move, post, c, limits));
  std::stable_sort(reaches.begin(), reaches.end(),
                   [](const Reach& a, const Reach& b) { return a.up > b.up; });
  if (reaches.size() > At(top)) reaches.resize(At(top));
  if (reaches.empty()) reaches.emplace_back();
  return reaches;
}

/// The displacement of a move at sample i of N, in the place where it lies.
double TravelAt(const Move* move, bool post, std::size_t i, std::size_t N) {
  if (move == nullptr) return 0.0;
  const double travelled = move->TravelAt(static_cast<int64>(post ? N - 1 - i : i));
  return post ? travelled - 1.0 : travelled;  // mirrored in time, it ends at -1
}

struct Extremes {
  double low, high;
  double Stroke(double lead) const { return std::max(high, -lead * low); }
};

/// The extremes of base + h w.
Extremes ExtremesOf(const Wave& base, const Wave& w, double h) {
  Extremes found{};
  common::RunWith(common::BestInstructionSet(), [&]() QARV_LANES {
    common::Running high;
    common::Running low;
    high.fill(-HUGE_VAL);
    low.fill(HUGE_VAL);
    common::ForSideBySide(base.size(), [&, a = base.data(), b = w.data(), h](
                                           std::size_t lane, std::size_t i) QARV_LANES {
      const double y = a[i] + h * b[i];
      high[lane] = y > high[lane] ? y : high[lane];
      low[lane] = y < low[lane] ? y : low[lane];
    });
    found = {*std::min_element(low.begin(), low.end()),
             *std::max_element(high.begin(), high.end())};
  });
  return found;
}

/// The least of a convex function on [a, b], by golden section.
template <class F>
double Minimise(double a, double b, F f) {
  constexpr double kGolden = 0.6180339887498949;
  constexpr int kSteps = 28;
  double left = b - kGolden * (b - a);
  double right = a + kGolden * (b - a);
  double atLeft = f(left);
  double atRight = f(right);
  for (int step = 0; step < kSteps; ++step) {
    if (atLeft <= atRight) {
      b = right;
      right = left;
      atRight = atLeft;
      left = b - kGolden * (b - a);
      atLeft = f(left);
    } else {
      a = left;
      left = right;
      atLeft = atRight;
      right = a + kGolden * (b - a);
      atRight = f(right);
    }
  }
  return atLeft <= atRight ? left : right;
}

/// Where a displacement has its extremes: every sample of a short frame, the least and the largest
/// one of every stretch of a long one.  A move hardly travels within a stretch, so that the
/// extremes with moves are among these too; one sample a stretch, whichever, would miss the shock.
void FindKnots(const Wave& d, std::vector<std::size_t>* knots) {
  constexpr std::size_t kStretches = 512;
  const std::size_t N = d.size();
  const std::size_t stretch = N < 4 * kStretches ? 1 : (N + kStretches - 1) / kStretches;
  knots->clear();
  knots->reserve(std::min(N, 4 * kStretches));
  for (std::size_t first = 0; first < N; first += stretch) {
    const auto begin = d.begin() + static_cast<std::ptrdiff_t>(first);
    const auto end = d.begin() + static_cast<std::ptrdiff_t>(std::min(N, first + stretch));
    const auto [low, high] = std::minmax_element(begin, end);
    knots->push_back(static_cast<std::size_t>(low - d.begin()));
    if (low != high) knots->push_back(static_cast<std::size_t>(high - d.begin()));
  }
}

/// A candidate of one side, and how far it has gone at the knots.
struct Candidate {
  Reach reach;
  std::span<const double> travel;
};

/// A move on either side, and the factors of the first one that the limits allow.
struct Pair {
  const Candidate *pre, *post;
  double low, high;
  double miss;  // how far from home they leave the table, if they do
  bool home;
};

/// @param[in] gap    what the moves have to add at the end
/// @param[in] scale  the largest |displacement| without them
Pair MakePair(const Candidate& pre, const Candidate& post, double gap, double scale) {
  double low = std::max(pre.reach.down, post.reach.down + gap);
  double high = std::min(pre.reach.up, post.reach.up + gap);
  const double miss = std::max(low - high, 0.0);
  if (low > high) low = high = 0.5 * (low + high);
  return {&pre, &post, low, high, miss, miss <= kHome * scale};
}

/// The best factors for a pair.
MovesFound BestFactors(const Pair& pair, double gap, double scale, const MoveRules& rules,
                       MoveMemory* memory) {
  MovesFound found{.pre = pair.pre->reach.move,
                   .post = pair.post->reach.move,
                   .home = pair.home,
                   .miss = pair.miss};
  // With h2 = h1 - gap the displacement is base + h1 w.
  Wave& base = memory->base;
  Wave& w = memory->w;
  for (std::size_t k = 0; k < base.size(); ++k) {
    base[k] = memory->atKnots[k] - gap * pair.post->travel[k];
    w[k] = pair.pre->travel[k] + pair.post->travel[k];
  }
  const auto strokeAt = [&](double h) { return ExtremesOf(base, w, h).Stroke(rules.lead); };
  // Between the moves w is 1, so that a factor far above what the stroke comes to without need not
  // be looked at: in a long frame the limits allow a million times that, and the search would end
  // before it is near.
  const double useful = strokeAt(std::clamp(0.0, pair.low, pair.high)) + scale;
  found.h1 = Minimise(std::max(pair.low, -useful), std::min(pair.high, useful), strokeAt);
  found.h2 = found.h1 - gap;
  const Extremes reached = ExtremesOf(base, w, found.h1);
  found.stroke = reached.Stroke(rules.lead);
  found.swing = reached.high - reached.low;
  return found;
}

double AccelerationOf(const MovesFound& found) {
  return std::max(found.pre != nullptr ? std::fabs(found.h1) * found.pre->Peak() : 0.0,
                  found.post != nullptr ? std::fabs(found.h2) * found.post->Peak() : 0.0);
}

}  // namespace

Move MakeMove(int64 n, double part) {
  const auto length = static_cast<double>(n);
  // Rounded half up; both halves have at least three samples.
  const int64 n1 = std::clamp<int64>(LengthOf(length * part + 0.5), 3, n - 3);
  const int64 n2 = n - n1;
  const auto amplitude = [&](int64 count) {
    return 2.0 * common::elementary::Tan(common::kPi / (2.0 * static_cast<double>(count))) / length;
  };
  return {n, n1, n2, amplitude(n1), amplitude(n2)};
}

double Move::TravelAt(int64 j) const {
  if (j >= n) return 1.0;
  const bool rising = j < n1;
  const auto count = static_cast<double>(rising ? n1 : n2);
  const double angle = static_cast<double>(rising ? j : j - n1) * common::kPi / count;
  const auto length = static_cast<double>(n);
  const double bend =
      common::elementary::Sin(angle) / (length * (rising ? a1 : a2));  // cot / 2 over the length
  const double mean = static_cast<double>(j);
  return (rising ? mean - bend : mean + bend) / length;
}

std::vector<Move> MakeMoves(std::span<const double> lengths, std::span<const double> parts,
                            int64 room) {
  std::vector<Move> moves;
  std::vector<int64> made;
  for (const double length : lengths) {
    if (!(length >= static_cast<double>(kShortest))) continue;
    const int64 n = std::min(LengthOf(length), room);
    if (n < kShortest || std::find(made.begin(), made.end(), n) != made.end()) continue;
    made.push_back(n);
    for (const double part : parts) moves.push_back(MakeMove(n, part));
  }
  return moves;
}

MovesFound BestMoves(const Wave& c, const Limits& limits, const MoveSet& moves,
                     const MoveRules& rules, MoveMemory* memory) {
  const Wave& d = memory->d;
  const auto& knots = memory->knots;
  Displace(c, &memory->d);
  FindKnots(d, &memory->knots);
  memory->atKnots.clear();
  for (const std::size_t i : knots) memory->atKnots.push_back(d[i]);
  memory->base.resize(knots.size());
  memory->w.resize(knots.size());
  const double scale = ExtremesOf(memory->atKnots, memory->atKnots, 0.0).Stroke(1.0);

  const auto preReaches = BestReaches(moves.pre, false, c, limits, rules.top);
  const auto postReaches = BestReaches(moves.post, true, c, limits, rules.top);
  memory->travel.resize((preReaches.size() + postReaches.size()) * knots.size());
  std::span<double> rest(memory->travel);
  const auto side = [&](const std::vector<Reach>& reaches, bool post) {
    std::vector<Candidate> candidates;
    candidates.reserve(reaches.size());
    for (const Reach& reach : reaches) {
      const auto travel = rest.first(knots.size());
      rest = rest.subspan(knots.size());
      for (std::size_t k = 0; k < knots.size(); ++k)
        travel[k] = TravelAt(reach.move, post, knots[k], c.size());
      candidates.push_back({reach, travel});
    }
    return candidates;
  };
  const auto pres = side(preReaches, false);
  const auto posts = side(postReaches, true);
  const double gap = -d.back();
  std::vector<Pair> pairs;
  pairs.reserve(pres.size() * posts.size());
  for (const Candidate& pre : pres) {
    for (const Candidate& post : posts) pairs.push_back(MakePair(pre, post, gap, scale));
  }
  // Where none comes home, the factors of the nearest are all that is asked for; where one does,
  // those that do not are out of the question.
  const auto nearer = [](const Pair& a, const Pair& b) { return a.miss < b.miss; };
  const auto isHome = [](const Pair& pair) { return pair.home; };
  if (std::none_of(pairs.begin(), pairs.end(), isHome)) {
    return BestFactors(*std::min_element(pairs.begin(), pairs.end(), nearer), gap, scale, rules,
                       memory);
  }
  std::vector<MovesFound> all;
  all.reserve(pairs.size());
  for (const Pair& pair : pairs) {
    if (pair.home) all.push_back(BestFactors(pair, gap, scale, rules, memory));
  }
  const auto better = [](const MovesFound& a, const MovesFound& b) { return a.stroke < b.stroke; };
  const MovesFound best = *std::min_element(all.begin(), all.end(), better);
  MovesFound gentlest = best;
  for (const MovesFound& pair : all) {
    if (pair.stroke <= best.stroke * (1.0 + rules.gentle) &&
        AccelerationOf(pair) < AccelerationOf(gentlest)) {
      gentlest = pair;
    }
  }
  return gentlest;
}

void AddMoves(const MovesFound& found, Wave* c) {
  const std::size_t N = c->size();
  if (found.pre != nullptr) {
    found.pre->ForEachSample([&](int64 j, double m) { (*c)[At(j)] += found.h1 * m; });
  }
  if (found.post != nullptr) {
    found.post->ForEachSample([&](int64 j, double m) { (*c)[N - 1 - At(j)] += found.h2 * m; });
  }
}

MoveSet MovesAround(const Pulse& pulse, std::span<const double> parts) {
  constexpr std::array kShares{1.0, 0.85, 0.7, 0.55, 0.42, 0.3};
  const auto side = [&](int64 room) {
    std::array<double, kShares.size()> lengths{};
    for (std::size_t i = 0; i < lengths.size(); ++i)
      lengths[i] = kShares[i] * static_cast<double>(room);
    return MakeMoves(lengths, parts, room);
  };
  return {side(pulse.at.iS - 1), side(pulse.N() - 2 - pulse.at.iE)};
}

void CentreStroke(const Pulse& pulse, const Settings& settings, Wave* best) {
  constexpr std::array kParts{1.0 / 2, 1.0 / 3};  // of the length, that accelerate
  constexpr int kRounds = 2;
  constexpr double kPlanned = 0.999;     // of the limits; what is moved is tested after all
  constexpr double kWrongSide = 1.002;   // how much more the side that is not asked for counts
  constexpr int kPairedMoves = 6;        // of each side
  constexpr double kForGentler = 0.003;  // stroke that is given for less acceleration [ratio]
  const MoveSet moves = MovesAround(pulse, kParts);
  const Limits limits = LimitsInForce(pulse, settings.pre, settings.post, 1.0).Scaled(kPlanned);
  const MoveRules rules{.lead = settings.HasSideTest() ? kWrongSide : 1.0,
                        .top = kPairedMoves,
                        .gentle = kForGentler};
  MoveMemory memory;
  for (int round = 0; round < kRounds; ++round) {
    const MovesFound found = BestMoves(*best, limits, moves, rules, &memory);
    const double before = ExtremesOf(memory.d, memory.d, 0.0).Stroke(rules.lead);
    if (!found.home || !(found.stroke < before)) return;
    Wave& moved = memory.d;
    moved.assign(best->begin(), best->end());
    AddMoves(found, &moved);
    if (!InTolerance(moved.data(), pulse.upper.data(), pulse.lower.data(), pulse.N(), pulse.at.iS,
                     pulse.at.iE, settings.pre, settings.post, kLeastLimit)) {
      return;
    }
    std::swap(*best, moved);
  }
}

}  // namespace qarv::wave_def::compensation
