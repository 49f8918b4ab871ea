// Pictures by gnuplot: its strings, its terminals, and running it.
#include "pictures/gnuplot.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <vector>

#include "command_error.h"
#include "files/file_name.h"
#include "files/interruption.h"
#include "files/output_files.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;
using text::ShownText;
using text::Trimmed;

PlotFormat PlotFormatOf(const std::string& file) {
  const std::string extension = ExtensionOf(file);
  if (extension == ".png") return PlotFormat::Png;
  if (extension == ".svg") return PlotFormat::Svg;
  if (IsStream(file)) return PlotFormat::Png;
  Fail(file, "a plot ends with .png or .svg");
}

namespace {

/// Any bytes as a double-quoted gnuplot string.
std::string QuotedBytes(const std::string& text) {
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

}  // namespace

std::string Quoted(const std::string& text) { return QuotedBytes(ShownText(text)); }

std::string Terminal(PlotFormat format, int width, int height, const std::string& file) {
  const bool png = format == PlotFormat::Png;
  // The same size of letters: one terminal counts it in points, the other in pixels.
  return fmt::format(
      "set terminal {} size {},{} font \"DejaVu Sans,{}\" noenhanced\n"
      "set output {}\nset encoding utf8\n",
      png ? "pngcairo" : "svg", width, height, png ? 13 : 17, QuotedBytes(file));
}

namespace {

/// How a run of a program has ended.
struct Outcome {
  bool started;
  bool succeeded;
  std::string said;  // on standard error, or why it could not be started
};

/// The environment without the variables that change what gnuplot does.
std::vector<char*> Environment() {
  std::vector<char*> kept;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text(*variable);
    if (!text.starts_with("GNUPLOT_") && !text.starts_with("GNUTERM=")) kept.push_back(*variable);
  }
  kept.push_back(nullptr);
  return kept;
}

/// All that was written to a file.
std::string Contents(std::FILE* file) {
  std::string text;
  std::rewind(file);
  std::array<char, 512> piece{};
  while (const std::size_t n = std::fread(piece.data(), 1, piece.size(), file)) {
    text.append(piece.data(), n);
  }
  return text;
}

/// The lines of a message as one, without those that only point at a place.
std::string Joined(const std::string& message) {
  constexpr std::size_t kEnough = 500;  // bytes
  std::string out;
  std::istringstream lines(message);
  for (std::string line; std::getline(lines, line);) {
    const std::string_view text = Trimmed(line);
    if (text.empty() || text == "^") continue;
    out.append(out.empty() ? "" : "; ").append(text);
  }
  return out.substr(0, kEnough);
}

/// Has gnuplot read a script from its standard input, with its default settings.
Outcome Feed(const std::string& script) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {false, false, std::strerror(errno)};
  FilePtr reader(fdopen(ends[0], "r"), std::fclose);
  FilePtr writer(fdopen(ends[1], "w"), std::fclose);
  // In memory, because a pipe that nobody reads meanwhile could fill.
  FilePtr said(fdopen(memfd_create("gnuplot", MFD_CLOEXEC), "w+"), std::fclose);
  if (!said) return {false, false, std::strerror(errno)};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, fileno(said.get()), STDERR_FILENO);
  pid_t child = 0;
  std::string name = "gnuplot";
  std::string defaults = "-d";  // neither the user's start-up file nor the system's
  std::array<char*, 3> arguments{name.data(), defaults.data(), nullptr};
  int error = 0;
  {
    const Uninterrupted guard;  // until an interruption knows of the child
    error = posix_spawnp(&child, name.c_str(), &actions, nullptr, arguments.data(),
                         Environment().data());
    NoteChild(error == 0 ? child : 0);
  }
  posix_spawn_file_actions_destroy(&actions);
  reader.reset();  // so that a child that ends early is a broken pipe
  if (error != 0) return {};
  const bool sent = std::fwrite(script.data(), 1, script.size(), writer.get()) == script.size();
  const bool flushed = std::fclose(writer.release()) == 0;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  NoteChild(0);
  return {true, sent && flushed && WIFEXITED(status) && WEXITSTATUS(status) == 0,
          Contents(said.get())};
}

}  // namespace

void RunGnuplot(const std::string& script, const std::string& file) {
  const Outcome outcome = Feed(script);
  std::error_code error;
  if (outcome.succeeded && std::filesystem::file_size(file, error) != 0 && !error) return;
  const std::string said = Joined(outcome.said);
  throw CommandError(kBadInput, OneLine(fmt::format("gnuplot, which draws the plots, {}{}{}",
                                                    outcome.started ? "has failed" : "is missing",
                                                    said.empty() ? "" : ": ", said)));
}

}  // namespace qarv::command
