// Pages that need nothing else: no network, no script, no second file but pictures.
#pragma once

#include <string>

namespace qarv::command {

/// The text with what would be markup escaped, for elements and for attributes in double quotes.
std::string HtmlText(const std::string& text);

/// A whole page.
/// @param[in] title  text of the title and the heading
/// @param[in] body   markup below the heading
std::string HtmlPage(const std::string& title, const std::string& body);

}  // namespace qarv::command
