// Pictures by gnuplot: its strings, its terminals, and running it.
#pragma once

#include <string>

namespace qarv::command {

enum class PlotFormat { Png, Svg };

/// The format that a file name ends with.  Ends the command where it is neither .png nor .svg.
PlotFormat PlotFormatOf(const std::string& file);

/// A text that is shown, as a double-quoted gnuplot string.
std::string Quoted(const std::string& text);

/// The lines that direct a picture of a size [pixel] into a file.
std::string Terminal(PlotFormat format, int width, int height, const std::string& file);

/// Runs a script that writes a file.  What a user or a system has set up for gnuplot takes no part.
/// Ends the command, with what gnuplot has said, where it is missing or does not succeed.
void RunGnuplot(const std::string& script, const std::string& file);

}  // namespace qarv::command
