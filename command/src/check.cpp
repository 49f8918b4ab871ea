// qarv-wave check: what is wrong with a definition, and what would work.
#include "check.h"

#include <fmt/format.h>

#include <cstdio>

#include "definition.h"
#include "output_files.h"
#include "rules/rules.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

ExitCode Check(const CheckOptions& options) {
  const Definition definition = ReadDefinition(options.definition);
  wave_def::CWaveDef def;
  const Findings findings = Examine(definition, &def);
  std::string text;
  for (const Finding& finding : findings) {
    text += fmt::format("{}: {}\n", finding.severity == Severity::Fails ? "fails" : "warning",
                        OneLine(FindingText(finding)));
  }
  if (findings.empty()) text = "clean\n";
  Print(text);
  if (findings.empty()) return kDone;
  return HasFailure(findings) ? kRefused : kWarned;
}

}  // namespace qarv::command
