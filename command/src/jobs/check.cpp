// qarv-wave check: what is wrong with a definition, and what would work.
#include "jobs/check.h"

#include <fmt/format.h>

#include <optional>

#include "assess/machine.h"
#include "assessment.h"
#include "definition/check.h"
#include "files/definition_file.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
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
  const std::optional<assess::Machine> machine = LoadMachine(options.machine);
  wave_def::CWaveDef def;
  Findings findings = definition::Check(definition, &def);
  if (machine && !HasFailure(findings)) {
    const auto passed = Assessed(options.definition, [&] {
      return assess::MachineWarnings(assess::CompareWithMachine(def, *machine));
    });
    for (const std::string& text : passed) {
      findings.push_back({definition::Severity::Warns, text, {}});
    }
  }
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
