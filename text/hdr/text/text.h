// Messages and numbers as text.
#pragma once

#include <string>
#include <string_view>

namespace qarv::text {

/// What some programs begin a text of UTF-8 with.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The text without the blanks and the line end around it.
std::string_view Trimmed(std::string_view text);

/// The text with its control bytes escaped ("\x0a"), so that it stays one line.
std::string OneLine(const std::string& text);

/// The same number as people write it: 0 and what is no number without a sign.
double Plain(double v);

/// The text as pictures and pages can show it: OneLine, and what is no character of UTF-8 or of XML
/// escaped as well ("\xff").
std::string ShownText(const std::string& text);

/// The shortest text that reads back as the same double; "nan", "inf", "-inf" for what is no
/// number, "nan(0x...)" with its bits for a NaN other than the usual one.
std::string NumberText(double v);

/// The double that a text of NumberText's form, or any decimal number, names.
/// @return false, with `v` unchanged, if the text is not wholly one
bool ParseNumber(const std::string& text, double* v);

}  // namespace qarv::text
