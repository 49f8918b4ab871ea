// The command line: subcommands, options, examples, and what each of them runs.
#include "command_line.h"

#include <string>

#include "bash_completion.h"
#include "man_page.h"
#include "output_files.h"

namespace qarv::command {

namespace {

// What a value is, for help, manual page and completion.
constexpr const char* kFile = "FILE";
constexpr const char* kFolder = "FOLDER";
constexpr const char* kHertz = "HZ";
constexpr const char* kNumber = "NUMBER";

/// A definition that the examples begin with, so that they work wherever they are pasted.
constexpr const char* kMakeShock =
    R"(  echo '{"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE",
    "MainAmpl": 50, "MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512,
    "TolKind": "TOL_FIXED_4"}}' >shock.json
)";

constexpr const char* kExitStatus =
    "Exit status:\n"
    "  0  done; for judge: the record passes\n"
    "  1  the definition is refused; for judge: the record fails; for batch: a definition fails\n"
    "  2  the input cannot be used or judged, or an output cannot be written; nothing has been "
    "written\n"
    "  3  for check and batch: it works, with warnings";

/// An option with a value.
template <class T>
CLI::Option* Add(CLI::App* command, const char* name, T* value, const std::string& type,
                 const char* description) {
  return command->add_option(name, *value, description)->type_name(type);
}

void AddFsamp(CLI::App* command, std::optional<double>* fsamp) {
  Add(command, "--fsamp", fsamp, kHertz, "sampling frequency of samples without a time column");
}

/// The example of a subcommand, below its options.
void SetExample(CLI::App* command, const std::string& lines) {
  command->footer("Example:\n" + lines);
}

/// One that begins with a definition of a shock.
void SetShockExample(CLI::App* command, const std::string& lines) {
  SetExample(command, kMakeShock + lines);
}

/// Runs a subcommand that is done unless it throws.
template <class Options>
auto Job(void (*run)(const Options&), const Options& options) {
  return [run, &options] {
    run(options);
    return kDone;
  };
}

}  // namespace

CommandLine::CommandLine()
    : app("Test waveforms of a shock and vibration test, with their tolerance bands", "qarv-wave") {
  app.set_version_flag("--version", "qarv-wave " QARV_VERSION, "print the version and exit");
  app.set_help_flag("-h,--help", "print this help and exit");
  app.require_subcommand(1);
  app.footer(kExitStatus);
  AddGenerate();
  AddCheck();
  AddReport();
  AddJudge();
  AddSrs();
  AddBatch();
  AddShow();
  AddTexts();
}

void CommandLine::AddGenerate() {
  auto* const command = app.add_subcommand("generate", "Generate the waveform of a definition");
  Add(command, "DEF", &generate.definition, kFile, "JSON definition")->required();
  Add(command, "--csv", &generate.csv, kFile, "write time, waveform, lower and upper band");
  Add(command, "--npy", &generate.npy, kFile, "write the same as a NumPy array of records");
  Add(command, "--wav", &generate.wav, kFile, "write the waveform as a sound file (32-bit float)");
  Add(command, "--uff", &generate.uff, kFile, "write a universal file (dataset 58)");
  Add(command, "--plot", &generate.plot, kFile, "write a picture, .png or .svg");
  Add(command, "--record", &generate.record, kFile, "write the serialised record");
  command->callback([this] { job = Job(Generate, generate); });
  SetShockExample(command, "  qarv-wave generate shock.json --csv shock.csv --plot shock.png");
}

void CommandLine::AddCheck() {
  auto* const command =
      app.add_subcommand("check", "Say what is wrong with a definition, and what would work");
  Add(command, "DEF", &check.definition, kFile, "JSON definition")->required();
  command->callback([this] { job = [this] { return Check(check); }; });
  SetShockExample(command, "  qarv-wave check shock.json");
}

void CommandLine::AddReport() {
  auto* const command = app.add_subcommand(
      "report", "Report what a waveform asks of the shaker and how it lies in its bands");
  Add(command, "INPUT", &report.input, kFile, "definition (.json) or record")->required();
  Add(command, "--json", &report.json, kFile, "write the numbers as JSON");
  Add(command, "--html", &report.html, kFile, "write one page with numbers and plots");
  command->callback([this] { job = Job(Report, report); });
  SetShockExample(command, "  qarv-wave report shock.json --html shock.html");
}

