// The completion for bash, from the command line itself.
#include "arguments/bash_completion.h"

#include <fmt/format.h>

#include <algorithm>

namespace qarv::command {

namespace {

/// The names of the options of a command.
std::string OptionNames(const CLI::App& command) {
  std::string names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names += fmt::format(" --{}", name);
    for (const std::string& name : option->get_snames()) names += fmt::format(" -{}", name);
  }
  return names.empty() ? names : names.substr(1);
}

/// The lines of a case for the options whose values are one of a few.
std::string Choices(const CLI::App& command) {
  std::string out;
  for (const CLI::Option* option : command.get_options()) {
    std::string values = option->get_type_name();
    if (option->get_positional() || values.find('|') == std::string::npos) continue;
    std::replace(values.begin(), values.end(), '|', ' ');
    out += fmt::format("    \"{} --{}\") words=\"{}\" ;;\n", command.get_name(),
                       option->get_lnames().front(), values);
  }
  return out;
}

/// A pattern of the options that take a value.
std::string WithValue(const CLI::App& command) {
  std::string out;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() || option->get_items_expected_max() == 0) continue;
    for (const std::string& name : option->get_lnames()) {
      out += fmt::format("|\"{} --{}\"", command.get_name(), name);
    }
    for (const std::string& name : option->get_snames()) {
      out += fmt::format("|\"{} -{}\"", command.get_name(), name);
    }
  }
  return out;
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::string commands;
  std::string options;
  std::string choices;
  std::string withValue;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    commands += command->get_name() + " ";
    options += fmt::format("    {}) words=\"{}\" ;;\n", command->get_name(), OptionNames(*command));
    choices += Choices(*command);
    withValue += WithValue(*command);
  }
  return fmt::format(R"(# Completion of {0} for bash.
_qarv_wave() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} words=
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    COMPREPLY=($(compgen -W "{1}{2}" -- "$current"))
    return
  fi
  case "${{COMP_WORDS[1]}} ${{COMP_WORDS[COMP_CWORD - 1]}}" in
{3}    {4}) return ;; # a file name
    *) [[ $current == -* ]] || return 0 ;;
  esac
  [ -n "$words" ] || case ${{COMP_WORDS[1]}} in
{5}  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
}}
complete -o default -F _qarv_wave {0}
)",
                     app.get_name(), commands, OptionNames(app), choices,
                     withValue.empty() ? "-" : withValue.substr(1), options);
}

}  // namespace qarv::command
