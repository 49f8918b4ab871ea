// The command qarv-wave: its arguments, its exit codes, its one-line errors.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <new>

#include "generate.h"
#include "report.h"
#include "show.h"
#include "srs.h"
#include "text.h"

namespace {

using namespace qarv::command;

int Run(int argc, char** argv) {
  CLI::App app{"Test waveforms of a shock and vibration test, with their tolerance bands"};
  app.set_version_flag("--version", "qarv-wave " QARV_VERSION);
  app.require_subcommand(1);

  GenerateOptions generate;
  auto* const generateCommand =
      app.add_subcommand("generate", "Generate the waveform of a JSON definition");
  generateCommand->add_option("DEF", generate.definition, "JSON definition")->required();
  generateCommand->add_option("--csv", generate.csv, "write time, waveform, lower and upper band");
  generateCommand->add_option("--plot", generate.plot, "write a picture, .png or .svg");
  generateCommand->add_option("--record", generate.record, "write the serialised record");
  generateCommand->callback([&] { Generate(generate); });

  ShowOptions show;
  auto* const showCommand = app.add_subcommand("show", "Print a record as a JSON definition");
  showCommand->add_option("RECORD", show.record, "record file")->required();
  showCommand->add_option("-o,--output", show.output, "write the definition to a file");
  showCommand->add_option("--samples", show.samples,
                          "where the samples of a measured waveform go (RECORD.samples.csv)");
  showCommand->callback([&] { Show(show); });

  ReportOptions report;
  auto* const reportCommand = app.add_subcommand(
      "report", "Report what a waveform asks of the shaker and how it lies in its bands");
  reportCommand->add_option("INPUT", report.input, "definition (.json) or record")->required();
  reportCommand->add_option("--json", report.json, "write the numbers as JSON");
  reportCommand->add_option("--html", report.html, "write one page with numbers and plots");
  reportCommand->callback([&] { Report(report); });

  SrsOptions srs;
  auto* const srsCommand = app.add_subcommand("srs", "Calculate a shock response spectrum");
  srsCommand
      ->add_option("INPUT", srs.input, "definition (.json), measured samples (.csv) or record")
      ->required();
  srsCommand->add_option("--response", srs.response,
                         "acceleration (absolute), displacement (relative) or pseudo-velocity");
  auto* const q = srsCommand->add_option("--q", srs.q, "quality factor (10)");
  srsCommand->add_option("--damping", srs.damping, "damping ratio, instead of --q")->excludes(q);
  srsCommand->add_option("--from", srs.from, "lowest natural frequency [Hz] (5)");
  srsCommand->add_option("--to", srs.to, "highest [Hz] (a tenth of the sampling frequency)");
  auto* const perOctave =
      srsCommand->add_option("--per-octave", srs.perOctave, "lines per octave (12)");
  srsCommand->add_option("--points", srs.points, "number of lines, instead of --per-octave")
      ->excludes(perOctave);
  srsCommand->add_flag("--tripartite", srs.tripartite,
                       "pseudo velocity, with lines of displacement and acceleration in the plot");
  srsCommand->add_option("--csv", srs.csv, "write all responses over frequency");
  srsCommand->add_option("--plot", srs.plot, "write a picture, .png or .svg");
  srsCommand->callback([&] { Srs(srs); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {  // --help, --version
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    throw CommandError(kBadInput, OneLine(e.what()));
  }
  if (std::fflush(stdout) != 0) throw CommandError(kBadInput, "standard output: cannot be written");
  return kDone;
}

}  // namespace

int main(int argc, char** argv) {
  // A reader that goes away early is an error of the write, not the end of the command.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // so is a file that gets too large
  try {
    return Run(argc, argv);
  } catch (const CommandError& e) {
    fmt::print(stderr, "qarv-wave: {}\n", e.what());
    return e.GetCode();
  } catch (const std::bad_alloc&) {
    fmt::print(stderr, "qarv-wave: out of memory\n");
  } catch (const std::exception& e) {
    fmt::print(stderr, "qarv-wave: {}\n", OneLine(e.what()));
  }
  return kBadInput;
}
