// What is done to a record before it is judged.
#include "assess/conditioning.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "analysis/events.h"
#include "analysis/shock.h"
#include "common/numeric/index_conv.h"

namespace qarv::assess {

namespace {

/// The samples of a stretch of time.
struct Part {
  std::size_t first, count;
};

Part PartOf(const OwnedRecord& record, const std::pair<double, double>& span, const char* key) {
  constexpr double kSlack = 1e-6;  // [sample] lost to rounding
  const auto n = static_cast<double>(record.samples.size());
  const double first = std::ceil((span.first - record.begin) * record.fsamp - kSlack);
  const double last = std::floor((span.second - record.begin) * record.fsamp + kSlack);
  if (!(first >= 0.0 && first <= last && last < n)) {
    throw Error(key,
                fmt::format("{:g} to {:g} s is not within the record, {:g} to {:g} s", span.first,
                            span.second, record.begin, record.begin + (n - 1.0) / record.fsamp));
  }
  const auto begin = static_cast<std::size_t>(common::TruncToIndex(first));
  return {begin, static_cast<std::size_t>(common::TruncToIndex(last)) - begin + 1};
}

double MeanOf(std::span<const double> x) {
  double sum = 0.0;
  for (const double v : x) sum += v;
  return sum / static_cast<double>(x.size());
}

std::string UnitOf(const OwnedRecord& record) {
  return record.unit.empty() ? "" : " " + record.unit;
}

/// What lies far from everything that passes a quarter of the peak.
Part QuietPartOf(const OwnedRecord& record) {
  const double peak = std::fabs(analysis::PeakOf(record.samples).value);
  const auto shocks = analysis::FindShocks(record.samples, 0.25 * peak, 0);
  if (shocks.empty()) throw Error("offset", "the record has no shock, and no quiet part beside it");
  const std::size_t margin = shocks.back().last - shocks.front().first + 1;
  const auto quiet = analysis::QuietOf(record.samples, shocks,
                                       shocks.size() == 1 ? margin : record.samples.size() / 50);
  if (quiet.count == 0) throw Error("offset", "the record has no quiet part: FROM,TO names one");
  return {quiet.first, quiet.count};
}

std::string TakeOffset(const Conditioning& steps, OwnedRecord* record) {
  const Part part = steps.quiet ? PartOf(*record, *steps.quiet, "offset") : QuietPartOf(*record);
  const double mean = MeanOf(std::span(record->samples).subspan(part.first, part.count));
  for (double& v : record->samples) v -= mean;
  const double from = record->begin + static_cast<double>(part.first) / record->fsamp;
  const double to = from + static_cast<double>(part.count - 1) / record->fsamp;
  return fmt::format("offset of {:.6g}{} taken off, the mean from {:.6g} to {:.6g} s", mean,
                     UnitOf(*record), from, to);
}

std::string Filter(const analysis::FilterSections& filter, const char* key, const std::string& what,
                   OwnedRecord* record) {
  if (filter.empty()) {
    throw Error(key, fmt::format("there is no such filter at {:g} Hz of sampling, of order 1 to {}",
                                 record->fsamp, analysis::kMostFilterOrder));
  }
  record->samples = analysis::ZeroPhase(record->samples, filter);
  return what + ", forward and backward";
}

}  // namespace

std::vector<std::string> Condition(const Conditioning& steps, OwnedRecord* record) {
  std::vector<std::string> taken;
  if (steps.trim) {
    const Part part = PartOf(*record, *steps.trim, "trim");
    const auto first = record->samples.begin() + static_cast<std::ptrdiff_t>(part.first);
    record->samples = {first, first + static_cast<std::ptrdiff_t>(part.count)};
    record->begin += static_cast<double>(part.first) / record->fsamp;
    taken.push_back(
        fmt::format("trimmed to {:.6g} to {:.6g} s", steps.trim->first, steps.trim->second));
  }
  if (steps.offset) taken.push_back(TakeOffset(steps, record));
  if (steps.invert) {
    for (double& v : record->samples) v = -v;
    taken.push_back("inverted");
  }
  const bool bessel = steps.shape == analysis::FilterShape::Bessel;
  const auto pass = [&](analysis::FilterPass side, double cutoff, const char* key) {
    const std::string what = fmt::format("{} of {:g} Hz ({}, order {})", key, cutoff,
                                         bessel ? "Bessel" : "Butterworth", steps.order);
    taken.push_back(
        Filter(analysis::DesignFilter(steps.shape, side, steps.order, cutoff, record->fsamp), key,
               what, record));
  };
  if (steps.highPass) pass(analysis::FilterPass::High, *steps.highPass, "highpass");
  if (steps.lowPass) pass(analysis::FilterPass::Low, *steps.lowPass, "lowpass");
  if (steps.cfc) {
    taken.push_back(Filter(analysis::CfcFilter(*steps.cfc, record->fsamp), "cfc",
                           fmt::format("channel frequency class {:g}", *steps.cfc), record));
  }
  return taken;
}

}  // namespace qarv::assess
