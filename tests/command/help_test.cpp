// What the command says of itself: help, manual page and completion.
#include <gtest/gtest.h>

#include <sstream>

#include "run_command.h"

namespace qarv::test {
namespace {

const std::vector<std::string> kSubcommands{"generate", "check",      "report",         "judge",
                                            "srs",      "synthesize", "batch",          "show",
                                            "schema",   "man-page",   "bash-completion"};

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// A text with every `from` replaced.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

/// The long options that a help text lists.
std::vector<std::string> OptionsOf(const std::string& help) {
  std::vector<std::string> names;
  for (const std::string& line : LinesOf(help)) {
    if (!line.starts_with("  -")) continue;
    const auto begin = line.find("--");
    names.push_back(line.substr(begin, line.find(' ', begin) - begin));
  }
  return names;
}

/// Runs lines of bash in an empty folder, with the command in the path.
CommandResult Bash(const std::string& script) {
  const TempFolder folder;
  WriteText(folder / "script", script);
  const std::string path = std::filesystem::path(QARV_WAVE_COMMAND).parent_path().string();
  const std::string line = "cd " + ShellQuoted(folder.GetPath().string()) +
                           " && PATH=" + ShellQuoted(path) +
                           ":$PATH bash -e script >script.out 2>script.err";
  const int status = std::system(line.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(folder / "script.out"),
          ReadText(folder / "script.err")};
}

TEST(Help, ListsEverySubcommand) {
  const auto result = RunCommand({"--help"});
  EXPECT_EQ(result.code, 0);
  for (const std::string& name : kSubcommands) {
    EXPECT_NE(result.out.find("\n  " + name + " "), std::string::npos) << name;
  }
  EXPECT_NE(result.out.find("Exit status:\n  0  done"), std::string::npos);
}

TEST(Help, TheExampleOfEverySubcommandWorksWhenPasted) {
  for (const std::string& name : kSubcommands) {
    const auto help = RunCommand({name, "--help"});
    ASSERT_EQ(help.code, 0) << name;
    const auto example = help.out.find("Example:\n");
    ASSERT_NE(example, std::string::npos) << name;
    const std::string script = help.out.substr(example + 9);
    EXPECT_NE(script.find("qarv-wave " + name), std::string::npos) << script;
    const auto result = Bash(script);
    EXPECT_EQ(result.code, 0) << script << result.err;
    EXPECT_EQ(result.err, "") << script;
  }
}

TEST(Help, AFailedStandardOutputIsAnError) {
  const std::string line = ShellQuoted(QARV_WAVE_COMMAND) + " --help >/dev/full 2>/dev/null";
  EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 2);
}

TEST(ManPage, HasTheTextsOfTheHelp) {
  const auto page = RunCommand({"man-page"});
  ASSERT_EQ(page.code, 0);
  // As a reader sees it: without the escapes of roff.
  std::string text = page.out;
  for (const char* const font : {"\\fB", "\\fI", "\\fR"}) text = Replaced(text, font, "");
  text = Replaced(Replaced(text, "\\-", "-"), "\\(aq", "'");
  for (const std::string& name : kSubcommands) {
    EXPECT_NE(text.find("\n.SS " + name + "\n"), std::string::npos) << name;
    const std::string help = RunCommand({name, "--help"}).out;
    for (const std::string& option : OptionsOf(help)) {
      EXPECT_NE(text.find(option), std::string::npos) << name << option;
    }
    const std::string description = LinesOf(help).front();
    EXPECT_NE(text.find("\n" + description + ".\n"), std::string::npos) << name;
    for (const std::string& line : LinesOf(help.substr(help.find("Example:\n") + 9))) {
      const std::string shown = line.substr(2);
      EXPECT_NE(text.find("\n" + shown + "\n"), std::string::npos) << line;
    }
  }
  for (const char* const section : {"NAME", "SYNOPSIS", "OPTIONS", "COMMANDS", "EXIT STATUS"}) {
    EXPECT_NE(text.find(std::string("\n.SH ").append(section).append("\n")), std::string::npos);
  }
}

TEST(ManPage, IsFormattedWithoutAWarning) {
  const auto result =
      Bash("set -o pipefail; qarv-wave man-page | groff -man -Tutf8 -ww -P-c -P-b -P-u");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  std::string text = result.out;  // filled lines have spaces of several widths
  for (int i = 0; i < 6; ++i) text = Replaced(text, "  ", " ");
  EXPECT_NE(text.find("qarv-wave judge INPUT MEASURED [--fsamp HZ]"), std::string::npos) << text;
  EXPECT_NE(result.out.find("\"TolKind\": \"TOL_FIXED_4\"}}' >shock.json"), std::string::npos);
}

/// What the completion offers behind the words; the last of them is being typed.
std::string Completed(const std::vector<std::string>& words) {
  std::string script = "source <(qarv-wave bash-completion)\nCOMP_WORDS=(qarv-wave";
  for (const std::string& word : words) script.append(" ").append(ShellQuoted(word));
  script.append(")\nCOMP_CWORD=").append(std::to_string(words.size()));
  script += "\n_qarv_wave || true\necho \"${COMPREPLY[*]}\"\n";
  const auto result = Bash(script);
  EXPECT_EQ(result.code, 0) << script << result.err;
  EXPECT_EQ(result.err, "") << script;
  return result.out.substr(0, result.out.size() - 1);
}

TEST(BashCompletion, OffersSubcommands) {
  EXPECT_EQ(Completed({"ge"}), "generate");
  EXPECT_EQ(Completed({"b"}), "batch bash-completion");
  EXPECT_EQ(Completed({"--v"}), "--version");
  const std::string all = Completed({""});
  for (const std::string& name : kSubcommands) EXPECT_NE(all.find(name), std::string::npos);
}

TEST(BashCompletion, OffersTheOptionsOfASubcommand) {
  EXPECT_EQ(Completed({"srs", "def.json", "--p"}), "--per-octave --points --plot");
  EXPECT_EQ(Completed({"batch", "-"}), "--help -h --output -o --csv");
  for (const std::string& name : kSubcommands) {
    const std::string offered = std::string(" ").append(Completed({name, "--"})).append(" ");
    for (const std::string& option : OptionsOf(RunCommand({name, "--help"}).out)) {
      EXPECT_NE(offered.find(" " + option + " "), std::string::npos) << name << option;
    }
  }
}

TEST(BashCompletion, OffersTheValuesOfAChoiceAndLeavesTheRestToFileNames) {
  EXPECT_EQ(Completed({"srs", "--response", ""}),
            "acceleration displacement pseudo-velocity relative-velocity static-equivalent");
  EXPECT_EQ(Completed({"srs", "--response", "p"}), "pseudo-velocity");
  EXPECT_EQ(Completed({"generate", ""}), "");
  EXPECT_EQ(Completed({"generate", "--csv", ""}), "");
  EXPECT_EQ(Completed({"generate", "--csv", "-"}), "");
  EXPECT_EQ(Completed({"nothing", "-"}), "");
}

TEST(BashCompletion, IsTheDefaultOfFileNamesToo) {
  EXPECT_NE(
      RunCommand({"bash-completion"}).out.find("complete -o default -F _qarv_wave qarv-wave\n"),
      std::string::npos);
}

}  // namespace
}  // namespace qarv::test
