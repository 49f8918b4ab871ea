// A second computation of the classical pulses and their bands, written rule by rule.
//
// It knows no strokes and no shared drawing: each band is spelled out by itself, with a failed
// check as an exception.
#include "reference_classical.h"

#include <algorithm>

#include "numeric/elementary.h"

namespace qarv::test::reference {
namespace {

using namespace common::elementary;

using Def = CWaveDefClassical;
using Std = wave_def::CWaveDefTolSpecify;
using namespace wave_def::wave_def_sub;

struct DoesNotFit {};

void Require(bool ok) {
  if (!ok) throw DoesNotFit();
}

enum class Keep { Larger, Smaller };

void Merge(Wave* out, uint64 i, double v, Keep keep) {
  double& x = out->at(i);
  if (keep == Keep::Larger && v > x) x = v;
  if (keep == Keep::Smaller && v < x) x = v;
}

/// The value at i of the straight line through (i0, u0) and (i1, u1).
double OnLine(uint64 i, uint64 i0, double u0, uint64 i1, double u1) {
  if (u0 == u1 || i0 == i1) return u0;
  const auto difference = [](uint64 a, uint64 b) {
    return a >= b ? static_cast<double>(a - b) : -static_cast<double>(b - a);
  };
  return u0 + difference(i, i0) * (u1 - u0) / difference(i1, i0);
}

void DrawLine(Wave* out, uint64 i0, double u0, uint64 i1, double u1, Keep keep) {
  for (uint64 i = i0; i <= i1; ++i) Merge(out, i, OnLine(i, i0, u0, i1, u1), keep);
}

void DrawLevel(Wave* out, uint64 first, uint64 last, double v, Keep keep) {
  for (uint64 i = first; i <= last; ++i) Merge(out, i, v, keep);
}

void BlendOverPulse(Wave* out, const Wave& wave, uint64 start, uint64 end, uint64 peak, double P,
                    double a, double m, double b) {
  Require(start != end && P != 0);
  const auto margin = [&](uint64 i, double edge) {
    const double x = wave.at(i) / P;
    out->at(i) = ((1 - x) * edge + x * m) * P + wave.at(i);
  };
  const uint64 N = wave.size();
  if (start <= peak) Require(peak < N);
  for (uint64 i = start; i <= peak; ++i) margin(i, a);
  if (peak > end) return;
  Require(end < N);
  for (uint64 i = peak; i <= end; ++i) margin(i, b);
}

/// What the bands are drawn from.
struct Frame {
  uint64 N, start, centre, end;
  double A, W, dt;
  bool upper;
  Keep keep;

