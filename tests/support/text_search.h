// What stands behind a mark in a text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qarv::test {

/// The texts between each `mark` and the next of the characters `ends`, in their order.
inline std::vector<std::string> TextsAfter(std::string_view text, std::string_view mark,
                                           std::string_view ends) {
  std::vector<std::string> found;
  for (auto at = text.find(mark); at != text.npos; at = text.find(mark, at)) {
    at += mark.size();
    found.emplace_back(text.substr(at, text.find_first_of(ends, at) - at));
  }
  return found;
}

}  // namespace qarv::test
