// The page of several definitions.
#include "pages/index_page.h"

#include <fmt/format.h>

#include "pages/html.h"

namespace qarv::command {

namespace {

std::string Anchor(const std::string& file, const std::string& markup) {
  return fmt::format("<a href=\"{}\">{}</a>", HtmlLink(file), markup);
}

std::string CardMarkup(const Card& card) {
  const std::string name = HtmlText(card.name);
  std::string out = fmt::format("<article class=\"card\">\n<div>\n<h2>{}</h2>\n",
                                card.report.empty() ? name : Anchor(card.report, name));
  if (!card.title.empty()) out += fmt::format("<p>{}</p>\n", HtmlText(card.title));
  out += fmt::format("<p class=\"{0}\">{0}{1}{2}</p>\n", card.state,
                     card.remark.empty() ? "" : ": ", HtmlText(card.remark));
  std::string rows;
  for (const auto& [label, value] : card.values) {
    rows += fmt::format("<tr><th>{}</th><td>{}</td></tr>\n", HtmlText(label), HtmlText(value));
  }
  if (!rows.empty()) out += "<table>\n" + rows + "</table>\n";
  std::string links;
  for (const auto& [what, file] : card.data) {
    links += (links.empty() ? "" : ", ") + Anchor(file, HtmlText(what));
  }
  if (!links.empty()) out += fmt::format("<p class=\"links\">Data: {}</p>\n", links);
  out += "</div>\n";
  for (const auto& [what, file] : card.pictures) {
    const std::string image =
        fmt::format("<img src=\"{}\" alt=\"{} of {}\">", HtmlLink(file), HtmlText(what), name);
    out += fmt::format("<figure>{}</figure>\n", Anchor(file, image));
  }
  return out + "</article>\n";
}

}  // namespace

std::string IndexPage(const std::vector<Card>& cards, const std::string& table) {
  std::string body = fmt::format("<p class=\"links\">The numbers of all: {}</p>\n",
                                 Anchor(table, HtmlText(table)));
  for (const Card& card : cards) body += CardMarkup(card);
  return HtmlPage("Waveforms", body);
}

}  // namespace qarv::command