  double Sign() const { return upper ? 1.0 : -1.0; }
};

Frame FrameOf(const Def& def, bool upper, uint64 centre, double dt) {
  const auto half = HalfWidthOf(def.GetMainWidth(), dt, def.GetNsamp());
  Require(half.has_value());
  return {def.GetNsamp(),
          centre - half->n,
          centre,
          centre + half->n,
          def.GetMainAmpl(),
          def.GetMainWidth(),
          dt,
          upper,
          upper ? Keep::Larger : Keep::Smaller};
}

// ---- User --------------------------------------------------------------------------------------

void UserBand(const Def& def, const Frame& f, const Wave& wave, Wave* out) {
  const auto& tol = def.GetDefTolUserDef();
  const auto signedLevel = [&](double u, double l) { return f.upper ? u : -l; };
  const double lv = signedLevel(tol.GetTolLeftU(), tol.GetTolLeftL());
  const double mv = signedLevel(tol.GetTolMainU(), tol.GetTolMainL());
  const double rv = signedLevel(tol.GetTolRightU(), tol.GetTolRightL());
  const double bv = signedLevel(tol.GetTolPulsBegU(), tol.GetTolPulsBegL());
  const double ev = signedLevel(tol.GetTolPulsEndU(), tol.GetTolPulsEndL());
  const bool begin = tol.GetTolPulsSet() && tol.GetTolPulsBegU() != 0;
  const bool end = tol.GetTolPulsSet() && tol.GetTolPulsEndU() != 0;
  const uint64 frontStart = f.start - Index(tol.GetTolFrontA() * f.W / f.dt);
  const uint64 rearEnd = f.end + Index(tol.GetTolRearA() * f.W / f.dt);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, lv * f.A, f.keep);
  double a = lv;
  if (tol.GetTolFrontA() != 0) {
    const double t = begin ? bv : mv;
    Require(frontStart < f.N);
    DrawLine(out, frontStart, lv * f.A, f.start, t * f.A, lv <= t ? Keep::Larger : Keep::Smaller);
    a = t;
  }
  const double b = tol.GetTolRearA() == 0 ? rv : end ? ev : mv;
  if (def.GetWaveKind() == HALF_SINE || def.GetWaveKind() == HAVERSINE) {
    BlendOverPulse(out, wave, f.start, f.end, f.centre, f.A, a, mv, b);
  } else {
    Require(f.start != f.end && f.end < f.N);
    uint64 peak = 0;
    double value = 0;
    for (uint64 i = f.start; i <= f.end; ++i) {
      if (wave.at(i) > value) {
        value = wave.at(i);
        peak = i;
      }
    }
    BlendOverPulse(out, wave, f.start, f.end, peak, value, a, mv, b);
  }
  if (tol.GetTolRearA() != 0) {
    Require(f.end < f.N && rearEnd < f.N);
    DrawLine(out, f.end, (end ? ev : mv) * f.A, rearEnd, rv * f.A, f.keep);
  }
  Require(rearEnd < f.N);
  DrawLevel(out, rearEnd, f.N - 1, rv * f.A, f.keep);
}

// ---- Half-sine ---------------------------------------------------------------------------------

double FrontOf(int kind) {
  if (kind == 3 || kind == 4) return 0.3;
  return kind >= 5 && kind <= 9 ? 0.4 : 0.0;
}

/// The triangle from the start over the peak to the end, lowered to a cap.
void CappedTriangle(const Frame& f, double from, double to, double cap, Wave* out) {
  Require(f.end < f.N && f.centre < f.N);
  DrawLine(out, f.start, from, f.centre, f.A, Keep::Larger);
  DrawLine(out, f.centre, f.A, f.end, to, Keep::Larger);
  DrawLevel(out, f.start, f.end, cap, Keep::Smaller);
}

void HalfSineTableBand(int kind, const Frame& f, const Wave& wave, Wave* out) {
  const bool wide = kind == 5 || kind == 7;
  const bool none = kind < 3;
  const double left = none ? 0.0 : wide ? 0.2 : 0.05;
  const double main = none ? 0.0 : wide ? 0.2 : 0.15;
  const double right = none ? 0.0 : f.upper ? 0.2 : kind == 3 ? -0.3 : -0.2;
  const double lv = f.upper ? left : -left;
  const double mt = f.upper ? main : -main;
  const double edge = f.upper ? 0.2 : -0.2;
  const uint64 frontStart = f.start - Index(FrontOf(kind) * f.W / f.dt);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, lv * f.A, f.keep);
  Require(frontStart < f.N);
  DrawLine(out, frontStart, lv * f.A, f.start, edge * f.A, f.keep);
  if (!f.upper && (kind == 7 || kind == 8)) {
    Require(f.end < f.N);
    DrawLevel(out, f.start, f.end, -0.2 * f.A, Keep::Smaller);
    CappedTriangle(f, -0.2 * f.A, right * f.A, (1 + mt) * f.A, out);
  } else {
    BlendOverPulse(out, wave, f.start, f.end, f.centre, f.A, edge, mt, right);
  }
  Require(f.end < f.N);
  DrawLevel(out, f.end, f.N - 1, right * f.A, f.keep);
}

