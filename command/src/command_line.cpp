// The command line: subcommands, options, examples, and what each of them runs.
#include "command_line.h"

namespace qarv::command {

namespace {

/// A definition that the examples begin with, so that they work wherever they are pasted.
constexpr const char* kMakeShock =
    R"(echo '{"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50, )"
    R"("MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512, "TolKind": "TOL_FIXED_4"}}' >shock.json)";

/// Runs a subcommand that is done unless it throws.
template <class Options>
auto Job(void (*run)(const Options&), const Options& options) {
  return [run, &options] {
    run(options);
    return kDone;
  };
}

/// The example of a subcommand, below its options.
void SetExample(CLI::App* command, const std::string& lines) {
  command->footer(std::string("Example:\n  ") + kMakeShock + "\n" + lines);
}

void AddFsamp(CLI::App* command, std::optional<double>* fsamp) {
  command->add_option("--fsamp", *fsamp,
                      "sampling frequency of samples without a time column [Hz]");
}

}  // namespace

CommandLine::CommandLine()
    : app("Test waveforms of a shock and vibration test, with their tolerance bands", "qarv-wave") {
  app.set_version_flag("--version", "qarv-wave " QARV_VERSION);
  app.require_subcommand(1);
  AddGenerate();
  AddCheck();
  AddReport();
  AddJudge();
  AddSrs();
  AddShow();
  AddBatch();
}

void CommandLine::AddGenerate() {
  auto* const command = app.add_subcommand("generate", "Generate the waveform of a definition");
  command->add_option("DEF", generate.definition, "JSON definition")->required();
  command->add_option("--csv", generate.csv, "write time, waveform, lower and upper band");
  command->add_option("--npy", generate.npy, "write the same as a NumPy array of records");
  command->add_option("--wav", generate.wav, "write the waveform as a sound file (32-bit float)");
  command->add_option("--uff", generate.uff, "write a universal file (dataset 58)");
  command->add_option("--plot", generate.plot, "write a picture, .png or .svg");
  command->add_option("--record", generate.record, "write the serialised record");
  command->callback([this] { job = Job(Generate, generate); });
  SetExample(command, "  qarv-wave generate shock.json --csv shock.csv --plot shock.png");
}

void CommandLine::AddCheck() {
  auto* const command =
      app.add_subcommand("check", "Say what is wrong with a definition, and what would work");
  command->add_option("DEF", check.definition, "JSON definition")->required();
  command->callback([this] { job = [this] { return Check(check); }; });
  SetExample(command, "  qarv-wave check shock.json");
}

void CommandLine::AddReport() {
  auto* const command = app.add_subcommand(
      "report", "Report what a waveform asks of the shaker and how it lies in its bands");
  command->add_option("INPUT", report.input, "definition (.json) or record")->required();
  command->add_option("--json", report.json, "write the numbers as JSON");
  command->add_option("--html", report.html, "write one page with numbers and plots");
  command->callback([this] { job = Job(Report, report); });
  SetExample(command, "  qarv-wave report shock.json --html shock.html");
}

void CommandLine::AddJudge() {
  auto* const command =
      app.add_subcommand("judge", "Say whether a measured record passes its tolerance bands");
  command->add_option("INPUT", judge.definition, "definition (.json) or record")->required();
  command->add_option("MEASURED", judge.measured, "measured samples (.csv, .uff)")->required();
  AddFsamp(command, &judge.fsamp);
  command->add_option("--dv-tol", judge.dvTol, "tolerance of the velocity change [%] (10)");
  command->add_option("--json", judge.json, "write the verdict as JSON");
  command->add_option("--plot", judge.plot, "write a picture with the violations, .png or .svg");
  command->callback([this] { job = [this] { return Judge(judge); }; });
  SetExample(command,
             "  qarv-wave generate shock.json --csv shock.csv\n"
             "  cut -d, -f1,2 shock.csv >measured.csv\n"
             "  qarv-wave judge shock.json measured.csv --plot verdict.png");
}

void CommandLine::AddSrs() {
  auto* const command = app.add_subcommand("srs", "Calculate a shock response spectrum");
  command
      ->add_option("INPUT", srs.input,
                   "definition (.json), measured samples (.csv, .uff) or record")
      ->required();
  AddFsamp(command, &srs.fsamp);
  command->add_option("--response", srs.response,
                      "acceleration (absolute), displacement (relative) or pseudo-velocity");
  auto* const q = command->add_option("--q", srs.q, "quality factor (10)");
  command->add_option("--damping", srs.damping, "damping ratio, instead of --q")->excludes(q);
  command->add_option("--from", srs.from, "lowest natural frequency [Hz] (5)");
  command->add_option("--to", srs.to, "highest [Hz] (a tenth of the sampling frequency)");
  auto* const perOctave =
      command->add_option("--per-octave", srs.perOctave, "lines per octave (12)");
  command->add_option("--points", srs.points, "number of lines, instead of --per-octave")
      ->excludes(perOctave);
  command->add_flag("--tripartite", srs.tripartite,
                    "pseudo velocity, with lines of displacement and acceleration in the plot");
  command->add_option("--csv", srs.csv, "write all responses over frequency");
  command->add_option("--plot", srs.plot, "write a picture, .png or .svg");
  command->callback([this] { job = Job(Srs, srs); });
  SetExample(command, "  qarv-wave srs shock.json --damping 0.05 --per-octave 6 --plot srs.png");
}

void CommandLine::AddShow() {
  auto* const command = app.add_subcommand("show", "Print a record as a JSON definition");
  command->add_option("RECORD", show.record, "record file")->required();
  command->add_option("-o,--output", show.output, "write the definition to a file");
  command->add_option("--samples", show.samples,
                      "where the samples of a measured waveform go (RECORD.samples.csv)");
  command->callback([this] { job = Job(Show, show); });
  SetExample(command,
             "  qarv-wave generate shock.json --record shock.rec\n"
             "  qarv-wave show shock.rec");
}

void CommandLine::AddBatch() {
  auto* const command =
      app.add_subcommand("batch", "Generate every definition of a folder, with one table of them");
  command->add_option("DIR", batch.folder, "folder of JSON definitions")->required();
  command->add_option("-o,--output", batch.output,
                      "folder for data, record, plot, report and spectrum of each, summary.csv and "
                      "index.html");
  command->add_option("--csv", batch.csv, "write the table");
  command->callback([this] { job = [this] { return Batch(batch); }; });
  SetExample(command, "  qarv-wave batch . --output out");
}

}  // namespace qarv::command
