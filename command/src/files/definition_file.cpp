// Definitions and records as files.
#include "files/definition_file.h"

#include <fmt/format.h>

#include <filesystem>

#include "command_error.h"
#include "files/csv_reader.h"
#include "files/output_files.h"
#include "text/text.h"

namespace qarv::command {

using definition::Definition;
using wave_def::CWaveDef;

namespace {

/// Ends the command with what is wrong with a file.
[[noreturn]] void FailWith(const definition::Error& e, const std::string& file) {
  const bool refused = e.GetKind() == definition::Error::Kind::Refused;
  throw CommandError(refused ? kRefused : kBadInput,
                     text::OneLine(fmt::format("{}: {}", file, e.what())));
}

/// The samples that a definition names, from a file beside it.
definition::SampleSource SamplesBeside(const std::string& file) {
  // A stream has no folder of its own: the working folder is meant.
  const auto folder = std::filesystem::path(IsStream(file) ? "" : file).parent_path();
  return [folder](const std::string& path, bool needsRate) {
    MeasuredCsv csv = ReadCsv((folder / path).string());
    const double fsamp = needsRate ? SampleRateOf(csv) : 0.0;
    return definition::Samples{std::move(csv.values), fsamp};
  };
}

}  // namespace

Definition ReadDefinition(InputFile file) {
  const std::string name = file.GetName();
  const std::vector<unsigned char> bytes = file.ReadAll(kLargestDefinition);
  const std::string_view json(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  try {
    return definition::FromJson(json, SamplesBeside(name));
  } catch (const definition::Error& e) {
    FailWith(e, name);
  }
}

CWaveDef LoadDefinition(InputFile file) {
  const std::string name = file.GetName();
  const Definition definition = ReadDefinition(std::move(file));
  try {
    return Generate(definition);
  } catch (const definition::Error& e) {
    FailWith(e, name);
  }
}

std::string RefusalLine(const Definition& definition, const std::string& file,
                        const std::string& reason) {
  return text::OneLine(fmt::format("{}: {}: {}", file, definition.GetFamily().key, reason));
}

void WriteRecord(CWaveDef& def, const std::string& file) {
  try {
    const std::vector<unsigned char> record = definition::ToRecord(def);
    if (record.size() > kLargestFile) {
      Fail(file,
           fmt::format("a record of more than {} bytes could not be read again", kLargestFile));
    }
    WriteFile(file, {reinterpret_cast<const char*>(record.data()), record.size()});
  } catch (const definition::Error& e) {
    FailWith(e, file);
  }
}

CWaveDef ReadRecord(InputFile file) {
  const std::string name = file.GetName();
  try {
    return definition::FromRecord(file.ReadAll());
  } catch (const definition::Error& e) {
    FailWith(e, name);
  }
}

void RequireBands(const CWaveDef& def, const std::string& source) {
  if (!definition::HasBands(def)) Fail(source, "has no samples with bands");
}

}  // namespace qarv::command
