// The steps that a record goes through before a verdict or a spectrum.
#include "jobs/steps.h"

#include <string_view>
#include <utility>

#include "assessment.h"
#include "command_error.h"
#include "definition/definition.h"
#include "text/text.h"

namespace qarv::command {

namespace {

std::pair<double, double> SpanOfTimes(const std::string& text, const char* option) {
  const std::vector<double> numbers = NumbersOf(text, option);
  if (numbers.size() != 2) Fail(option, "is not FROM,TO");
  return {numbers[0], numbers[1]};
}

}  // namespace

std::vector<double> NumbersOf(const std::string& text, const char* option) {
  std::vector<double> numbers;
  for (std::size_t begin = 0;;) {
    const auto end = text.find(',', begin);
    const std::string one(text::Trimmed(std::string_view(text).substr(begin, end - begin)));
    if (!text::ParseNumber(one, &numbers.emplace_back()))
      Fail(option, "'" + text + "' has no number where one belongs");
    if (end == std::string::npos) return numbers;
    begin = end + 1;
  }
}

assess::Conditioning ConditioningOf(const StepOptions& options) {
  assess::Conditioning steps;
  if (!options.trim.empty()) steps.trim = SpanOfTimes(options.trim, "--trim");
  steps.offset = !options.offset.empty();
  if (steps.offset && options.offset != "quiet")
    steps.quiet = SpanOfTimes(options.offset, "--offset");
  steps.invert = options.invert;
  steps.highPass = options.highPass;
  steps.lowPass = options.lowPass;
  if (options.filter == "bessel") {
    steps.shape = analysis::FilterShape::Bessel;
  } else if (options.filter != "butterworth") {
    Fail("--filter", "is none of butterworth, bessel");
  }
  steps.order = options.order;
  steps.cfc = options.cfc;
  return steps;
}

assess::OwnedRecord OwnedRecordOf(const InputWave& wave) {
  const auto samples = definition::SpanOf(wave.samples);
  return {{samples.begin(), samples.end()}, wave.fsamp, wave.unit, wave.begin};
}

bool TakeSteps(const assess::Conditioning& steps, const std::string& file, InputWave* wave) {
  const bool none = !steps.trim && !steps.offset && !steps.invert && !steps.highPass &&
                    !steps.lowPass && !steps.cfc;
  if (none) return false;
  assess::OwnedRecord record = OwnedRecordOf(*wave);
  const std::vector<std::string> taken =
      Assessed(file, [&] { return assess::Condition(steps, &record); });
  wave->remarks.insert(wave->remarks.end(), taken.begin(), taken.end());
  wave->samples.SetData(record.samples.size(), record.samples.data(), false);
  wave->begin = record.begin;
  return true;
}

}  // namespace qarv::command