void HalfSineKind9Band(const Frame& f, const Wave& wave, Wave* out) {
  const double s = f.Sign();
  const uint64 frontStart = f.start - Index(f.W * 0.4 / f.dt + 0.5);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, s * 0.05 * f.A, f.keep);
  Require(frontStart < f.N);
  DrawLine(out, frontStart, 0.0, f.start, s * 0.2 * f.A, f.keep);
  if (f.upper) {
    BlendOverPulse(out, wave, f.start, f.end, f.centre, f.A, 0.2, 0.15, 0.2);
  } else {
    Require(f.end < f.N);
    DrawLevel(out, f.start, f.end, -0.2 * f.A, Keep::Smaller);
    CappedTriangle(f, -0.2 * f.A, -0.2 * f.A, 0.85 * f.A, out);
  }
  Require(f.end < f.N);
  DrawLevel(out, f.end, f.N - 1, s * 0.2 * f.A, f.keep);
}

void HalfSineStandardBand(const Std& tol, const Frame& f, const Wave& wave, Wave* out) {
  Require(tol.GetWaveKind() == HALF_SINE);
  const double B = f.upper ? tol.GetTolBeginHi() : -tol.GetTolBeginLo();
  const double P = f.upper ? tol.GetPulseBeforeHi() : -tol.GetPulseBeforeLo();
  const double E = f.upper ? tol.GetTolEndHi() : -tol.GetTolEndLo();
  const uint64 frontStart = f.start - Index(tol.GetPulseBeforeWidth() * f.W / f.dt);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, B * f.A, f.keep);
  Require(frontStart < f.N);
  DrawLine(out, frontStart, B * f.A, f.start, P * f.A, f.keep);
  const int bs = tol.GetBaseStandard();
  if (f.upper) {
    BlendOverPulse(out, wave, f.start, f.end, f.centre, f.A, P, tol.GetMainPulseHi() - 1, E);
  } else if (bs == 1 || bs == 5) {
    BlendOverPulse(out, wave, f.start, f.end, f.centre, f.A, P, tol.GetMainPulseLo() - 1, E);
  } else {
    Require(bs >= 2 && bs <= 4 && f.end < f.N);
    DrawLevel(out, f.start, f.end, P * f.A, Keep::Smaller);
    CappedTriangle(f, P * f.A, E * f.A, tol.GetMainPulseLo() * f.A, out);
  }
  Require(f.end < f.N);
  DrawLevel(out, f.end, f.N - 1, E * f.A, f.keep);
}

// ---- Haversine ---------------------------------------------------------------------------------

void HaversineBand(const Def& def, const Frame& f, const Wave& wave, Wave* out) {
  const auto& tol = def.GetDefTolUserDef();
  const double L = f.upper ? tol.GetTolLeftU() : -tol.GetTolLeftL();
  const double M = f.upper ? tol.GetTolMainU() : -tol.GetTolMainL();
  const double R = f.upper ? tol.GetTolRightU() : -tol.GetTolRightL();
  const int kind = def.GetTolKind();
  const uint64 frontStart = f.start - Index(FrontOf(kind) * f.W / f.dt);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, L * f.A, f.keep);
  double a = L;
  if (tol.GetTolFrontA() != 0) {
    Require(frontStart < f.N);
    DrawLine(out, frontStart, L * f.A, f.start, M * f.A, L <= M ? Keep::Larger : Keep::Smaller);
    a = M;
  }
  if (!f.upper && (kind == 5 || kind == 7 || kind == 8)) {
    CappedTriangle(f, a * f.A, R * f.A, (1 + M) * f.A, out);
  } else {
    BlendOverPulse(out, wave, f.start, f.end, f.centre, f.A, a, M, R);
  }
  Require(f.end < f.N);
  DrawLevel(out, f.end, f.N - 1, R * f.A, f.keep);
  if (tol.GetTolRearA() == 0) return;
  DrawLine(out, f.end, M * f.A, f.N - 1, R * f.A, R <= M ? Keep::Larger : Keep::Smaller);
}

// ---- Sawtooth ----------------------------------------------------------------------------------

struct Fractions {
  double rise, fall;
};

