// The rules of damped-sine syntheses.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/numeric/index_conv.h"
#include "family/damping_layout.h"
#include "rules/rule_table.h"
#include "rules/rules.h"

namespace qarv::definition {

using common::FloorToIndex;
using common::uint64;
using fmt::format;
using enum Severity;

namespace {

/// Where the components of a damped-sine definition begin.
struct Components {
  uint64 count = 0;      // that have an amplitude, without the compensating one
  uint64 outside = 0;    // of these, that begin outside the record
  double highest = 0.0;  // frequency [Hz]
  double last = 0.0;     // beginning of the last of these [s]
  double shift = 0.0;    // [s] of all, so that none begins before the record
  bool undamped = false;

  void Add(double freq, double ampl, double begin, double dt, uint64 nsamp) {
    if (ampl == 0.0) return;
    ++count;
    highest = std::max(highest, std::fabs(freq));
    if (FloorToIndex(begin / dt) < nsamp) return;
    ++outside;
    last = std::max(last, begin);
  }
};

Components ComponentsOf(const wave_def::CWaveDefDamping& set, double fsamp) {
  using namespace com_def::comdefconst;
  const wave_def::DampingComponents c(set.GetDefDampingElmList());
  const double dt = 1.0 / fsamp;
  const bool compensated = set.GetSyncWaveType() == SYNC_WAVE_DAMPED_SINE;
  const wave_def::CompensatingSine added =
      compensated ? wave_def::CalcCompensatingSine(0.0, c.freq.size(), c.freq.data(), c.ampl.data(),
                                                   c.zeta.data(), c.delay.data(), set.GetFreq(),
                                                   set.GetZeta())
                  : wave_def::CompensatingSine{};
  Components out;
  out.shift = added.shift;
  for (std::size_t i = 0; i < c.freq.size(); ++i) {
    out.Add(c.freq[i], c.ampl[i], c.delay[i] + added.shift, dt, set.GetNsamp());
    const bool decays = set.GetSyncWaveType() == SYNC_WAVE_WAVELET || c.zeta[i] > 0.0;
    out.undamped = out.undamped || (c.ampl[i] != 0.0 && !decays);
  }
  if (compensated) {
    out.highest = std::max(out.highest, std::fabs(set.GetFreq()));
    out.undamped = out.undamped || !(set.GetZeta() > 0.0);
  }
  return out;
}

}  // namespace

Findings BrokenRules(const wave_def::CWaveDefDamping& set, double fsamp) {
  using namespace com_def::comdefconst;
  const auto type = set.GetSyncWaveType();
  const bool isMethod = type == SYNC_WAVE_DAMPED_SINE || type == SYNC_WAVE_DAMPED_SINE_MODIFIED ||
                        type == SYNC_WAVE_WAVELET;
  const Components parts = ComponentsOf(set, fsamp);
  const double needed = std::floor(parts.last * fsamp) + 2.0;  // [sample] to see the last one
  std::vector<Remedy> longer;
  if (needed > static_cast<double>(set.GetNsamp()) && needed < 4e9)
    longer.push_back({"Nsamp", needed});
  const std::string shifted =
      parts.shift > 0.0 ? format(
                              " (all are delayed by {:.6g} s, so that the compensating one does "
                              "not begin before it)",
                              parts.shift)
                        : "";
  return Broken({
      NoRate(fsamp),
      {Fails, set.GetNsamp() == 0, "Nsamp is 0"},
      {Fails, set.GetElmNum() == 0, "there are no Elements"},
      {Fails, !isMethod, "SyncWaveType is not set"},
      OddRate(fsamp),
      {Warns, set.GetElmNum() != 0 && parts.count == 0, "no component has an amplitude"},
      {Warns, parts.count != 0 && parts.outside == parts.count,
       format("every component begins outside the record of {} samples{}", set.GetNsamp(), shifted),
       longer},
      {Warns, parts.outside != 0 && parts.outside < parts.count,
       format("{} of {} components begin outside the record of {} samples{}", parts.outside,
              parts.count, set.GetNsamp(), shifted),
       longer},
      {Warns, parts.undamped, "Zeta of a component is not above 0, so that it does not decay"},
      TooCoarse("the shortest period", fsamp / parts.highest, "Fsamp", fsamp),
  });
}
}  // namespace qarv::definition
