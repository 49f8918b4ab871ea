// Runs the built command as a user does, and keeps what it said.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "temp_folder.h"

namespace qarv::test {

inline const std::string kExamples = QARV_SOURCE_DIR "/examples/definitions/";

struct CommandResult {
  int code;
  std::string out, err;
};

inline std::string ShellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) c == '\'' ? quoted.append("'\\''") : quoted.append(1, c);
  return quoted.append("'");
}

/// Runs qarv-wave with the arguments.
inline CommandResult RunCommand(const std::vector<std::string>& arguments) {
  const TempFolder folder;
  std::string line = ShellQuoted(QARV_WAVE_COMMAND);
  for (const std::string& argument : arguments) line.append(" ").append(ShellQuoted(argument));
  line += " >" + ShellQuoted(folder / "out") + " 2>" + ShellQuoted(folder / "err");
  const int status = std::system(line.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(folder / "out"),
          ReadText(folder / "err")};
}

}  // namespace qarv::test