Fractions SawtoothFractions(const Def& def) {
  const int kind = def.GetTolKind();
  if (kind == 1 || kind == 4 || kind == 6 || kind == 9) return {1.0, 0.0};
  if (kind == 5 || kind == 7 || kind == 8 || kind == 10) return {0.9, 0.1};
  Require(kind == 11);
  const int bs = def.GetDefTolSpecify().GetBaseStandard();
  if (bs == 1 || bs == 4) return {1.0, 0.0};
  Require(bs == 2 || bs == 3 || bs == 5);
  const double f = def.GetDefTolSpecify().GetPulseAfterWidth();
  return {1 - f, f};
}

uint64 SawtoothPeak(const Def& def, uint64 centre, double dt) {
  const auto half = HalfWidthOf(def.GetMainWidth(), dt, def.GetNsamp());
  Require(half.has_value());
  const double L = static_cast<double>(2 * half->n);
  return centre - half->n + Index(std::floor(L * SawtoothFractions(def).rise + 0.5));
}

/// The line down from the knee and the level behind it.
void DropAndRight(const Frame& f, uint64 from, double top, uint64 to, double right, Wave* out) {
  Require(to < f.N && from < f.N);
  DrawLine(out, from, top, to, right, Keep::Larger);
  DrawLevel(out, to, f.N - 1, right, f.keep);
}

void SawtoothTableBand(int kind, uint64 p, const Frame& f, const Wave& wave, Wave* out) {
  const bool group = kind == 1 || kind == 4 || kind == 6;  // those with a fall region
  const bool wide = kind == 5 || kind == 7;
  const bool none = kind == 2 || kind == 3;
  const double left = none ? 0.0 : wide ? 0.2 : 0.05;
  const double front = none ? 0.0 : kind == 1 || kind == 4 ? 0.3 : 0.4;
  const double main = none ? 0.0 : wide ? 0.2 : 0.15;
  const double begin = none ? 0.0 : wide || kind == 8 ? 0.2 : 0.15;
  const double fall = none ? 0.0 : group ? 0.07 : 0.1;
  const double rv = none ? 0.0 : f.upper ? 0.2 : kind == 1 ? -0.3 : -0.2;
  const double lv = f.upper ? left : -left;
  const double mt = f.upper ? main : -main;
  const double pb = f.upper ? begin : -begin;
  const uint64 frontStart = f.start - Index(front * f.W / f.dt);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, lv * f.A, f.keep);
  Require(frontStart < f.N);
  DrawLine(out, frontStart, lv * f.A, f.start, pb * f.A, f.keep);
  if (!f.upper) {
    Require(f.end < f.N);
    DrawLevel(out, f.start, f.end, rv * f.A, Keep::Smaller);
  }
  const double x = group ? fall * f.W / f.dt : 0.0;
  double T = (1 + mt) * f.A;
  uint64 k = p;
  if (group) {
    k = f.upper ? f.end : f.end - Index(std::floor(x));
    Require(k < f.N);
    if (!f.upper) T = mt * f.A + wave.at(k);
  }
  Require(k < f.N);
  DrawLine(out, f.start, pb * f.A, k, T, Keep::Larger);
  if (!f.upper) {
    const uint64 d = kind == 8 && f.end > k ? f.end : k + 1;
    DropAndRight(f, k, T, d, rv * f.A, out);
    return;
  }
  uint64 e = group ? f.end + Index(std::floor(x)) : std::max(f.end - 1, k);
  Require(e < f.N && e + 1 < f.N);
  DrawLevel(out, k, e, T, Keep::Larger);
  DropAndRight(f, e, T, e + 1, rv * f.A, out);
}

