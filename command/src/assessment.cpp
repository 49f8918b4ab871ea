// What keeps a waveform or a record from being assessed.
#include "assessment.h"

#include "command_error.h"

namespace qarv::command {

void FailWith(const assess::Error& e, const std::string& file) {
  if (e.GetKey().empty()) Fail(file, e.what());
  // "from, to" are the options --from and --to.
  std::string options = "--" + e.GetKey();
  for (auto at = options.find(", "); at != std::string::npos; at = options.find(", ", at + 2)) {
    options.insert(at + 2, "--");
  }
  Fail(options, e.what());
}

}  // namespace qarv::command
