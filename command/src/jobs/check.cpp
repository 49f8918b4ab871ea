// qarv-wave check: what is wrong with a definition, and what would work.
#include "jobs/check.h"

#include <fmt/format.h>

#include <cstdio>

#include "definition/check.h"
#include "files/definition_file.h"
#include "files/output_files.h"
#include "text/text.h"

namespace qarv::command {

using definition::Definition;
using definition::Finding;
using definition::Findings;
using definition::FindingText;
using definition::HasFailure;
using text::OneLine;

ExitCode Check(const CheckOptions& options) {
  const Definition definition = ReadDefinition(options.definition);
  const Findings findings = definition::Check(definition);
  std::string text;
  for (const Finding& finding : findings) {
    text += fmt::format("{}: {}\n",
                        finding.severity == definition::Severity::Fails ? "fails" : "warning",
                        OneLine(FindingText(finding)));
  }
  if (findings.empty()) text = "clean\n";
  Print(text);
  if (findings.empty()) return kDone;
  return HasFailure(findings) ? kRefused : kWarned;
}

}  // namespace qarv::command
