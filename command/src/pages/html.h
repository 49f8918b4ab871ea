// Pages that need nothing else: no network, no script, no second file but pictures.
#pragma once

#include <string>

namespace qarv::command {

/// The text with what would be markup, and what is no text, escaped: for elements and for
/// attributes in double quotes.
std::string HtmlText(const std::string& text);

/// A file beside the page, as the value of an attribute.
std::string HtmlLink(const std::string& file);

/// A whole page, which is read on a telephone and printed on A4 too.
/// @param[in] title  text of the title and the heading
/// @param[in] body   markup below the heading
std::string HtmlPage(const std::string& title, const std::string& body);

}  // namespace qarv::command
