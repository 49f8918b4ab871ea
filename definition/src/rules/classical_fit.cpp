// Whether a classical pulse and its bands fit their frame.
//
//   N        length of the frame [sample]
//   dt       sample interval [s]
//   reach    how far the pulse and its bands lie before and behind the centre [sample]
#include "rules/classical_fit.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "band/band_front.h"
#include "com_def/com_def_system_const.h"
#include "pulse/pulse_corners.h"
#include "pulse/pulse_span.h"

namespace qarv::definition {

using common::int64;
using common::uint64;
using wave_def::PulseSpan;
using Set = wave_def::CWaveDefClassical;
using namespace wave_def::wave_def_sub;

namespace {

double IntervalOf(const Set& set) {
  return 1.0 / com_def::comdefsystemconst::ConvFmaxToFsampByVal(set.GetFmax());
}

/// The sample of a pulse's placement, which takes the half width without its guard.
int64 PlacedStart(const Set& set) {
  const double dt = IntervalOf(set);
  return static_cast<int64>(wave_def::CentreOf(set, dt) - wave_def::PlacedHalfWidth(set, dt));
}

/// The length of the front region of a definition's band.  [sample]
uint64 FrontOf(const Set& set, const PulseSpan& p) {
  if (set.GetTolKind() == Set::TOL_USER_DEF) {
    return p.Samples(set.GetDefTolUserDef().GetTolFrontA());
  }
  switch (set.GetWaveKind()) {
    case HALF_SINE:
      return wave_def::HalfSineFront(set, p);
    case HAVERSINE:
      return wave_def::HaversineFront(set, p);
    case TERMINAL_PEAK_SAWTOOTH:
      return wave_def::SawtoothFront(set, p);
    case TRAPEZOID:
    case TRIANGLE:
    case USER_TRAPEZOID:
      break;
  }
  return wave_def::TrapezoidFront(set, p);
}

void AddSawtooth(const Set& set, const PulseSpan& p, std::vector<Extent>* out) {
  const auto corners = wave_def::SawtoothCornersOf(set, p.centre, p.dt);
  if (!corners) return;
  out->push_back({"the peak", corners->peak});
  out->push_back({"the end of the fall", corners->end});
  if (set.GetTolKind() == Set::TOL_USER_DEF) return;
  out->push_back({"the left level of the upper band", p.start + wave_def::SawtoothLeft(set, p)});
  if (const auto fall = wave_def::SawtoothFall(set, p)) {
    for (const uint64 drop : {uint64{0}, uint64{1}}) {
      out->push_back({"the fall of the lower band", p.end - *fall + drop});
      out->push_back({"the fall of the upper band", p.end + *fall + drop});
    }
  } else {
    out->push_back({"the drop of the band", corners->peak + 1});
    out->push_back({"the top of the band", p.end - 1});
  }
}

void AddTrapezoid(const Set& set, const PulseSpan& p, std::vector<Extent>* out) {
  const auto part = wave_def::FractionsOf(set);
  if (!part) return;
  const auto corners = wave_def::CornersOf(set, p.centre, p.dt, part->rise, part->fall);
  if (!corners) return;
  out->push_back({"the end of the rise", corners->riseEnd});
  out->push_back({"the start of the fall", corners->fallStart});
}

/// The reach of a pulse.  [sample]
struct Reach {
  double before, behind;
};

/// Nothing if a sample lies nowhere.
std::optional<Reach> ReachOf(const Set& set) {
  constexpr int64 kFar = int64{1} << 50;
  const auto centre = static_cast<int64>(wave_def::CentreOf(set, IntervalOf(set)));
  Reach reach{0.0, 0.0};
  for (const Extent& extent : ExtentsOf(set)) {
    const auto index = static_cast<int64>(extent.index);
    if (std::max(index, centre) > kFar || std::min(index, centre) < -kFar) return std::nullopt;
    reach.before = std::max(reach.before, static_cast<double>(centre - index));
    reach.behind = std::max(reach.behind, static_cast<double>(index - centre));
  }
  return reach;
}

Set WithFrame(Set set, double N) {
  set.SetNsamp(static_cast<unsigned int>(N));
  return set;
}

Set WithShift(Set set, double shift) {
  set.SetMainShift(shift);
  return set;
}

/// The shortest frame that holds the pulse where it is shifted to.
std::optional<double> ShortestFrame(const Set& set) {
  constexpr double kLongest = 4294967295.0;  // that a definition can have
  constexpr int kTries = 40;
  const double share = set.GetMainShift() + 0.5;  // of the frame before the centre
  if (!(share > 0.0 && share < 1.0)) return std::nullopt;
  Set tried = set;
  double N = set.GetNsamp();
  // What a pulse reaches changes with a frame that clamps it, so that one step need not be enough.
  for (int i = 0; i < kTries && !FitsFrame(tried); ++i) {
    const auto reach = ReachOf(tried);
    if (!reach) return std::nullopt;
    N = std::max(N + 1.0,
                 std::ceil(std::max(reach->before / share, (reach->behind + 1.0) / (1.0 - share))));
    if (!(N <= kLongest)) return std::nullopt;
    tried = WithFrame(set, N);
  }
  if (!FitsFrame(tried)) return std::nullopt;
  for (int i = 0; i < kTries && FitsFrame(WithFrame(set, N - 1.0)); ++i) N -= 1.0;
  return N;
}

/// The shift next to the definition's that brings the pulse into the frame.
std::optional<double> NearestShift(const Set& set) {
  const auto reach = ReachOf(set);
  const double N = set.GetNsamp();
  if (!reach || reach->before + reach->behind + 1.0 > N) return std::nullopt;
  const auto centre =
      static_cast<double>(static_cast<int64>(wave_def::CentreOf(set, IntervalOf(set))));
  const double nearest = std::clamp(centre, reach->before, N - 1.0 - reach->behind);
  const double shift = nearest / N - 0.5;
  if (!FitsFrame(WithShift(set, shift))) return std::nullopt;
  return shift;
}

}  // namespace

std::vector<Extent> ExtentsOf(const Set& set) {
  const double dt = IntervalOf(set);
  const uint64 centre = wave_def::CentreOf(set, dt);
  const auto span = wave_def::SpanOf(set, centre, dt);
  if (!span) return {};
  const PulseSpan& p = *span;
  std::vector<Extent> out{{"the start of the pulse", p.start},
                          {"the centre of the pulse", p.centre},
                          {"the end of the pulse", p.end},
                          {"the front region of the band", p.start - FrontOf(set, p)}};
  if (set.GetTolKind() == Set::TOL_USER_DEF) {
    const uint64 rear = p.Samples(set.GetDefTolUserDef().GetTolRearA());
    out.push_back({"the rear region of the band", p.end + rear});
  }
  if (set.GetWaveKind() == TERMINAL_PEAK_SAWTOOTH) {
    AddSawtooth(set, p, &out);
  } else {
    AddTrapezoid(set, p, &out);  // the fractions tell which shapes are
  }
  return out;
}

bool FitsFrame(const Set& set) {
  if (PlacedStart(set) < 0) return false;  // behind the frame it is not looked for
  const std::vector<Extent> extents = ExtentsOf(set);
  return std::all_of(extents.begin(), extents.end(),
                     [&](const Extent& extent) { return extent.index < set.GetNsamp(); });
}

std::string MisfitText(const Set& set) {
  const uint64 N = set.GetNsamp();
  std::vector<Extent> extents = ExtentsOf(set);
  extents.push_back({"the start of the pulse", static_cast<uint64>(PlacedStart(set))});
  // The one that is farthest outside says what is needed.
  const Extent* worst = nullptr;
  double farthest = 0.0;
  for (const Extent& extent : extents) {
    const auto index = static_cast<double>(static_cast<int64>(extent.index));
    const double outside = std::max(-index, index - static_cast<double>(N) + 1.0);
    if (!(outside > farthest)) continue;
    farthest = outside;
    worst = &extent;
  }
  if (worst == nullptr) return "the pulse or its bands do not fit the frame";
  const auto index = static_cast<int64>(worst->index);
  if (farthest > 1e15) return fmt::format("{} lies at no sample", worst->what);
  return fmt::format("{} lies at sample {}, {} the frame of {} samples", worst->what, index,
                     index < 0 ? "before" : "behind", N);
}

std::vector<Remedy> FittingFrames(const Set& set) {
  std::vector<Remedy> remedies;
  if (const auto shift = NearestShift(set)) remedies.push_back({"MainShift", *shift});
  if (const auto frame = ShortestFrame(set)) remedies.push_back({"Nsamp", *frame});
  return remedies;
}

}  // namespace qarv::definition
