// Required spectra as files.
#include "files/requirement_file.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

#include "command_error.h"

namespace qarv::command {

assess::Requirement LoadRequirement(InputFile file) {
  const std::string name = file.GetName();
  const std::vector<unsigned char> bytes = file.ReadAll(kLargestDefinition);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  try {
    return assess::RequirementFromJson(text);
  } catch (const assess::Error& e) {
    Fail(name, e.GetKey().empty() ? e.what() : fmt::format("{}: {}", e.GetKey(), e.what()));
  }
}

}  // namespace qarv::command
