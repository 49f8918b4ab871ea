// The page of a waveform.
#include "pages/report_page.h"

#include <fmt/format.h>

#include <vector>

#include "assess/report.h"
#include "definition/title.h"
#include "files/input_file.h"
#include "pages/html.h"
#include "pictures/plot.h"
#include "pictures/spectrum_plot.h"
#include "text/text.h"

namespace qarv::command {

using assess::Entries;
using assess::Entry;
using assess::ReportOf;
using assess::Spectrum;
using assess::ValueText;
using definition::TitleOf;
using text::Trimmed;
using wave_def::CWaveDef;

namespace {

/// A picture as an element of a page.
/// @param[in] draw  draws it as .svg into a file
template <class Draw>
std::string Figure(const std::string& beside, OutputFiles* files, Draw draw) {
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

/// The numbers as a table.
std::string Table(const Entries& entries) {
  std::string rows;
  for (const Entry& entry : entries) {
    const bool part = entry.label.starts_with("  ");  // of the line above
    rows += fmt::format("<tr><th{}>{}</th><td>{}</td></tr>\n", part ? " class=\"part\"" : "",
                        HtmlText(std::string(Trimmed(entry.label))), HtmlText(ValueText(entry)));
  }
  return "<table>\n" + rows + "</table>\n";
}

}  // namespace

void WriteReportPage(const CWaveDef& def, const std::optional<Spectrum>& spectrum,
                     const std::string& name, const std::string& target, OutputFiles* files) {
  const std::string page = files->Reserve(target);
  std::string body = "<h2>Waveform and motion</h2>\n";
  body += Figure(target, files, [&](const std::string& file) {
    PlotWave(def, "", Motion::Shown, PlotFormat::Svg, file);
  });
  if (spectrum) {
    body += fmt::format("<h2>{}</h2>\n", HtmlText(SpectrumTitle(*spectrum)));
    body += Figure(target, files, [&](const std::string& file) {
      PlotSpectrum(*spectrum, "", Axes::Plain, PlotFormat::Svg, file);
    });
  }
  body += "<h2>Numbers</h2>\n" + Table(ReportOf(def));
  WriteFile(page, HtmlPage(name + ": " + TitleOf(def), body));
}

}  // namespace qarv::command
