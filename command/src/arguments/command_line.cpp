// The command line: subcommands, options, examples, and what each of them runs.
#include "arguments/command_line.h"

#include <string>
#include <vector>

#include "arguments/bash_completion.h"
#include "arguments/man_page.h"
#include "definition/fields.h"
#include "files/file_name.h"
#include "files/output_files.h"

namespace qarv::command {

using assess::ResponseNames;
namespace {

// What a value is, for help, manual page and completion.
constexpr const char* kFile = "FILE";
constexpr const char* kFolder = "FOLDER";
constexpr const char* kHertz = "HZ";
constexpr const char* kSeconds = "SECONDS";
constexpr const char* kNumber = "NUMBER";
constexpr const char* kColumn = "COLUMN";
constexpr const char* kTimes = "FROM,TO";

/// A definition that the examples begin with, so that they work wherever they are pasted.
constexpr const char* kMakeShock =
    R"(  echo '{"UnitAmpl": "g", "Classical": {"WaveKind": "HALF_SINE",
    "MainAmpl": 50, "MainWidth": 0.011, "Fmax": 5000, "Nsamp": 512,
    "TolKind": "TOL_FIXED_4"}}' >shock.json
)";

constexpr const char* kExitStatus =
    "Exit status:\n"
    "  0  done; for judge: the record passes; for srs --requirement: the spectrum is inside\n"
    "  1  the definition is refused; for judge: the record fails; for batch: a definition fails;\n"
    "     for srs --requirement: the spectrum is outside; for synthesize: no waveform meets the "
    "requirement\n"
    "  2  the input cannot be used or judged, or an output cannot be written; nothing has been "
    "written\n"
    "  3  for check, batch and synthesize: it works, with warnings";

/// An option with a value.
template <class T>
CLI::Option* Add(CLI::App* command, const char* name, T* value, const std::string& type,
                 const char* description) {
  return command->add_option(name, *value, description)->type_name(type);
}

/// "-" is a standard stream, and what has no name is an error.
CLI::Validator NameOf(const char* stream, const std::string& type) {
  return CLI::Validator(
      [stream, type](std::string& text) {
        if (text == "-" && type == kFile) text = stream;
        return text.empty() ? std::string("an empty name") : std::string();
      },
      "");
}

/// A file or a folder: a positional argument is read, an option is written.  "-" is the standard
/// stream, and what has no name is an error.
CLI::Option* AddFile(CLI::App* command, const char* name, std::string* value,
                     const char* description, const std::string& type = kFile) {
  const char* const stream = *name == '-' ? kStandardOutput : kStandardInput;
  return Add(command, name, value, type, description)->transform(NameOf(stream, type));
}

/// A file that an option names and that is read.
CLI::Option* AddInput(CLI::App* command, const char* name, std::string* value,
                      const char* description) {
  return Add(command, name, value, kFile, description)->transform(NameOf(kStandardInput, kFile));
}

/// Files that are read, one at least.
void AddInputs(CLI::App* command, const char* name, std::vector<std::string>* values,
               const char* description) {
  command->add_option(name, *values, description)
      ->type_name(kFile)
      ->transform(NameOf(kStandardInput, kFile))
      ->required();
}

void AddFsamp(CLI::App* command, std::optional<double>* fsamp) {
  Add(command, "--fsamp", fsamp, kHertz, "sampling frequency of samples without a time column");
}

/// A required spectrum that an example begins with.
constexpr const char* kMakeRequirement =
    R"(  echo '{"Q": 10, "Points": [[45, 20], [90, 40], [500, 40]],
    "TolUpper": 3, "TolLower": -1.5}' >required.json
)";

/// What tells how a file of measured samples is read.
void AddChoice(CLI::App* command, MeasuredChoice* choice) {
  AddFsamp(command, &choice->fsamp);
  Add(command, "--time", &choice->time, kColumn, "column of the times, by name or number");
  Add(command, "--channel", &choice->channels, kColumn,
      "columns or functions of the values, by name or number, separated by commas (the first)");
  command->add_flag("--resultant", choice->resultant,
                    "the root of the sum of squares of the channels, as one");
  Add(command, "--skip-bad", &choice->skipBad, kNumber,
      "so many lines without a value are bridged by straight lines (0)");
  Add(command, "--unit", &choice->unit, "UNIT", "unit of values whose file names none");
  Add(command, "--scale", &choice->scale, kNumber, "units in a number of the file");
}

