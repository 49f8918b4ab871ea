// The page of a waveform.
#include "pages/report_page.h"

#include <fmt/format.h>

#include "assess/report.h"
#include "definition/title.h"
#include "pages/html.h"
#include "pages/parts.h"
#include "pictures/plot.h"
#include "pictures/spectrum_plot.h"

namespace qarv::command {

using assess::ReportOf;
using assess::Spectrum;
using definition::TitleOf;
using wave_def::CWaveDef;

void WriteReportPage(const CWaveDef& def, const std::optional<Spectrum>& spectrum,
                     const std::optional<assess::Machine>& machine, const std::string& name,
                     const std::string& target, OutputFiles* files) {
  const std::string page = files->Reserve(target);
  std::string body = "<h2>Waveform and motion</h2>\n";
  body += Figure(target, files, [&](const std::string& file) {
    PlotWave(def, "", Motion::Shown, PlotFormat::Svg, file, machine);
  });
  if (spectrum) {
    body += fmt::format("<h2>{}</h2>\n", HtmlText(SpectrumTitle(*spectrum)));
    body += Figure(target, files, [&](const std::string& file) {
      PlotSpectrum(*spectrum, "", Axes::Plain, PlotFormat::Svg, file);
    });
  }
  body += "<h2>Numbers</h2>\n" + Table(ReportOf(def, machine));
  WriteFile(page, HtmlPage(name + ": " + TitleOf(def), body));
}

}  // namespace qarv::command
