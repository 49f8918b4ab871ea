// What has been found of a shock: its spectra, as text, as CSV and as JSON.
#include "jobs/spectra.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>

#include "text/text.h"

namespace qarv::command {

using analysis::SrsPoint;
using assess::Spectrum;
using text::Plain;
using Json = nlohmann::ordered_json;

namespace {

/// One of the responses of a line.
struct ResponseColumn {
  const char* name;
  double (*value)(const SrsPoint& point);
};

constexpr std::array<ResponseColumn, 7> kResponseColumns{{
    {"maximax", [](const SrsPoint& p) { return p.Total().Maximax(); }},
    {"positive", [](const SrsPoint& p) { return p.Total().positive; }},
    {"negative", [](const SrsPoint& p) { return p.Total().negative; }},
    {"primary_positive", [](const SrsPoint& p) { return p.primary.positive; }},
    {"primary_negative", [](const SrsPoint& p) { return p.primary.negative; }},
    {"residual_positive", [](const SrsPoint& p) { return p.residual.positive; }},
    {"residual_negative", [](const SrsPoint& p) { return p.residual.negative; }},
}};

/// The largest response with its unit, and where it is.
std::array<std::string, 2> LargestOf(const Spectrum& spectrum) {
  const auto& points = spectrum.points;
  const auto largest =
      std::max_element(points.begin(), points.end(), [](const SrsPoint& a, const SrsPoint& b) {
        return a.Total().Maximax() < b.Total().Maximax();
      });
  const std::string unit = spectrum.unit.empty() ? "" : " " + spectrum.unit;
  return {fmt::format("{:.6g}{}", Plain(spectrum.factor * largest->Total().Maximax()), unit),
          fmt::format("{:.6g} Hz", largest->frequency)};
}

/// A row for each quality factor, below their titles.
std::string TableOf(const std::vector<Spectrum>& spectra) {
  std::string text = fmt::format("{:>8}  {:>10}  {:>18}  at\n", "Q", "damping", "largest");
  for (const Spectrum& spectrum : spectra) {
    const auto [largest, place] = LargestOf(spectrum);
    text += fmt::format("{:>8}  {:>10.4g}  {:>18}  {}\n", QText(spectrum.zeta), spectrum.zeta,
                        largest, place);
  }
  return text;
}

}  // namespace

nlohmann::ordered_json NumberJson(double v) {
  if (!std::isfinite(v)) return text::NumberText(v);
  return Plain(v);
}

std::string QText(double zeta) { return fmt::format("{:.4g}", 0.5 / zeta); }

std::string TextOf(const SpectraRun& run) {
  const Spectrum& first = run.spectra.front();
  const bool one = run.spectra.size() == 1;
  std::string text = fmt::format("response:  {}\n", first.response);
  if (one) text += fmt::format("damping:   {:.4g} (Q {})\n", first.zeta, QText(first.zeta));
  text += fmt::format("lines:     {} from {:.6g} to {:.6g} Hz\n", first.points.size(),
                      first.points.front().frequency, first.points.back().frequency);
  const auto [largest, place] = LargestOf(first);
  text += one ? fmt::format("largest:   {} at {}\n", largest, place) : TableOf(run.spectra);
  for (const std::string& remark : run.remarks) text += fmt::format("record:    {}\n", remark);
  if (!run.verdict.empty()) text += assess::AsText(run.verdict);
  return text;
}

std::string CsvOf(const SpectraRun& run) {
  fmt::memory_buffer text;
  const auto out = std::back_inserter(text);
  fmt::format_to(out, "frequency");
  for (const Spectrum& spectrum : run.spectra) {
    const std::string suffix = run.spectra.size() == 1 ? "" : "_q" + QText(spectrum.zeta);
    for (const ResponseColumn& column : kResponseColumns)
      fmt::format_to(out, ",{}{}", column.name, suffix);
  }
  text.push_back('\n');
  for (std::size_t i = 0; i < run.spectra.front().points.size(); ++i) {
    fmt::format_to(out, "{}", run.spectra.front().points[i].frequency);
    for (const Spectrum& spectrum : run.spectra) {
      for (const ResponseColumn& column : kResponseColumns) {
        fmt::format_to(out, ",{}", Plain(spectrum.factor * column.value(spectrum.points[i])));
      }
    }
    text.push_back('\n');
  }
  return fmt::to_string(text);
}

std::string JsonOf(const SpectraRun& run) {
  const Spectrum& first = run.spectra.front();
  Json json;
  json["response"] = first.response;
  json["unit"] = first.unit;
  json["upsampling"] = run.upsampling;
  json["record"] = run.remarks;
  json["warnings"] = run.warnings;
  if (!run.verdict.empty()) json["requirement"] = Json::parse(assess::AsJson(run.verdict));
  for (const SrsPoint& point : first.points) json["frequency"].push_back(point.frequency);
  for (const Spectrum& spectrum : run.spectra) {
    Json& one = json["spectra"].emplace_back();
    one["q"] = NumberJson(0.5 / spectrum.zeta);
    one["damping"] = spectrum.zeta;
    for (const ResponseColumn& column : kResponseColumns) {
      Json& values = one[column.name] = Json::array();
      for (const SrsPoint& point : spectrum.points) {
        values.push_back(NumberJson(spectrum.factor * column.value(point)));
      }
    }
  }
  return json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace qarv::command
