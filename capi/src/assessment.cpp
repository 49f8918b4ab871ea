// What is assessed of a handle's waveform, and of records beside it.
#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "arguments.h"
#include "assess/entries.h"
#include "assess/judgement.h"
#include "assess/machine.h"
#include "assess/motion.h"
#include "assess/report.h"
#include "assess/spectrum.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "handle.h"
#include "json_tree.h"
#include "settings.h"
#include "text/text.h"

using namespace qarv;
using namespace qarv::capi;
using definition::Json;
using definition::Member;
using definition::SampleRateOf;
using definition::SpanOf;
using wave_def::CWaveDef;

namespace {

const CWaveDef& WaveWithBandsOf(qarv_wave* handle) {
  const CWaveDef& def = WaveOf(handle);
  if (!definition::HasBands(def)) throw assess::Error("", "has no samples with bands");
  return def;
}

/// The samples of a record, as the command takes them.
std::span<const double> RecordOf(const double* samples, std::size_t count, double fsamp) {
  const std::span<const double> record = Given(samples, count);
  if (!(fsamp > 0.0 && std::isfinite(fsamp))) throw assess::Error("fsamp", "is not above 0");
  if (record.empty()) throw assess::Error("", "has no samples");
  assess::RequireNumbers(record);
  return record;
}

/// A number as results have it: one that is not finite is a text.
Json Shown(double v) {
  if (!std::isfinite(v)) return text::NumberText(v);
  return text::Plain(v);
}

std::string SpectrumJson(const assess::Spectrum& spectrum, double fsamp) {
  using analysis::SrsPoint;
  definition::JsonTree tree(Json::object());
  Json& json = tree.Root();
  Member(json, "response") = spectrum.response;
  Member(json, "unit") = spectrum.unit;
  Member(json, "damping") = spectrum.zeta;
  Json& warnings = Member(json, "warnings") = Json::array();
  if (assess::IsCoarse(spectrum, fsamp)) warnings.push_back(assess::CoarseText(fsamp));
  const auto list = [&](const char* key, double factor, auto value) {
    Json& values = Member(json, key) = Json::array();
    for (const SrsPoint& point : spectrum.points) values.push_back(Shown(factor * value(point)));
  };
  const double f = spectrum.factor;
  list("frequency", 1.0, [](const SrsPoint& p) { return p.frequency; });
  list("maximax", f, [](const SrsPoint& p) { return p.Total().Maximax(); });
  list("positive", f, [](const SrsPoint& p) { return p.Total().positive; });
  list("negative", f, [](const SrsPoint& p) { return p.Total().negative; });
  list("primary_positive", f, [](const SrsPoint& p) { return p.primary.positive; });
  list("primary_negative", f, [](const SrsPoint& p) { return p.primary.negative; });
  list("residual_positive", f, [](const SrsPoint& p) { return p.residual.positive; });
  list("residual_negative", f, [](const SrsPoint& p) { return p.residual.negative; });
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::int32_t qarv_wave_motion(qarv_wave* handle, double* velocity, double* displacement,
                              std::size_t capacity) {
  return Guarded(handle, [&] {
    const CWaveDef& def = WaveOf(handle);
    if (capacity < def.GetNsamp()) {
      throw CallError{QARV_WAVE_TOO_SMALL, "the buffers are too small"};
    }
    const assess::Kinematics motion = assess::KinematicsOf(def);
    const auto copy = [](const common::CDataArrayFloatT<double>& from, double* to) {
      if (to != nullptr) std::copy(from.begin(), from.end(), to);
    };
    copy(motion.velocity, velocity);
    copy(motion.displacement, displacement);
  });
}

std::int32_t qarv_wave_report_json(qarv_wave* handle, char* buffer, std::size_t capacity,
                                   std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    out.Text(assess::AsJson(assess::ReportOf(WaveWithBandsOf(handle))));
  });
}

std::int32_t qarv_wave_machine_report_json(qarv_wave* handle, const char* machine,
                                           std::size_t length, char* buffer, std::size_t capacity,
                                           std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    const CWaveDef& def = WaveWithBandsOf(handle);
    out.Text(
        assess::AsJson(assess::ReportOf(def, assess::MachineFromJson(TextOf(machine, length)))));
  });
}

std::int32_t qarv_wave_spectrum_json(qarv_wave* handle, const char* settings, std::size_t length,
                                     char* buffer, std::size_t capacity, std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    const CWaveDef& def = WaveOf(handle);
    const SpectrumRequest request = WaveSpectrumRequest(TextOf(settings, length));
    const double fsamp = SampleRateOf(def);
    const assess::Record record{SpanOf(def.GetWave()), fsamp, def.GetUnitAmpl().GetText()};
    out.Text(SpectrumJson(assess::SpectrumOf(record, request), fsamp));
  });
}

std::int32_t qarv_wave_record_spectrum_json(qarv_wave* handle, const double* samples,
                                            std::size_t count, double fsamp, const char* settings,
                                            std::size_t length, char* buffer, std::size_t capacity,
                                            std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    const SpectrumRequest request = RecordSpectrumRequest(TextOf(settings, length));
    const assess::Record record{RecordOf(samples, count, fsamp), fsamp, request.unit};
    out.Text(SpectrumJson(assess::SpectrumOf(record, request), fsamp));
  });
}

std::int32_t qarv_wave_judge_json(qarv_wave* handle, const double* samples, std::size_t count,
                                  double fsamp, const char* settings, std::size_t length,
                                  char* buffer, std::size_t capacity, std::size_t* needed) {
  return Guarded(handle, [&] {
    const Output out(buffer, capacity, needed);
    const CWaveDef& def = WaveWithBandsOf(handle);
    const JudgeRequest request = JudgeRequestOf(TextOf(settings, length));
    const assess::Record record{RecordOf(samples, count, fsamp), fsamp, request.unit,
                                request.begin};
    assess::Judgement judgement = assess::Judge(def, record, request);
    std::vector<std::string> warnings;
    for (const definition::Finding& finding : definition::CheckWave(def)) {
      warnings.push_back(text::OneLine(finding.text));
    }
    warnings.insert(warnings.end(), judgement.warnings.begin(), judgement.warnings.end());
    assess::Entries entries = std::move(judgement.entries);
    entries.push_back({"warnings", "warnings", std::move(warnings), ""});
    out.Text(assess::AsJson(entries));
  });
}
