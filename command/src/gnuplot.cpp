// Pictures by gnuplot: its strings, its terminals, and running it.
#include "gnuplot.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <span>
#include <sstream>
#include <vector>

#include "file_name.h"
#include "interruption.h"
#include "output_files.h"
#include "text.h"

namespace qarv::command {

PlotFormat PlotFormatOf(const std::string& file) {
  const std::string extension = ExtensionOf(file);
  if (extension == ".png") return PlotFormat::Png;
  if (extension == ".svg") return PlotFormat::Svg;
  if (IsStream(file)) return PlotFormat::Png;
  Fail(file, "a plot ends with .png or .svg");
}

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    // Bytes of UTF-8 pass; what could end or change the string goes by its number.
    const bool plain =
        byte >= 0x20 && byte != 0x7F && c != '"' && c != '\\' && c != '`' && c != '$';
    out += plain ? std::string(1, c) : fmt::format("\\{:03o}", byte);
  }
  return out + '"';
}

std::string Terminal(PlotFormat format, int width, int height, const std::string& file) {
  return fmt::format(
      "set terminal {} size {},{} font \"DejaVu Sans,11\" noenhanced\n"
      "set output {}\nset encoding utf8\n",
      format == PlotFormat::Png ? "pngcairo" : "svg", width, height, Quoted(file));
}

namespace {

std::string WholeText(std::FILE* file) {
  std::rewind(file);
  std::string text(4096, '\0');  // as much as is worth reading
  text.resize(std::fread(text.data(), 1, text.size(), file));
  return text;
}

/// How a program that reads a script has ended.
struct Outcome {
  bool started;
  bool succeeded;     // and took the whole script
  std::string error;  // what it wrote to standard error
};

/// Runs a program with a script as its standard input.
Outcome Feed(std::span<const char* const> command, const std::string& script) {
  std::array<int, 2> ends{};
  // A file, because a pipe that nobody reads yet would hold the program up.
  const FilePtr said(std::tmpfile(), std::fclose);
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  FilePtr reader(fdopen(ends[0], "r"), std::fclose);
  FilePtr writer(fdopen(ends[1], "w"), std::fclose);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
  }
  if (said) posix_spawn_file_actions_adddup2(&actions, fileno(said.get()), STDERR_FILENO);
  pid_t child = 0;
  std::vector<std::string> words(command.begin(), command.end());
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  bool started = false;
  {
    const Uninterrupted guard;  // until an interruption knows of the child
    started = posix_spawnp(&child, words.front().c_str(), &actions, nullptr, arguments.data(),
                           environ) == 0;
    NoteChild(started ? child : 0);
  }
  posix_spawn_file_actions_destroy(&actions);
  reader.reset();  // so that a child that ends early is a broken pipe
  if (!started) return {};
  const bool sent = std::fwrite(script.data(), 1, script.size(), writer.get()) == script.size();
  const bool flushed = std::fclose(writer.release()) == 0;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  NoteChild(0);
  return {true, sent && flushed && WIFEXITED(status) && WEXITSTATUS(status) == 0,
          said ? WholeText(said.get()) : ""};
}

/// The line in which gnuplot says what is wrong: the last that is not empty.
std::string ErrorLine(const std::string& text) {
  std::istringstream lines(text);
  std::string line;
  std::string last;
  while (std::getline(lines, line)) {
    if (!Trimmed(line).empty()) last = Trimmed(line);
  }
  return last;
}

}  // namespace

void RunGnuplot(const std::string& script, const std::string& file) {
  // Without the settings of whoever runs it: the picture is the same for everybody.
  constexpr std::array<const char*, 2> kGnuplot{"gnuplot", "--default-settings"};
  const Outcome outcome = Feed(kGnuplot, script);
  std::error_code error;
  const bool drawn = std::filesystem::file_size(file, error) != 0 && !error;
  if (outcome.succeeded && drawn) return;
  const std::string said = ErrorLine(outcome.error);
  throw CommandError(kBadInput, OneLine(fmt::format("gnuplot, which draws the plots, {}{}{}",
                                                    outcome.started ? "has failed" : "is missing",
                                                    said.empty() ? "" : ": ", said)));
}

}  // namespace qarv::command
