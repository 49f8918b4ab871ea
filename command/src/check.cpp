// qarv-wave check: what is wrong with a definition, and what would work.
#include "check.h"

#include <fmt/format.h>

#include <cstdio>

#include "definition.h"
#include "output_files.h"
#include "rules/rules.h"

namespace qarv::command {

namespace {

/// The broken rules of a definition and, where it does not fail by them, what its waveform shows.
Findings AllFindings(const Definition& definition) {
  Findings findings = FindingsOf(definition);
  if (!findings.empty() && findings.front().severity == Severity::Fails) return findings;
  wave_def::CWaveDef def;
  const std::string reason = TryToDefine(definition, &def);
  if (!reason.empty()) {
    findings.insert(findings.begin(), {Severity::Fails, reason, {}});
    return findings;
  }
  for (Finding& finding : FindingsOf(def)) findings.push_back(std::move(finding));
  return findings;
}

}  // namespace

ExitCode Check(const CheckOptions& options) {
  const Definition definition = ReadDefinition(options.definition);
  const Findings findings = AllFindings(definition);
  std::string text;
  for (const Finding& finding : findings) {
    text += fmt::format("{}: {}\n", finding.severity == Severity::Fails ? "fails" : "warning",
                        OneLine(FindingText(finding)));
  }
  if (findings.empty()) text = "clean\n";
  Print(text);
  if (findings.empty()) return kDone;
  return findings.front().severity == Severity::Fails ? kRefused : kWarned;
}

}  // namespace qarv::command