/// What is done to a record before anything else; nothing of it without being asked.
void AddSteps(CLI::App* command, StepOptions* steps) {
  Add(command, "--trim", &steps->trim, kTimes, "keep this stretch of the record [s]");
  Add(command, "--offset", &steps->offset, "quiet|FROM,TO",
      "take the mean of the quiet part, or of a stretch [s], off");
  command->add_flag("--invert", steps->invert, "turn the record over");
  Add(command, "--highpass", &steps->highPass, kHertz, "high pass, forward and backward");
  Add(command, "--lowpass", &steps->lowPass, kHertz, "low pass, forward and backward");
  Add(command, "--filter", &steps->filter, "butterworth|bessel", "shape of both (butterworth)");
  Add(command, "--order", &steps->order, kNumber, "order of each of their two passes (4)");
  Add(command, "--cfc", &steps->cfc, "60|180|600|1000",
      "low pass of a channel frequency class (ISO 6487)");
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
  app.allow_windows_style_options(false);  // a name that begins with a slash is a name everywhere
  app.require_subcommand(1);
  app.footer(kExitStatus);
  AddGenerate();
  AddCheck();
  AddReport();
  AddJudge();
  AddSrs();
  AddSynthesize();
  AddBatch();
  AddShow();
  AddTexts();
}

void CommandLine::RefuseUnknownCommand(int argc, const char* const* argv) const {
  if (argc < 2 || *argv[1] == '-') return;
  std::string known;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_name() == argv[1]) return;
    known += (known.empty() ? "" : ", ") + command->get_name();
  }
  Fail(argv[1], "is no subcommand: one of " + known);
}

void CommandLine::AddGenerate() {
  auto* const command = app.add_subcommand("generate", "Generate the waveform of a definition");
  AddFile(command, "DEF", &generate.definition, "JSON definition, - for standard input")
      ->required();
  AddFile(command, "--csv", &generate.csv,
          "write time, waveform, lower and upper band, - for standard output");
  AddFile(command, "--npy", &generate.npy, "write the same as a NumPy array of records");
  AddFile(command, "--wav", &generate.wav, "write the waveform as a sound file (32-bit float)");
  AddFile(command, "--uff", &generate.uff, "write a universal file (dataset 58)");
  AddFile(command, "--plot", &generate.plot, "write a picture, .png or .svg");
  AddFile(command, "--record", &generate.record, "write the serialised record");
  command->callback([this] { job = Job(Generate, generate); });
  SetShockExample(command, "  qarv-wave generate shock.json --csv shock.csv --plot shock.png");
}

void CommandLine::AddCheck() {
  auto* const command =
      app.add_subcommand("check", "Say what is wrong with a definition, and what would work");
  AddFile(command, "DEF", &check.definition, "JSON definition, - for standard input")->required();
  AddInput(command, "--machine", &check.machine,
           "machine (.json): a warning for each limit that is passed");
  command->callback([this] { job = [this] { return Check(check); }; });
  SetShockExample(command, "  qarv-wave check shock.json");
}

void CommandLine::AddReport() {
  auto* const command = app.add_subcommand(
      "report", "Report what a waveform asks of the shaker and how it lies in its bands");
  AddFile(command, "INPUT", &report.input, "definition (.json) or record, - for standard input")
      ->required();
  AddInput(command, "--machine", &report.machine,
           "machine (.json): its limits and the margins to them");
  AddFile(command, "--json", &report.json, "write the numbers as JSON");
  AddFile(command, "--html", &report.html, "write one page with plots, spectrum and numbers");
  command->callback([this] { job = Job(Report, report); });
  SetShockExample(command, "  qarv-wave report shock.json --html shock.html");
}

