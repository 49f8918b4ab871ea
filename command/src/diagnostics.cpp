// What goes to standard error.
#include "diagnostics.h"

#include <fmt/format.h>

#include <cstdio>

#include "command_error.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

void Diagnose(std::string_view text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  static_cast<void>(std::fflush(stderr));
}

void Warn(const std::string& where, const std::string& what) {
  Diagnose(fmt::format("qarv-wave: warning: {}\n", OneLine(fmt::format("{}: {}", where, what))));
}

}  // namespace qarv::command
