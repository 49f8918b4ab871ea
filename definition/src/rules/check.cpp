// What is wrong with a definition: all its rules, and what its waveform shows.
#include "definition/check.h"

#include <fmt/format.h>

#include <cmath>
#include <new>
#include <optional>
#include <stdexcept>
#include <vector>

#include "json_fields.h"
#include "json_tree.h"
#include "rules/rule_table.h"
#include "rules/rules.h"
#include "text/text.h"

namespace qarv::definition {

using common::uint64;
using fmt::format;
using text::NumberText;
using wave_def::CWaveDef;
using enum Severity;

namespace {

/// The bands of all but the classical pulses.
Findings BandRules(const CWaveDef& settings) {
  const double up = settings.GetTolUpperRat();
  const double low = settings.GetTolLowerRat();
  return Broken({
      {Warns,
       up < 0.0,
       format("TolUpperRat is {:g}, so that the upper band lies below the waveform", up),
       {{"TolUpperRat", -up}}},
      {Warns,
       low > 0.0,
       format("TolLowerRat is {:g}, so that the lower band lies above the waveform", low),
       {{"TolLowerRat", -low}}},
  });
}

/// All rules but the one that has to try.
Findings FindingsWithoutTrying(const Definition& definition) {
  const double fsamp = definition.settings.GetFsamp();
  Findings findings =
      std::visit([&](const auto& set) { return BrokenRules(set, fsamp); }, definition.set);
  if (definition.GetFamily().type == CWaveDef::WAVE_TYPE_CLASSICAL) return findings;
  for (Finding& finding : BandRules(definition.settings)) findings.push_back(std::move(finding));
  return findings;
}

}  // namespace

// ---- Measured waveforms ------------------------------------------------------------------------

Findings BrokenRules(const MeasuredSet& /*set*/, double fsamp) {
  return Broken({
      {Warns, fsamp == 0.0, "Fsamp is 0, so that the samples have no times"},
      OddRate(fsamp),
  });
}

// ---- All ---------------------------------------------------------------------------------------

bool HasFailure(const Findings& findings) {
  return !findings.empty() && findings.front().severity == Severity::Fails;
}

Findings BrokenRulesOf(const Definition& definition) {
  Findings findings = FindingsWithoutTrying(definition);
  const auto* const set = std::get_if<wave_def::CWaveDefClassical>(&definition.set);
  if (set == nullptr || HasFailure(findings)) return findings;
  Findings all = CompensationFindings(*set, definition.settings.GetFsamp());
  all.insert(all.end(), findings.begin(), findings.end());
  return all;
}

namespace {

/// The first rule by which a definition that gives no waveform fails.
Finding RefusalOf(const Definition& definition) {
  const Findings findings = BrokenRulesOf(definition);
  return HasFailure(findings) ? findings.front()
                              : Finding{Fails, "the parameters give no waveform", {}};
}

/// Generates the waveform, or says why there is none.
std::optional<Finding> TryOrExplain(const Definition& definition, CWaveDef* def) {
  try {
    return TryToGenerate(definition, def) ? std::nullopt : std::optional(RefusalOf(definition));
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  return Finding{Fails, "the waveform does not fit into memory", {}};
}

}  // namespace

std::string GenerateOrExplain(const Definition& definition, CWaveDef* def) {
  const auto refusal = TryOrExplain(definition, def);
  return refusal ? FindingText(*refusal) : std::string();
}

Findings Check(const Definition& definition, CWaveDef* def) {
  CWaveDef own;
  if (def == nullptr) def = &own;
  Findings findings = FindingsWithoutTrying(definition);
  if (HasFailure(findings)) return findings;
  if (const auto refusal = TryOrExplain(definition, def)) {
    findings.insert(findings.begin(), *refusal);
    return findings;
  }
  for (Finding& finding : VelocityFindings(definition, *def)) {
    findings.push_back(std::move(finding));
  }
  for (Finding& finding : CheckWave(*def)) findings.push_back(std::move(finding));
  return findings;
}

namespace {

/// The samples of which something is wrong.
struct Marked {
  uint64 count = 0;
  uint64 first = 0;

  void Add(uint64 i) {
    if (count == 0) first = i;
    ++count;
  }
};

}  // namespace

Findings CheckWave(const CWaveDef& def) {
  const double* const wave = def.GetWave().GetData();
  const double* const upper = def.GetTolU().GetData();
  const double* const lower = def.GetTolL().GetData();
  const uint64 N = def.GetNsamp();
  // What is lost to rounding where a band touches the waveform.
  const double slack = 1e-9 * std::fabs(def.GetWave().GetAbsMax(0, 0));
  // The bands of the others are a choice, and without their ratios there are none.
  const bool banded = def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL;
  Marked odd;
  Marked crossed;
  Marked outside;
  Marked flat;
  for (uint64 i = 0; i < N; ++i) {
    if (!std::isfinite(wave[i])) odd.Add(i);
    if (upper[i] < lower[i]) {
      crossed.Add(i);
    } else if (wave[i] > upper[i] + slack || wave[i] < lower[i] - slack) {
      outside.Add(i);
    } else if (banded && upper[i] - lower[i] <= slack) {
      flat.Add(i);
    }
  }
  return Broken({
      {Warns, odd.count != 0, format("{} of {} samples are no numbers", odd.count, N)},
      {Warns, crossed.count != 0,
       format("the upper band lies below the lower one at {} of {} samples, first at sample {}",
              crossed.count, N, crossed.first)},
      {Warns, flat.count != 0,
       format(
           "the bands have no width at {} of {} samples, first at sample {}, so that no measured "
           "pulse can pass",
           flat.count, N, flat.first)},
      {Warns, outside.count != 0,
       format("the waveform leaves its own bands at {} of {} samples, first at sample {}",
              outside.count, N, outside.first)},
  });
}

std::string WhyRefused(const Definition& definition) { return FindingText(RefusalOf(definition)); }

std::string FindingText(const Finding& finding) {
  std::string text = finding.text;
  for (const Remedy& remedy : finding.remedies) {
    text += &remedy == &finding.remedies.front() ? "; works with " : " or ";
    text += remedy.key + " " + NumberText(remedy.value);
  }
  return text;
}

std::string FindingsJson(const Findings& findings) {
  JsonTree list(Json::array());
  for (const Finding& finding : findings) {
    Json& item = list.Root().emplace_back(Json::object());
    item["Severity"] = finding.severity == Severity::Fails ? "fails" : "warns";
    item["Text"] = WriteValue(text::OneLine(finding.text));
    Json& remedies = item["Remedies"] = Json::array();
    for (const Remedy& remedy : finding.remedies) {
      Json& one = remedies.emplace_back(Json::object());
      one["Key"] = remedy.key;
      one["Value"] = WriteValue(remedy.value);
    }
  }
  return list.Root().dump();
}

}  // namespace qarv::definition
