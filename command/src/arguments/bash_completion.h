// The completion for bash, from the command line itself.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace qarv::command {

/// A script for bash that completes subcommands, options, and values of which there is a choice;
/// everything else is completed as a file name.
std::string BashCompletion(const CLI::App& app);

}  // namespace qarv::command
