// The command qarv-wave: its exit codes, its one-line errors.
#include <fmt/format.h>

#include <new>

#include "arguments/command_line.h"
#include "command_error.h"
#include "diagnostics.h"
#include "files/interruption.h"
#include "files/output_files.h"
#include "platform/platform.h"
#include "text/text.h"

namespace {

using namespace qarv::command;

int Run(int argc, char** argv) {
  CommandLine line;
  line.RefuseUnknownCommand(argc, argv);
  try {
    line.app.parse(argc, argv);
  } catch (const CLI::Success& e) {  // --help, --version
    const int code = line.app.exit(e);
    Print("");
    return code;
  } catch (const CLI::ParseError& e) {
    throw CommandError(kBadInput, qarv::text::OneLine(e.what()));
  }
  return line.job();
}

}  // namespace

int main(int argc, char** argv) {
  platform::PrepareStandardStreams();
  platform::FailWhereNobodyReads();
  CleanUpWhenInterrupted();
  try {
    return Run(argc, argv);
  } catch (const CommandError& e) {
    Diagnose(fmt::format("qarv-wave: {}\n", e.what()));
    return e.GetCode();
  } catch (const std::bad_alloc&) {
    Diagnose("qarv-wave: out of memory\n");
  } catch (const std::exception& e) {
    Diagnose(fmt::format("qarv-wave: {}\n", qarv::text::OneLine(e.what())));
  }
  return kBadInput;
}
