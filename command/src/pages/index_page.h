// The page of several definitions: a card for each, with its numbers, pictures and files.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace qarv::command {

/// A text and what it stands beside or links to.
using Labelled = std::pair<std::string, std::string>;

/// What the page says of one definition.
struct Card {
  std::string name;
  std::string title;             // what the waveform is; empty if there is none
  std::string state;             // "clean", "warning" or "fails"
  std::string remark;            // what is wrong; empty if nothing is
  std::vector<Labelled> values;  // label and value
  // Files beside the page; empty if there are none.
  std::string report;
  std::vector<Labelled> pictures;  // what it shows, and the file
  std::vector<Labelled> data;      // what it is, and the file
};

/// @param[in] table  file beside the page with the numbers of all
std::string IndexPage(const std::vector<Card>& cards, const std::string& table);

}  // namespace qarv::command
