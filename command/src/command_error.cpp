// How the command ends because of an input or an output.
#include "command_error.h"

#include <fmt/format.h>

#include "text/text.h"

namespace qarv::command {

void Fail(const std::string& where, const std::string& what) {
  throw CommandError(kBadInput, text::OneLine(where + ": " + what));
}

void Fail(const std::string& file, const exchange::Error& error) {
  const common::uint64 line = error.GetLine();
  Fail(line != 0 ? fmt::format("{}:{}", file, line) : file, error.what());
}

}  // namespace qarv::command