void SawtoothKind9Band(const Frame& f, const Wave& wave, Wave* out) {
  const double main = f.upper ? 0.15 : -0.15;
  const double left = f.upper ? 0.05 : -0.05;
  const double right = f.upper ? 0.2 : -0.3;
  const uint64 leftEnd = f.upper ? f.start + Index(f.W * (0.2 - 0.15) / f.dt + 0.5) : f.start;
  const uint64 frontStart = f.start - Index(f.W * 0.4 / f.dt + 0.5);
  Require(leftEnd < f.N);
  DrawLevel(out, 0, leftEnd, left * f.A, f.keep);
  Require(frontStart < f.N);
  DrawLine(out, frontStart, 0.0, leftEnd, (f.upper ? 0.2 : -0.15) * f.A, f.keep);
  if (!f.upper) {
    Require(f.start < f.N && f.end < f.N);
    DrawLevel(out, f.start, f.end, -0.3 * f.A, Keep::Smaller);
  }
  const uint64 fall = Index(std::floor(0.07 * f.W / f.dt + 0.5));
  const uint64 k = f.upper ? f.end : f.end - fall;
  Require(f.start < f.N && k < f.N);
  const double T = f.upper ? 1.15 * f.A : -0.15 * f.A + wave.at(k);
  DrawLine(out, f.start, main * f.A, k, T, Keep::Larger);
  if (!f.upper) {
    DropAndRight(f, k, T, k + 1, -0.3 * f.A, out);
    return;
  }
  const uint64 e = f.end + fall;
  Require(e < f.N);
  DrawLevel(out, k, e, T, Keep::Larger);
  DropAndRight(f, e, T, e + 1, right * f.A, out);
}

void SawtoothStandardBand(const Std& tol, uint64 p, const Frame& f, const Wave& wave, Wave* out) {
  Require(tol.GetWaveKind() == TERMINAL_PEAK_SAWTOOTH);
  const double B = f.upper ? tol.GetTolBeginHi() : -tol.GetTolBeginLo();
  const double P = f.upper ? tol.GetPulseBeforeHi() : -tol.GetPulseBeforeLo();
  const double E = f.upper ? tol.GetTolEndHi() : -tol.GetTolEndLo();
  const double M = f.upper ? tol.GetMainPulseHi() : tol.GetMainPulseLo();
  const int bs = tol.GetBaseStandard();
  const bool instant = bs == 1 || bs == 4;
  const uint64 frontStart = f.start - Index(tol.GetPulseBeforeWidth() * f.W / f.dt);
  Require(f.start < f.N);
  DrawLevel(out, 0, f.start, B * f.A, f.keep);
  Require(frontStart < f.N);
  DrawLine(out, frontStart, B * f.A, f.start, P * f.A, f.keep);
  if (!f.upper) {
    Require(f.end < f.N);
    DrawLevel(out, f.start, f.end, E * f.A, Keep::Smaller);
  }
  Require(instant || bs == 2 || bs == 3 || bs == 5);
  const double x = instant ? tol.GetPulseAfterWidth() * f.W / f.dt : 0.0;
  uint64 k = p;
  double T = M * f.A;
  if (instant) {
    k = f.upper ? f.end : f.end - Index(std::floor(x));
    Require(k < f.N);
    if (!f.upper) T = (M - 1) * f.A + wave.at(k);
  }
  Require(k < f.N);
  DrawLine(out, f.start, P * f.A, k, T, Keep::Larger);
  if (!f.upper) {
    DropAndRight(f, k, T, instant && f.end > k ? f.end : k + 1, E * f.A, out);
    return;
  }
  const uint64 e = instant ? f.end + Index(std::floor(x)) : std::max(f.end - 1, k);
  Require(e < f.N);
  DrawLevel(out, k, e, T, Keep::Larger);
  DropAndRight(f, e, T, e + 1, E * f.A, out);
}

// ---- Trapezoid ---------------------------------------------------------------------------------

Fractions TrapezoidFractions(const Def& def) {
  if (def.GetWaveKind() == USER_TRAPEZOID) return {def.GetMainRise(), def.GetMainFall()};
  if (def.GetWaveKind() == TRIANGLE) return {0.5, 0.5};
  if (def.GetTolKind() != Def::TOL_SPECIFY) return {0.1, 0.1};
  const Std& tol = def.GetDefTolSpecify();
  Require(tol.GetBaseStandard() >= 1 && tol.GetBaseStandard() <= 5);
  return {tol.GetPulseRiseWidth(), tol.GetPulseFallWidth()};
}

