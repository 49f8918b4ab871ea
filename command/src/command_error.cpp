// How the command ends because of an input or an output.
#include "command_error.h"

#include "text/text.h"

namespace qarv::command {

void Fail(const std::string& where, const std::string& what) {
  throw CommandError(kBadInput, text::OneLine(where + ": " + what));
}

}  // namespace qarv::command