void CommandLine::AddJudge() {
  auto* const command =
      app.add_subcommand("judge", "Say whether a measured record passes its tolerance bands");
  Add(command, "INPUT", &judge.definition, kFile, "definition (.json) or record")->required();
  Add(command, "MEASURED", &judge.measured, kFile, "measured samples (.csv, .uff)")->required();
  AddFsamp(command, &judge.fsamp);
  Add(command, "--dv-tol", &judge.dvTol, kNumber, "tolerance of the velocity change [%] (10)");
  command->add_flag("--force", judge.force,
                    "judge a record that is sampled too coarsely for a verdict");
  Add(command, "--json", &judge.json, kFile, "write the verdict as JSON");
  Add(command, "--plot", &judge.plot, kFile, "write a picture with the violations, .png or .svg");
  command->callback([this] { job = [this] { return Judge(judge); }; });
  SetShockExample(command,
                  "  qarv-wave generate shock.json --csv measured.csv\n"
                  "  qarv-wave judge shock.json measured.csv --plot verdict.png");
}

void CommandLine::AddSrs() {
  auto* const command = app.add_subcommand("srs", "Calculate a shock response spectrum");
  Add(command, "INPUT", &srs.input, kFile,
      "definition (.json), measured samples (.csv, .uff) or record")
      ->required();
  AddFsamp(command, &srs.fsamp);
  Add(command, "--response", &srs.response, ResponseNames("|"),
      "absolute acceleration, relative displacement or pseudo velocity");
  auto* const q = Add(command, "--q", &srs.q, kNumber, "quality factor (10)");
  Add(command, "--damping", &srs.damping, kNumber, "damping ratio, instead of --q")->excludes(q);
  Add(command, "--from", &srs.from, kHertz, "lowest natural frequency (5)");
  Add(command, "--to", &srs.to, kHertz, "highest (a tenth of the sampling frequency)");
  auto* const perOctave =
      Add(command, "--per-octave", &srs.perOctave, kNumber, "lines per octave (12)");
  Add(command, "--points", &srs.points, kNumber, "number of lines, instead of --per-octave")
      ->excludes(perOctave);
  command->add_flag("--tripartite", srs.tripartite,
                    "pseudo velocity, with lines of displacement and acceleration in the plot");
  Add(command, "--csv", &srs.csv, kFile, "write all responses over frequency");
  Add(command, "--plot", &srs.plot, kFile, "write a picture, .png or .svg");
  command->callback([this] { job = Job(Srs, srs); });
  SetShockExample(command,
                  "  qarv-wave srs shock.json --damping 0.05 --per-octave 6 --plot srs.png");
}

void CommandLine::AddBatch() {
  auto* const command =
      app.add_subcommand("batch", "Generate every definition of a folder, with one table of them");
  Add(command, "DIR", &batch.folder, kFolder, "folder of JSON definitions")->required();
  Add(command, "-o,--output", &batch.output, kFolder,
      "folder for data, record, plot, report and spectrum of each, summary.csv and index.html");
  Add(command, "--csv", &batch.csv, kFile, "write the table");
  command->callback([this] { job = [this] { return Batch(batch); }; });
  SetShockExample(command,
                  "  mkdir -p shocks && mv shock.json shocks\n"
                  "  qarv-wave batch shocks --output all");
}

void CommandLine::AddShow() {
  auto* const command = app.add_subcommand("show", "Print a record as a JSON definition");
  Add(command, "RECORD", &show.record, kFile, "record file")->required();
  Add(command, "-o,--output", &show.output, kFile, "write the definition to a file");
  Add(command, "--samples", &show.samples, kFile,
      "where the samples of a measured waveform go (RECORD.samples.csv)");
  command->callback([this] { job = Job(Show, show); });
  SetShockExample(command,
                  "  qarv-wave generate shock.json --record shock.rec\n"
                  "  qarv-wave show shock.rec");
}

void CommandLine::AddTexts() {
  const auto add = [this](const char* name, const char* description,
                          std::string (*text)(const CLI::App&), const char* example) {
    auto* const command = app.add_subcommand(name, description);
    command->callback([this, text] {
      job = [this, text] {
        Print(text(app));
        return kDone;
      };
    });
    SetExample(command, example);
  };
  add("man-page", "Print the manual page", ManPage, "  qarv-wave man-page >qarv-wave.1");
  add("bash-completion", "Print the completion of this command for bash", BashCompletion,
      "  source <(qarv-wave bash-completion)");
}

}  // namespace qarv::command