struct Corners {
  uint64 start, riseEnd, fallStart, end;
};

Corners TrapezoidCorners(const Def& def, uint64 centre, double dt, uint64 N) {
  const auto half = HalfWidthOf(def.GetMainWidth(), dt, N);
  Require(half.has_value());
  const Fractions part = TrapezoidFractions(def);
  const double S = def.GetMainWidth() / dt;
  Corners c{centre - half->n, 0, 0, centre + half->n};
  c.riseEnd = c.start + Index(std::floor(S * part.rise + 0.01));
  c.fallStart = c.end - Index(std::floor(S * part.fall + 0.01));
  Require(c.start < N && c.riseEnd < N && c.fallStart < N && c.end < N);
  return c;
}

/// The levels of a trapezoid's band, signed, and the length of its front line in widths.
struct TrapezoidLevels {
  double left, front, begin, slope, plateau, right;
};

TrapezoidLevels TrapezoidLevelsOf(const Def& def, bool upper) {
  const int kind = def.GetTolKind();
  const auto either = [&](double u, double l) { return upper ? u : -l; };
  if (kind == 11) {
    const Std& tol = def.GetDefTolSpecify();
    Require(tol.GetWaveKind() == TRAPEZOID);
    return {either(tol.GetTolBeginHi(), tol.GetTolBeginLo()),
            tol.GetPulseBeforeWidth(),
            either(tol.GetPulseBeforeHi(), tol.GetPulseBeforeLo()),
            either(tol.GetPulseSlopeHi(), tol.GetPulseSlopeLo()),
            upper ? tol.GetMainPulseHi() : tol.GetMainPulseLo(),
            either(tol.GetTolEndHi(), tol.GetTolEndLo())};
  }
  if (kind == 1 || kind == 3 || kind == 4 || kind == 6) {
    const double none = either(0.0, 0.0);
    return {none, 0.0, none, none, 1 + none, 0.0};
  }
  const bool wide = kind == 5 || kind == 7;
  const bool tight = kind == 2 || kind == 9;
  const double left = wide ? 0.2 : 0.05;
  const double margin = tight ? 0.15 : 0.2;
  return {either(left, left),     kind == 2 ? 0.3 : 0.4,      either(margin, margin),
          either(margin, margin), 1 + either(margin, margin), either(0.2, tight ? 0.3 : 0.2)};
}

/// Sample by sample: which stretches of the figure reach it, and the limit of each.
void TrapezoidBand(const Def& def, const Frame& f, const Wave& wave, Wave* out) {
  const TrapezoidLevels level = TrapezoidLevelsOf(def, f.upper);
  const Corners c = TrapezoidCorners(def, f.centre, f.dt, f.N);
  const uint64 frontStart = c.start - Index(level.front * f.W / f.dt);
  Require(frontStart < f.N);
  const uint64 first = std::min({c.start, c.riseEnd, c.fallStart});
  const uint64 last = std::max({c.end, c.riseEnd, c.fallStart});
  const uint64 topFirst = std::min(c.riseEnd, c.fallStart);
  const uint64 topLast = std::max(c.riseEnd, c.fallStart);
  const double plateau = level.plateau * f.A;
  const auto sample = [&](uint64 i) { return i < f.N ? wave.at(i) : wave.at(f.N - 1); };
  for (uint64 i = 0; i < f.N; ++i) {
    if (i <= c.start) Merge(out, i, level.left * f.A, f.keep);
    if (i >= frontStart && i <= c.start) {
      Merge(out, i, OnLine(i, frontStart, level.left * f.A, c.start, level.begin * f.A), f.keep);
    }
    // Above, the pulse and its top are one sample longer at either end; below, the top is shorter.
    const bool onPulse = f.upper ? i + 1 >= first && i <= last + 1 : i >= first && i <= last;
    const bool onTop =
        f.upper ? i + 1 >= topFirst && i <= topLast + 1 : i >= topFirst + 1 && i + 1 <= topLast;
    if (onPulse) {
      double nominal = wave.at(i);
      for (const double beside : {sample(i == 0 ? 0 : i - 1), sample(i + 1)}) {
        nominal = f.upper ? std::max(nominal, beside) : std::min(nominal, beside);
      }
      double v = nominal + level.slope * f.A;
      if (onTop || plateau < v) v = plateau;
      // Nothing else of the lower band lies behind the start and before the end.
      if (!f.upper && i > c.start && i <= c.end) out->at(i) = v;
      Merge(out, i, v, f.keep);
    }
    if (i >= c.end) Merge(out, i, level.right * f.A, f.keep);
  }
}