void CommandLine::AddJudge() {
  auto* const command =
      app.add_subcommand("judge", "Say whether a measured record passes its tolerance bands");
  AddFile(command, "INPUT", &judge.definition, "definition (.json) or record, - for standard input")
      ->required();
  AddInputs(command, "MEASURED", &judge.measured,
            "measured samples (text, .uff, .npy, .mat, .wav), or folders of them, - for "
            "standard input");
  AddChoice(command, &judge.choice);
  AddSteps(command, &judge.steps);
  Add(command, "--threshold", &judge.series.threshold, kNumber,
      "what a shock passes [% of the definition's peak] (25)");
  Add(command, "--min-gap", &judge.series.minGap, kSeconds,
      "least time between two shocks (three widths of the pulse)");
  Add(command, "--count", &judge.series.count, kNumber, "how many shocks there have to be");
  Add(command, "--at", &judge.at, kSeconds, "judge only the shocks at these times, as T1,T2,...");
  Add(command, "--polarity", &judge.polarity, "both|own",
      "judge negative shocks by the mirrored bands, or none (both, where there are several)");
  Add(command, "--move", &judge.series.judge.move, kNumber,
      "how far the bands may be moved [% of the pulse's width] (10)");
  Add(command, "--dv-tol", &judge.series.judge.dvTol, kNumber,
      "tolerance of the velocity change [%] (10)");
  Add(command, "--dv-of", &judge.dvOf, "nominal|waveform|both",
      "what it is of (nominal; waveform, where that is compensated)");
  AddInput(command, "--requirement", &judge.requirement,
           "required spectrum (.json): that of each shock is shown beside it");
  command->add_flag("--force", judge.series.judge.force,
                    "judge a record that is sampled too coarsely for a verdict");
  AddFile(command, "--html", &judge.html, "write one page to file, with a picture of every shock");
  Add(command, "--date", &judge.date, "TEXT", "date on the page (that of the first record)");
  AddFile(command, "--json", &judge.json, "write the verdict as JSON");
  AddFile(command, "--plot", &judge.plot, "write a picture with the violations, .png or .svg");
  command->callback([this] { job = [this] { return Judge(judge); }; });
  SetShockExample(command,
                  "  qarv-wave generate shock.json --csv measured.csv\n"
                  "  qarv-wave judge shock.json measured.csv --plot verdict.png");
}

void CommandLine::AddSrs() {
  auto* const command = app.add_subcommand("srs", "Calculate a shock response spectrum");
  AddInputs(command, "INPUT", &srs.inputs,
            "definition (.json), measured samples (text, .uff, .npy, .mat, .wav) or record, "
            "- for standard input; several with --envelope");
  AddChoice(command, &srs.choice);
  AddSteps(command, &srs.steps);
  auto* const response =
      Add(command, "--response", &srs.settings.response, ResponseNames("|"),
          "absolute acceleration, relative displacement, pseudo velocity, relative velocity or "
          "static equivalent");
  auto* const q =
      Add(command, "--q", &srs.q, "Q,...", "quality factor, or several for a spectrum each (10)");
  auto* const damping =
      Add(command, "--damping", &srs.settings.damping, kNumber, "damping ratio, instead of --q")
          ->excludes(q);
  auto* const from =
      Add(command, "--from", &srs.settings.from, kHertz, "lowest natural frequency (5)");
  auto* const to =
      Add(command, "--to", &srs.settings.to, kHertz, "highest (a tenth of the sampling frequency)");
  auto* const perOctave =
      Add(command, "--per-octave", &srs.settings.perOctave, kNumber, "lines per octave (12)");
  auto* const points = Add(command, "--points", &srs.settings.points, kNumber,
                           "number of lines, instead of --per-octave")
                           ->excludes(perOctave);
  command->add_flag("--no-upsample", srs.noUpsample,
                    "straight lines between the samples as they are, however few there are");
  auto* const tripartite =
      command->add_flag("--tripartite", srs.tripartite,
                        "pseudo velocity, with lines of displacement and acceleration in the plot");
  auto* const requirement =
      AddInput(command, "--requirement", &srs.requirement,
               "required spectrum (.json), with its damping and lines: the verdict");
  auto* const envelope =
      command->add_flag("--envelope", srs.envelope,
                        "of several records: their envelope, mean and P95/50 tolerance limit");
  for (CLI::Option* option :
       {envelope, response, damping, from, to, perOctave, points, tripartite}) {
    requirement->excludes(option);
  }
  AddFile(command, "--csv", &srs.csv, "write all responses over frequency");
  AddFile(command, "--json", &srs.json, "write them as JSON, with the verdict and all remarks");
  AddFile(command, "--plot", &srs.plot, "write a picture, .png or .svg");
  command->callback([this] { job = [this] { return Srs(srs); }; });
  SetShockExample(command,
                  "  qarv-wave srs shock.json --damping 0.05 --per-octave 6 --plot srs.png");
}

