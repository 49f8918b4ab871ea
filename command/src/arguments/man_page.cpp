// The manual page, from the command line itself.
#include "arguments/man_page.h"

#include <fmt/format.h>

#include <sstream>

namespace qarv::command {

namespace {

/// A text of roff that stands for itself.
std::string Roff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '\\':
        out += "\\e";
        break;
      case '-':
        out += "\\-";
        break;
      case '\'':
        out += "\\(aq";
        break;
      default:
        out += c;
    }
  }
  // At the beginning of a line a period would be a request.
  return out.starts_with('.') ? std::string("\\&").append(out) : out;
}

std::string Bold(const std::string& text) { return fmt::format("\\fB{}\\fR", Roff(text)); }
std::string Italic(const std::string& text) { return fmt::format("\\fI{}\\fR", Roff(text)); }

bool IsPositional(const CLI::Option& option) { return option.get_positional(); }
bool IsFlag(const CLI::Option& option) { return option.get_items_expected_max() == 0; }

/// An option with its value, as it is written.
std::string Written(const CLI::Option& option) {
  if (IsPositional(option)) return Italic(option.get_name());
  std::string names;
  for (const std::string& name : option.get_snames()) names += Bold("-" + name) + ", ";
  names += Bold("--" + option.get_lnames().front());
  return IsFlag(option) ? names : names + " " + Italic(option.get_type_name());
}

/// An option in the line of a synopsis.
std::string InSynopsis(const CLI::Option& option) {
  if (IsPositional(option)) return Italic(option.get_name());
  const std::string name = Bold("--" + option.get_lnames().front());
  if (IsFlag(option)) return fmt::format("[{}]", name);
  return fmt::format("[{} {}]", name, Italic(option.get_type_name()));
}

bool IsHelp(const CLI::App& app, const CLI::Option* option) { return option == app.get_help_ptr(); }

std::string Synopsis(const CLI::App& app, const CLI::App& command) {
  std::string line = fmt::format(".TP\n{}", Bold(app.get_name() + " " + command.get_name()));
  for (const bool positional : {true, false}) {
    for (const CLI::Option* option : command.get_options()) {
      if (IsHelp(command, option) || IsPositional(*option) != positional) continue;
      line += " " + InSynopsis(*option);
    }
  }
  return line + "\n";
}

/// The lines of a footer below its heading, indented in the source as they are in --help.
std::string Lines(const std::string& footer) {
  std::istringstream in(footer);
  std::string line;
  std::getline(in, line);  // the heading
  std::string out;
  while (std::getline(in, line))
    out += Roff(line.substr(std::min<std::size_t>(2, line.size()))) + "\n";
  return out;
}

std::string Options(const CLI::App& command) {
  std::string out;
  for (const CLI::Option* option : command.get_options()) {
    out += fmt::format(".TP\n{}\n{}\n", Written(*option), Roff(option->get_description()));
  }
  return out;
}

}  // namespace

std::string ManPage(const CLI::App& app) {
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  const std::string version = app.version();
  std::string page = fmt::format(".TH QARV-WAVE 1 \"\" \"{}\" \"User Commands\"\n", version);
  page += fmt::format(".SH NAME\n{} \\- {}\n.SH SYNOPSIS\n", Roff(app.get_name()),
                      Roff(app.get_description()));
  for (const CLI::App* command : commands) page += Synopsis(app, *command);
  page += ".SH OPTIONS\n" + Options(app) + ".SH COMMANDS\n";
  for (const CLI::App* command : commands) {
    page += fmt::format(".SS {}\n{}.\n{}.PP\nExample:\n.PP\n.EX\n{}.EE\n",
                        Roff(command->get_name()), Roff(command->get_description()),
                        Options(*command), Lines(command->get_footer()));
  }
  page += fmt::format(".SH EXIT STATUS\n.EX\n{}.EE\n", Lines(app.get_footer()));
  return page;
}

}  // namespace qarv::command