// ---- Pulses ------------------------------------------------------------------------------------

void CosinePulse(const Def& def, uint64 centre, double dt, Wave* wave) {
  const double peak = def.GetMainAmpl();
  const uint64 N = wave->size();
  const auto half = HalfWidthOf(def.GetMainWidth(), dt, N);
  Require(peak != 0 && half && centre < N);
  wave->at(centre) = peak;
  const bool haversine = def.GetWaveKind() == HAVERSINE;
  const double s = haversine ? 3.141592653589793 / half->h : 3.141592653589793 / half->h * 0.5;
  for (uint64 k = 1; k <= half->n; ++k) {
    const double c = Cos(static_cast<double>(k) * s);
    const double v = haversine ? (c * 0.5 + 0.5) * peak : c * peak;
    if (k <= centre) wave->at(centre - k) = v;
    if (centre + k < N) wave->at(centre + k) = v;
  }
}

/// The fall of a nominal pulse: a line whose last sample is exactly 0.
void DrawFall(Wave* wave, uint64 from, double peak, uint64 to) {
  for (uint64 i = from; i <= to; ++i) {
    const bool last = i == to && from != to;
    Merge(wave, i, last ? 0.0 : OnLine(i, from, peak, to, 0.0), Keep::Larger);
  }
}

void SawtoothPulse(const Def& def, uint64 centre, double dt, Wave* wave) {
  const uint64 N = wave->size();
  const auto half = HalfWidthOf(def.GetMainWidth(), dt, N);
  Require(half.has_value());
  const Fractions part = SawtoothFractions(def);
  const double L = static_cast<double>(2 * half->n);
  const uint64 start = centre - half->n;
  const uint64 peak = start + Index(std::floor(L * part.rise + 0.5));
  const uint64 end = start + Index(std::floor((part.fall + part.rise) * L + 0.5));
  Require(start < N && peak < N && end < N);
  for (uint64 i = start; i <= peak; ++i) {
    const bool none = peak == start || def.GetMainAmpl() == 0;
    const double v = none ? 0.0
                          : static_cast<double>(i - start) * def.GetMainAmpl() /
                                static_cast<double>(peak - start);
    Merge(wave, i, v, Keep::Larger);
  }
  DrawFall(wave, peak, def.GetMainAmpl(), end);
}

void TrapezoidPulse(const Def& def, uint64 centre, double dt, Wave* wave) {
  const Fractions part = TrapezoidFractions(def);
  const Corners c = TrapezoidCorners(def, centre, dt, wave->size());
  const double A = def.GetMainAmpl();
  for (uint64 i = std::min(c.start, c.riseEnd); i <= std::max(c.start, c.riseEnd); ++i) {
    Merge(wave, i, OnLine(i, c.start, 0.0, c.riseEnd, A), Keep::Larger);
  }
  if (part.rise + part.fall != 1.0) {
    for (uint64 i = std::min(c.riseEnd, c.fallStart); i <= std::max(c.riseEnd, c.fallStart); ++i)
      Merge(wave, i, A, Keep::Larger);
  }
  DrawFall(wave, c.fallStart, A, c.end);
}

template <class Draw>
std::optional<Wave> Drawn(uint64 N, Draw draw) {
  Wave out(N);
  try {
    draw(&out);
  } catch (const DoesNotFit&) {
    return std::nullopt;
  }
  return out;
}

}  // namespace