void CommandLine::AddSynthesize() {
  auto* const command = app.add_subcommand(
      "synthesize", "Find a waveform that has a required shock response spectrum");
  AddFile(command, "REQ", &synthesize.requirement,
          "required spectrum (.json), - for standard input")
      ->required();
  AddFile(command, "-o,--output", &synthesize.output, "write the definition of the waveform");
  AddInput(command, "--machine", &synthesize.machine,
           "machine (.json): its limits hold beside the requirement's");
  Add(command, "--shape", &synthesize.request.shape, assess::SynthesisShapes("|"),
      "all frequencies at once (shock), one after the other, or at any time");
  Add(command, "--method", &synthesize.request.method, assess::SynthesisMethods("|"),
      "wavelets end at rest; damped sines leave a little");
  Add(command, "--minimize", &synthesize.request.minimize, assess::SynthesisAims("|"),
      "the least peak of it instead of the best match");
  Add(command, "--within", &synthesize.request.within, kNumber,
      "with --minimize: within so many dB (the tolerance)");
  Add(command, "--seed", &synthesize.request.seed, kNumber, "of what is drawn at random (1)");
  command->add_flag("--quick", synthesize.request.quick,
                    "a first look: a quarter of a dB, in a third of the time");
  command->add_flag("--force", synthesize.force,
                    "write the best waveform if none meets the requirement");
  AddFile(command, "--csv", &synthesize.csv, "write time, waveform, lower and upper band");
  AddFile(command, "--json", &synthesize.json, "write the figures as JSON");
  AddFile(command, "--plot", &synthesize.plot, "write a picture, .png or .svg");
  command->callback([this] { job = [this] { return Synthesize(synthesize); }; });
  SetExample(command, std::string(kMakeRequirement) +
                          "  qarv-wave synthesize required.json -o shock.json --plot shock.png\n"
                          "  qarv-wave srs shock.json --requirement required.json");
}

void CommandLine::AddBatch() {
  auto* const command =
      app.add_subcommand("batch", "Generate every definition of a folder, with one table of them");
  AddFile(command, "DIR", &batch.folder, "folder of JSON definitions", kFolder)->required();
  AddFile(command, "-o,--output", &batch.output,
          "folder for data, record, plot, report, spectrum and definition of each, summary.csv and "
          "index.html",
          kFolder);
  AddFile(command, "--csv", &batch.csv, "write the table");
  command->callback([this] { job = [this] { return Batch(batch); }; });
  SetShockExample(command,
                  "  mkdir -p shocks && mv shock.json shocks\n"
                  "  qarv-wave batch shocks --output all");
}

void CommandLine::AddShow() {
  auto* const command = app.add_subcommand("show", "Print a record as a JSON definition");
  AddFile(command, "RECORD", &show.record, "record file, - for standard input")->required();
  AddFile(command, "-o,--output", &show.output, "write the definition to a file");
  AddFile(command, "--samples", &show.samples,
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
  add(
      "schema", "Print the JSON Schema of a definition, by which editors complete and check it",
      [](const CLI::App&) { return definition::SchemaText(); },
      "  qarv-wave schema >definition.schema.json");
  add("man-page", "Print the manual page", ManPage, "  qarv-wave man-page >qarv-wave.1");
  add("bash-completion", "Print the completion of this command for bash", BashCompletion,
      "  source <(qarv-wave bash-completion)");
}

}  // namespace qarv::command
