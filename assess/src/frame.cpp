// Where the frame of a judged shock lies in its record.
#include "assess/frame.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "analysis/resample.h"
#include "common/numeric/index_conv.h"
#include "definition/definition.h"
#include "overlay.h"

namespace qarv::assess {

using wave_def::CWaveDef;

namespace {

/// Places of the definition's samples in a record.  [sample]
struct Places {
  double start, step;

  Places(const CWaveDef& def, const Judgement& judgement, const Record& record)
      : start((judgement.begin - record.begin) * record.fsamp),
        step(record.fsamp / definition::SampleRateOf(def)) {}
  double Of(std::size_t i) const { return start + step * static_cast<double>(i); }
};

}  // namespace

common::CDataArrayFloatT<double> OnFrame(const CWaveDef& def, const Judgement& judgement,
                                         const Record& record) {
  constexpr double kSlack = 1e-6;  // [sample] lost to rounding
  const Places places(def, judgement, record);
  const double factor = UnitFactor(def, record);
  const std::size_t N = judgement.overlay.wave.GetSize();
  const std::vector<double> values =
      analysis::SampledAt(record.samples, places.start, places.step, N);
  const double last = static_cast<double>(record.samples.size()) - 1.0;
  common::CDataArrayFloatT<double> out(N);
  for (std::size_t i = 0; i < N; ++i) {
    const bool reached = places.Of(i) >= -kSlack && places.Of(i) <= last + kSlack;
    out[i] = reached ? factor * values[i] : std::nan("");
  }
  return out;
}

Stretch CoveredBy(const CWaveDef& def, const Judgement& judgement, const Record& record) {
  const Places places(def, judgement, record);
  const double last = static_cast<double>(record.samples.size()) - 1.0;
  const auto nearest = [&](std::size_t i) {
    return static_cast<std::size_t>(common::RoundToIndex(std::clamp(places.Of(i), 0.0, last)));
  };
  return {nearest(judgement.overlay.first), nearest(judgement.overlay.last)};
}

}  // namespace qarv::assess
