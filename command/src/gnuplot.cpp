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

#include "interruption.h"
#include "output_files.h"
#include "text.h"

namespace qarv::command {

PlotFormat PlotFormatOf(const std::string& file) {
  const std::string extension = std::filesystem::path(file).extension().string();
  if (extension == ".png") return PlotFormat::Png;
  if (extension == ".svg") return PlotFormat::Svg;
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

/// A program that reads a script from its standard input and says nothing.
/// @return whether it took the whole script and succeeded
bool Feed(const char* program, const std::string& script) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  FilePtr reader(fdopen(ends[0], "r"), std::fclose);
  FilePtr writer(fdopen(ends[1], "w"), std::fclose);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
  }
  pid_t child = 0;
  std::string name = program;
  std::array<char*, 2> arguments{name.data(), nullptr};
  bool started = false;
  {
    const Uninterrupted guard;  // until an interruption knows of the child
    started = posix_spawnp(&child, program, &actions, nullptr, arguments.data(), environ) == 0;
    NoteChild(started ? child : 0);
  }
  posix_spawn_file_actions_destroy(&actions);
  reader.reset();  // so that a child that ends early is a broken pipe
  if (!started) return false;
  const bool sent = std::fwrite(script.data(), 1, script.size(), writer.get()) == script.size();
  const bool flushed = std::fclose(writer.release()) == 0;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  NoteChild(0);
  return sent && flushed && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

void RunGnuplot(const std::string& script, const std::string& file) {
  std::error_code error;
  if (!Feed("gnuplot", script) || std::filesystem::file_size(file, error) == 0 || error) {
    throw CommandError(kBadInput, "gnuplot, which draws the plots, is missing or has failed");
  }
}

}  // namespace qarv::command
