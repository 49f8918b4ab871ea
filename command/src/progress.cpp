// How far long work has come.
#include "progress.h"

#include <fmt/format.h>

#include "command_error.h"
#include "diagnostics.h"
#include "platform/platform.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

namespace {

constexpr std::chrono::milliseconds kPause{100};  // work that ends sooner says nothing

}  // namespace

Progress::Progress(std::size_t total)
    : total_(total),
      terminal_(platform::IsTerminal(platform::kError)),
      last_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (shown_) Diagnose("\r\x1b[K");
}

void Progress::Show(std::size_t done, const std::string& next) {
  const auto now = std::chrono::steady_clock::now();
  if (!terminal_ || now - last_ < kPause) return;
  last_ = now;
  shown_ = true;
  // Cut to one line of a narrow terminal, of which there is no second to erase.
  Diagnose(fmt::format("\r[{}/{}] {:.60}\x1b[K", done, total_, OneLine(next)));
}

}  // namespace qarv::command
