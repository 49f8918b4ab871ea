// The manual page, from the command line itself.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace qarv::command {

/// The manual page of a command with subcommands, in the man macros of roff: their options and
/// examples are those of --help, and the footer of the command is its exit status.
std::string ManPage(const CLI::App& app);

}  // namespace qarv::command
