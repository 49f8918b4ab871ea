// Required spectra and machines as files.
#include "files/requirement_file.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>
#include <vector>

#include "command_error.h"

namespace qarv::command {

namespace {

/// What `read` makes of the text in a file.
template <class Read>
auto Loaded(InputFile file, Read read) {
  const std::string name = file.GetName();
  const std::vector<unsigned char> bytes = file.ReadAll(kLargestDefinition);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  try {
    return read(text);
  } catch (const assess::Error& e) {
    Fail(name, e.GetKey().empty() ? e.what() : fmt::format("{}: {}", e.GetKey(), e.what()));
  }
}

}  // namespace

assess::Requirement LoadRequirement(InputFile file) {
  return Loaded(std::move(file), assess::RequirementFromJson);
}

std::optional<assess::Machine> LoadMachine(const std::string& file) {
  if (file.empty()) return {};
  return Loaded(InputFile(file), assess::MachineFromJson);
}

}  // namespace qarv::command
