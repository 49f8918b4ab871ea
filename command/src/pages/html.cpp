// Pages that need nothing else.
#include "pages/html.h"

#include <fmt/format.h>

#include "command_error.h"
#include "text/text.h"

namespace qarv::command {

using text::ShownText;

std::string HtmlText(const std::string& text) {
  std::string out;
  for (const char c : ShownText(text)) {
    switch (c) {
      case '&':
        out.append("&amp;");
        break;
      case '<':
        out.append("&lt;");
        break;
      case '>':
        out.append("&gt;");
        break;
      case '"':
        out.append("&quot;");
        break;
      default:
        out.push_back(c);
    }
  }
  return out;
}

std::string HtmlLink(const std::string& file) {
  std::string out;
  for (const char c : file) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                       (byte >= 'a' && byte <= 'z') || byte == '-' || byte == '_' || byte == '.';
    out += plain ? std::string(1, c) : fmt::format("%{:02X}", byte);
  }
  return out;
}

namespace {

// A card is one definition of several: its numbers beside its two pictures, below one another where
// the page is narrow.  Of cards four fill a sheet.
constexpr const char* kStyle = R"(
body { font-family: "DejaVu Sans", Verdana, sans-serif; line-height: 1.4; color: #222;
  max-width: 80em; margin: 1.5em auto; padding: 0 1.25em; overflow-wrap: anywhere; }
h1 { font-size: 1.5em; line-height: 1.25; margin: 0 0 0.6em; }
h2 { font-size: 1.1em; line-height: 1.25; margin: 1.2em 0 0.4em; }
a { color: #1f4e9c; }
table { border-collapse: collapse; width: 100%; max-width: 44em; font-size: 0.95em; }
th, td { text-align: left; padding: 0.2em 0; border-bottom: 1px solid #ddd; font-weight: normal;
  vertical-align: top; }
th { padding-right: 1em; overflow-wrap: break-word; }
th.part { padding-left: 1.5em; color: #555; }
td { font-variant-numeric: tabular-nums; }
figure { margin: 0.5em 0 1em; max-width: 62em; }
img, svg { display: block; width: 100%; height: auto; }
svg g { font-family: "DejaVu Sans", Verdana, sans-serif; }
.card { display: grid; grid-template-columns: 19em 1fr 1fr; gap: 0 1.25em;
  border-top: 1px solid #bbb; padding: 0.8em 0; }
.card h2, .card p, .card figure { margin: 0 0 0.4em; }
.card .links { margin-top: 0.5em; }
.card table { font-size: 0.8em; line-height: 1.3; }
.caption { break-after: avoid; break-inside: avoid; margin: 0.5em 0 0; }
.wide { overflow-x: auto; }
.wide table { max-width: none; font-size: 0.8em; overflow-wrap: normal; }
.wide th, .wide td { padding-right: 0.8em; }
.warning { color: #9a5b00; }
.fails { color: #b00020; }
@media screen and (max-width: 72em) {
  .card { grid-template-columns: 1fr 1fr; }
  .card > div { grid-column: 1 / -1; }
}
@media screen and (max-width: 36em) {
  .card { grid-template-columns: 1fr; }
}
@page { size: A4; margin: 12mm; }
@media print {
  body { margin: 0; padding: 0 1mm; max-width: none; font-size: 9pt; line-height: 1.3; }
  a { color: inherit; text-decoration: none; }
  h1 { font-size: 12pt; margin-bottom: 2mm; }
  h2, tr, figure { break-inside: avoid; }
  h2 { break-after: avoid; }
  figure svg { max-height: 230mm; }
  .card { grid-template-columns: 58mm 1fr 1fr; gap: 0 3mm; break-inside: avoid;
    box-sizing: border-box; min-height: 64mm; padding: 1.5mm 0 0; }
  .card h2 { font-size: 9pt; }
  .card p { font-size: 7.5pt; line-height: 1.15; }
  .card h2, .card p, .card figure { margin: 0 0 0.5mm; }
  .card table { font-size: 6.5pt; line-height: 1.1; }
  .card th, .card td { padding: 0.1em 0; }
  .card img { max-height: 60mm; object-fit: contain; object-position: top; }
  .card:nth-of-type(4n):not(:last-of-type) { break-after: page; }
  .wide { overflow: visible; }
  .wide table { font-size: 6.5pt; overflow-wrap: anywhere; }
  .wide th, .wide td { padding-right: 0.4em; overflow-wrap: anywhere; }
  .links { display: none; }
}
)";

}  // namespace

std::string HtmlPage(const std::string& title, const std::string& body) {
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{0}</title>\n<style>{1}</style>\n</head>\n<body>\n<h1>{0}</h1>\n{2}</body>\n"
      "</html>\n",
      HtmlText(title), kStyle, body);
}

}  // namespace qarv::command
