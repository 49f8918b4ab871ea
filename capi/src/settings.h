// What is asked of a spectrum and of a verdict, from JSON: the options of the command, by their
// names.
#pragma once

#include <string>
#include <string_view>

#include "assess/judgement.h"
#include "assess/spectrum.h"
#include "assess/synthesis.h"

namespace qarv::capi {

struct SpectrumRequest : assess::SpectrumSettings {
  std::string unit{};  // of the samples of a record
};

struct JudgeRequest : assess::JudgeSettings {
  std::string unit{};  // of the samples; empty for the definition's
  double begin = 0.0;  // [s] time of the first sample
};

struct SynthesisRequest : assess::SynthesisRequest {
  bool force = false;  // take what does not meet the requirement, too
};

/// @param[in] text  one JSON object; empty for the defaults
/// @throws definition::Error, with key and line
SpectrumRequest WaveSpectrumRequest(std::string_view text);
/// The same with the unit of a record.
SpectrumRequest RecordSpectrumRequest(std::string_view text);
JudgeRequest JudgeRequestOf(std::string_view text);
SynthesisRequest SynthesisRequestOf(std::string_view text);

}  // namespace qarv::capi
