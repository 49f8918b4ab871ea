// The exit codes of the command, and the one error type that ends it.
#pragma once

#include <stdexcept>
#include <string>

#include "exchange/error.h"

namespace qarv::command {

/// The exit codes of the command.
enum ExitCode { kDone = 0, kRefused = 1, kBadInput = 2, kWarned = 3 };

/// Ends the command with one line on standard error.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode code, const std::string& line) : std::runtime_error(line), code_(code) {}
  ExitCode GetCode() const { return code_; }

 private:
  ExitCode code_;
};

/// Ends the command because of an input or an output: "WHERE: what", as one line.
[[noreturn]] void Fail(const std::string& where, const std::string& what);

/// The same for what is wrong with a sample file: "FILE: what", or with its line "FILE:LINE: what".
[[noreturn]] void Fail(const std::string& file, const exchange::Error& error);

}  // namespace qarv::command
