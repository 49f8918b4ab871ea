// What the name of a file stands for.
#include "files/file_name.h"

#include <charconv>
#include <filesystem>
#include <string_view>

namespace qarv::command {

using platform::FileKind;

std::string ExtensionOf(const std::string& name) {
  std::string extension = std::filesystem::path(name).extension().string();
  for (char& c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return extension;
}

std::optional<int> DescriptorOf(const std::string& name) {
  if (name == kStandardInput) return platform::kInput;
  if (name == kStandardOutput) return platform::kOutput;
  if (name == kStandardError) return platform::kError;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!name.starts_with(folder)) continue;
    int descriptor = -1;
    const char* const last = name.data() + name.size();
    const auto [end, error] = std::from_chars(name.data() + folder.size(), last, descriptor);
    if (error == std::errc{} && end == last && platform::IsOpen(descriptor)) return descriptor;
  }
  return std::nullopt;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) platform::Close(fd_);
}

Descriptor OpenByName(const std::string& name, platform::Access access) {
  if (const auto open = DescriptorOf(name)) return Descriptor(platform::Duplicate(*open));
  return Descriptor(platform::Open(name, access));
}

bool IsStream(const std::string& name) {
  if (DescriptorOf(name)) return true;
  const auto facts = platform::FactsOf(name);
  return facts && (facts->kind == FileKind::Pipe || facts->kind == FileKind::CharacterDevice);
}

}  // namespace qarv::command
