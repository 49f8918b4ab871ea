// Pictures by gnuplot: its strings, its terminals, and running it.
#include "pictures/gnuplot.h"

#include <fmt/format.h>

#include <filesystem>
#include <sstream>
#include <string_view>

#include "command_error.h"
#include "files/file_name.h"
#include "platform/platform.h"
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

}  // namespace

void RunGnuplot(const std::string& script, const std::string& file) {
  const platform::Outcome outcome = platform::FeedGnuplot(script);
  std::error_code error;
  if (outcome.succeeded && std::filesystem::file_size(file, error) != 0 && !error) return;
  const std::string said = Joined(outcome.said);
  throw CommandError(kBadInput, OneLine(fmt::format("gnuplot, which draws the plots, {}{}{}",
                                                    outcome.started ? "has failed" : "is missing",
                                                    said.empty() ? "" : ": ", said)));
}

}  // namespace qarv::command
