// The command line: subcommands, options, examples, and what each of them runs.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "command_error.h"
#include "jobs/batch.h"
#include "jobs/check.h"
#include "jobs/generate.h"
#include "jobs/judge.h"
#include "jobs/report.h"
#include "jobs/show.h"
#include "jobs/srs.h"
#include "jobs/synthesize.h"

namespace qarv::command {

/// The one place where arguments and their help stand; manual page and completion are made from it.
struct CommandLine {
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Ends the command where the first argument is neither a subcommand nor an option.
  void RefuseUnknownCommand(int argc, const char* const* argv) const;

  CLI::App app;
  std::function<ExitCode()> job;  // of the subcommand that was given, once the line is parsed

  GenerateOptions generate;
  CheckOptions check;
  ShowOptions show;
  BatchOptions batch;
  ReportOptions report;
  JudgeOptions judge;
  SrsOptions srs;
  SynthesizeOptions synthesize;

 private:
  void AddGenerate();
  void AddCheck();
  void AddReport();
  void AddJudge();
  void AddSrs();
  void AddSynthesize();
  void AddShow();
  void AddBatch();
  void AddTexts();
};

}  // namespace qarv::command
