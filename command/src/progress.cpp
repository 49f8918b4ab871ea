// How far long work has come.
#include "progress.h"

#include <fmt/format.h>

#include "command_error.h"
#include "diagnostics.h"
#include "platform/platform.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

bool Pace::IsDue(Time now) {
  if (now < next_) return false;
  next_ = now + Progress::kPause;
  return true;
}

Progress::Progress(std::size_t total, std::chrono::milliseconds silence)
    : total_(total),
      terminal_(platform::IsTerminal(platform::kError)),
      pace_(silence, std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (shown_) Diagnose("\r\x1b[K");
}

void Progress::Show(std::size_t done, const std::string& next) {
  if (!terminal_ || !pace_.IsDue(std::chrono::steady_clock::now())) return;
  shown_ = true;
  // Cut to one line of a narrow terminal, of which there is no second to erase.
  Diagnose(fmt::format("\r[{}/{}] {:.60}\x1b[K", done, total_, OneLine(next)));
}

}  // namespace qarv::command
