// qarv-wave srs --envelope: what the spectra of several records have in common.
#include "jobs/envelope.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "assess/ensemble.h"
#include "diagnostics.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "jobs/spectra.h"
#include "jobs/spectrum_of.h"
#include "pictures/spectrum_plot.h"
#include "text/text.h"

namespace qarv::command {

using assess::Ensemble;
using assess::Spectrum;
using text::Plain;
using Json = nlohmann::ordered_json;

namespace {

/// A record of the ensemble: a channel of a file.
struct Member {
  std::string file;
  InputWave wave;
  int upsampling = 1;
  std::vector<std::string> warnings{};

  std::string GetName() const {
    const std::string name = std::filesystem::path(file).filename().string();
    return wave.channel.empty() ? name : name + " " + wave.channel;
  }
};

std::vector<Member> LoadMembers(const SrsOptions& options) {
  const assess::Conditioning steps = ConditioningOf(options.steps);
  std::vector<Member> members;
  for (const std::string& file : options.inputs) {
    for (InputWave& wave : LoadInputWaves(file, options.choice)) {
      TakeSteps(steps, file, &wave);
      members.push_back({file, std::move(wave)});
    }
  }
  const auto named = std::find_if(members.begin(), members.end(),
                                  [](const Member& m) { return !m.wave.unit.empty(); });
  if (named == members.end()) return members;
  const std::string unit = named->wave.unit;
  for (Member& member : members) {
    if (member.wave.unit.empty()) {
      member.wave.remarks.push_back("has no unit, taken for " + unit);
    }
    ConvertTo(unit, "that of the others", member.file, &member.wave);
  }
  return members;
}

/// The highest line that all records hold, where nothing else is said.
double UsualHighest(const std::vector<Member>& members) {
  double fsamp = HUGE_VAL;
  for (const Member& member : members) fsamp = std::min(fsamp, member.wave.fsamp);
  return fsamp / assess::kSamplesPerCycle;
}

/// The largest of some levels with its unit and its place; "-" where there are none.
std::string LargestOf(const Ensemble& ensemble, const std::vector<double>& levels) {
  if (levels.empty()) return "-";
  const auto largest = std::max_element(levels.begin(), levels.end());
  const Spectrum& first = ensemble.members.front();
  return fmt::format("{:.6g}{} at {:.6g} Hz", Plain(*largest),
                     first.unit.empty() ? "" : " " + first.unit,
                     first.points[static_cast<std::size_t>(largest - levels.begin())].frequency);
}

std::string TextOf(const std::vector<Member>& members, const std::vector<Ensemble>& ensembles) {
  const Spectrum& first = ensembles.front().members.front();
  std::string text =
      fmt::format("response:  {}\nrecords:   {}\nlines:     {} from {:.6g} to {:.6g} Hz\n",
                  first.response, members.size(), first.points.size(),
                  first.points.front().frequency, first.points.back().frequency);
  text += fmt::format("{:>8}  {:>10}  {:>26}  {:>26}  {:>26}\n", "Q", "damping", "largest envelope",
                      "mean", "P95/50");
  for (const Ensemble& e : ensembles) {
    const double zeta = e.members.front().zeta;
    text += fmt::format("{:>8}  {:>10.4g}  {:>26}  {:>26}  {:>26}\n", QText(zeta), zeta,
                        LargestOf(e, e.envelope), LargestOf(e, e.mean), LargestOf(e, e.p9550));
  }
  if (const std::string& reason = ensembles.front().reason; !reason.empty()) text += reason + "\n";
  for (const Member& member : members) {
    for (const std::string& remark : member.wave.remarks) {
      text += fmt::format("{}: {}\n", member.GetName(), remark);
    }
  }
  return text;
}

/// The lists of an ensemble by their names in files: the levels, and each record's maximax.
std::vector<std::pair<std::string, std::vector<double>>> ListsOf(const Ensemble& ensemble) {
  std::vector<std::pair<std::string, std::vector<double>>> lists{{"envelope", ensemble.envelope},
                                                                 {"mean", ensemble.mean}};
  if (ensemble.reason.empty()) lists.emplace_back("p95_50", ensemble.p9550);
  int number = 0;
  for (const Spectrum& member : ensemble.members) {
    auto& [name, values] =
        lists.emplace_back(fmt::format("maximax_{}", ++number), std::vector<double>());
    for (const analysis::SrsPoint& point : member.points) {
      values.push_back(member.factor * point.Total().Maximax());
    }
  }
  return lists;
}

std::string CsvOf(const std::vector<Ensemble>& ensembles) {
  std::string title = "frequency";
  std::vector<std::vector<double>> columns;
  for (const Ensemble& ensemble : ensembles) {
    const std::string suffix =
        ensembles.size() == 1 ? "" : "_q" + QText(ensemble.members.front().zeta);
    for (auto& [name, values] : ListsOf(ensemble)) {
      title += "," + name + suffix;
      columns.push_back(std::move(values));
    }
  }
  fmt::memory_buffer text;
  const auto out = std::back_inserter(text);
  fmt::format_to(out, "{}\n", title);
  const auto& points = ensembles.front().members.front().points;
  for (std::size_t i = 0; i < points.size(); ++i) {
    fmt::format_to(out, "{}", points[i].frequency);
    for (const std::vector<double>& column : columns) {
      fmt::format_to(out, ",{}", Plain(column[i]));
    }
    text.push_back('\n');
  }
  return fmt::to_string(text);
}

std::string JsonOf(const std::vector<Member>& members, const std::vector<Ensemble>& ensembles) {
  const Spectrum& first = ensembles.front().members.front();
  Json json;
  json["response"] = first.response;
  json["unit"] = first.unit;
  json["records"] = Json::array();
  for (const Member& member : members) {
    json["records"].push_back({{"file", member.file},
                               {"channel", member.wave.channel},
                               {"upsampling", member.upsampling},
                               {"record", member.wave.remarks},
                               {"warnings", member.warnings}});
  }
  for (const analysis::SrsPoint& point : first.points) json["frequency"].push_back(point.frequency);
  for (const Ensemble& ensemble : ensembles) {
    Json& one = json["spectra"].emplace_back();
    const double zeta = ensemble.members.front().zeta;
    one["q"] = NumberJson(0.5 / zeta);
    one["damping"] = zeta;
    if (!ensemble.reason.empty()) one["reason"] = ensemble.reason;
    for (const auto& [name, values] : ListsOf(ensemble)) {
      Json& list = one[name] = Json::array();
      for (const double v : values) list.push_back(NumberJson(v));
    }
  }
  return json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

void Draw(const SrsOptions& options, const std::vector<Member>& members,
          const std::vector<Ensemble>& ensembles, OutputFiles* files) {
  const PlotFormat format = PlotFormatOf(options.plot);
  const std::string first = members.front().GetName();
  const std::string title =
      members.size() == 1 ? first : fmt::format("{} and {} more", first, members.size() - 1);
  PlotCurves(PictureOf(ensembles, title, options.tripartite ? Axes::FourWay : Axes::Plain), format,
             files->Reserve(options.plot));
}

}  // namespace

ExitCode Envelope(const SrsOptions& options, std::vector<assess::SpectrumSettings> settings) {
  std::vector<Member> members = LoadMembers(options);
  const double highest = settings.front().to.value_or(UsualHighest(members));
  for (assess::SpectrumSettings& one : settings) one.to = highest;
  std::vector<std::vector<Spectrum>> spectra(settings.size());
  for (Member& member : members) {
    if (!options.noUpsample) member.upsampling = Upsample(highest, member.file, &member.wave);
    for (std::size_t i = 0; i < settings.size(); ++i) {
      spectra[i].push_back(SpectrumOf(member.file, member.wave, settings[i]));
    }
    if (assess::IsCoarse(spectra.front().back(), member.wave.fsamp)) {
      member.warnings.push_back(assess::CoarseText(member.wave.fsamp));
    }
    member.wave.samples = {};  // only one needs its finer samples at a time
  }
  std::vector<Ensemble> ensembles;
  for (std::vector<Spectrum>& one : spectra) {
    ensembles.push_back(assess::EnsembleOf(std::move(one)));
  }
  OutputFiles files;
  if (!options.csv.empty()) WriteFile(files.Reserve(options.csv), CsvOf(ensembles));
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), JsonOf(members, ensembles));
  if (!options.plot.empty()) Draw(options, members, ensembles, &files);
  for (const Member& member : members) {
    for (const std::string& warning : member.warnings) Warn(member.GetName(), warning);
  }
  files.Commit(TextOf(members, ensembles));
  return kDone;
}

}  // namespace qarv::command