std::optional<HalfWidth> HalfWidthOf(double width, double dt, uint64 N) {
  if (width == 0 || dt == 0 || N < 2) return std::nullopt;
  HalfWidth half{width * 0.5 / dt, 0};
  half.n = Index(std::floor(half.h + 0.01));
  if (!(half.n < N / 2)) {
    half.n = N / 2 - 1;
    half.h = static_cast<double>(half.n) * dt;
  }
  return half;
}

std::optional<Wave> Pulse(const CWaveDefClassical& def, uint64 centre, double dt) {
  return Drawn(def.GetNsamp(), [&](Wave* wave) {
    Require(dt != 0);
    switch (def.GetWaveKind()) {
      case HALF_SINE:
      case HAVERSINE:
        CosinePulse(def, centre, dt, wave);
        return;
      case TERMINAL_PEAK_SAWTOOTH:
        SawtoothPulse(def, centre, dt, wave);
        return;
      case TRAPEZOID:
      case TRIANGLE:
      case USER_TRAPEZOID:
        TrapezoidPulse(def, centre, dt, wave);
        return;
    }
    throw DoesNotFit();
  });
}

std::optional<Wave> Band(const CWaveDefClassical& def, bool upper, uint64 centre, double dt,
                         const Wave& wave) {
  return Drawn(def.GetNsamp(), [&](Wave* out) {
    const int kind = def.GetTolKind();
    const auto shape = def.GetWaveKind();
    Require(dt != 0 && kind >= 1 && kind <= 11);
    const Frame f = FrameOf(def, upper, centre, dt);
    if (kind == 10) return UserBand(def, f, wave, out);
    if (shape == HAVERSINE) return HaversineBand(def, f, wave, out);
    const Std& tol = def.GetDefTolSpecify();
    if (shape == HALF_SINE) {
      if (kind == 9) return HalfSineKind9Band(f, wave, out);
      if (kind == 11) return HalfSineStandardBand(tol, f, wave, out);
      return HalfSineTableBand(kind, f, wave, out);
    }
    if (shape == TRAPEZOID) return TrapezoidBand(def, f, wave, out);
    Require(shape == TERMINAL_PEAK_SAWTOOTH);  // the others have the user's band only
    if (kind == 9) return SawtoothKind9Band(f, wave, out);
    const uint64 peak = SawtoothPeak(def, centre, dt);
    if (kind == 11) return SawtoothStandardBand(tol, peak, f, wave, out);
    return SawtoothTableBand(kind, peak, f, wave, out);
  });
}

std::optional<Place> PlaceOf(const CWaveDefClassical& def) {
  const uint64 N = def.GetNsamp();
  if (def.GetMainAmpl() == 0 || def.GetFmax() == 0 || N == 0) return std::nullopt;
  const double dt = 1.0 / (2.56 * def.GetFmax());
  if (dt == 0 || N / 2 == 0) return std::nullopt;
  const double T = static_cast<double>(N) * dt;
  const uint64 centre = Index(std::floor((def.GetMainShift() * T + T * 0.5) / dt + 0.001));
  const uint64 half = Index(std::floor(def.GetMainWidth() * 0.5 / dt));
  if (static_cast<common::int64>(centre - half) < 0) return std::nullopt;
  return Place{dt, centre};
}

std::optional<Definition> Define(const CWaveDefClassical& def) {
  const auto place = PlaceOf(def);
  if (def.GetTolKind() < 1 || def.GetTolKind() > 11 || !place || def.GetAddCmp())
    return std::nullopt;
  const auto wave = Pulse(def, place->centre, place->dt);
  if (!wave) return std::nullopt;
  const auto upper = Band(def, true, place->centre, place->dt, *wave);
  const auto lower = Band(def, false, place->centre, place->dt, *wave);
  if (!upper || !lower) return std::nullopt;
  return Definition{*wave, *upper, *lower};
}

}  // namespace qarv::test::reference
