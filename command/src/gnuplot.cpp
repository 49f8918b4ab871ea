// Pictures by gnuplot: its strings, its terminals, and running it.
#include "gnuplot.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>

#include "text.h"

namespace qarv::command {

PlotFormat PlotFormatOf(const std::string& file) {
  const std::string extension = std::filesystem::path(file).extension().string();
  if (extension == ".png") return PlotFormat::Png;
  if (extension == ".svg") return PlotFormat::Svg;
  throw CommandError(kBadInput, OneLine(file + ": a plot ends with .png or .svg"));
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

void RunGnuplot(const std::string& script, const std::string& file) {
  std::FILE* const gnuplot = popen("gnuplot >/dev/null 2>&1", "w");
  const bool sent =
      gnuplot != nullptr && std::fwrite(script.data(), 1, script.size(), gnuplot) == script.size();
  const bool done = gnuplot != nullptr && pclose(gnuplot) == 0;
  std::error_code error;
  if (!sent || !done || std::filesystem::file_size(file, error) == 0 || error) {
    throw CommandError(kBadInput, "gnuplot, which draws the plots, is missing or has failed");
  }
}

}  // namespace qarv::command
