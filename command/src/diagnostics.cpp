// What goes to standard error.
#include "diagnostics.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "command_error.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

void FillStandardStreams() {
  // Deliberate: opened the wrong way round, so that whoever reads or writes them is told.
  constexpr std::array<int, 3> kModes{O_WRONLY, O_RDONLY, O_RDONLY};
  for (std::size_t i = 0; i < kModes.size(); ++i) {
    if (fcntl(static_cast<int>(i), F_GETFD) != -1) continue;
    // The lowest free descriptor, which is this one.
    if (open("/dev/null", kModes[i]) < 0) return;
  }
}

void Diagnose(std::string_view text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  static_cast<void>(std::fflush(stderr));
}

void Warn(const std::string& where, const std::string& what) {
  Diagnose(fmt::format("qarv-wave: warning: {}\n", OneLine(fmt::format("{}: {}", where, what))));
}

}  // namespace qarv::command
