// What pages are made of.
#include "pages/parts.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "files/input_file.h"
#include "pages/html.h"
#include "text/text.h"

namespace qarv::command {

using assess::Entries;
using assess::Entry;
using assess::ValueText;
using text::Trimmed;

std::string Figure(const std::string& beside, OutputFiles* files,
                   const std::function<void(const std::string& file)>& draw) {
  const std::string file = files->Scratch(beside);
  draw(file);
  const std::vector<unsigned char> bytes = ReadFile(file);
  std::string svg(bytes.begin(), bytes.end());
  svg.erase(0, svg.find("<svg"));
  // What stands in every picture must not stand twice in the page: the names of parts, and the
  // symbols of points, of which there are none.
  const auto eraseAll = [&](const std::string& first, const std::string& last) {
    for (auto begin = svg.find(first); begin != std::string::npos; begin = svg.find(first, begin)) {
      const auto end = svg.find(last, begin + first.size());
      if (end == std::string::npos) return;
      svg.erase(begin, end + last.size() - begin);
    }
  };
  eraseAll("<defs>", "</defs>");
  eraseAll("<title>", "</title>");
  eraseAll(" id=\"gnuplot_", "\"");
  return "<figure>\n" + svg + "</figure>\n";
}

std::string Table(const Entries& entries) {
  std::string rows;
  for (const Entry& entry : entries) {
    const bool part = entry.label.starts_with("  ");  // of the line above
    rows += fmt::format("<tr><th{}>{}</th><td>{}</td></tr>\n", part ? " class=\"part\"" : "",
                        HtmlText(std::string(Trimmed(entry.label))), HtmlText(ValueText(entry)));
  }
  return "<table>\n" + rows + "</table>\n";
}

}  // namespace qarv::command
