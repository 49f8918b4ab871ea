// Pages that need nothing else.
#include "html.h"

#include <fmt/format.h>

#include "text.h"

namespace qarv::command {

std::string HtmlText(const std::string& text) {
  std::string out;
  for (const char c : text) {
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

std::string HtmlPage(const std::string& title, const std::string& body) {
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width\">\n<title>{0}</title>\n<style>\n"
      "body {{ font-family: sans-serif; max-width: 80em; margin: 2em auto; color: #222; }}\n"
      "table {{ border-collapse: collapse; }}\n"
      "th, td {{ text-align: left; padding: 0.2em 1.5em 0.2em 0; border-bottom: 1px solid #ddd; "
      "font-weight: normal; vertical-align: top; }}\n"
      "thead th {{ font-weight: bold; }}\n"
      "td {{ font-variant-numeric: tabular-nums; }}\nsvg {{ width: 100%; height: auto; }}\n"
      "td img {{ width: 20em; display: block; }}\n"
      "@media print {{ body {{ margin: 0; }} svg, tr {{ break-inside: avoid; }} }}\n"
      "</style>\n</head>\n<body>\n<h1>{0}</h1>\n{1}</body>\n</html>\n",
      HtmlText(OneLine(title)), body);
}

}  // namespace qarv::command
