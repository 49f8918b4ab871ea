// What the name of a file stands for.
#include "files/file_name.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <string_view>

namespace qarv::command {

std::string ExtensionOf(const std::string& name) {
  std::string extension = std::filesystem::path(name).extension().string();
  for (char& c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return extension;
}

std::optional<int> DescriptorOf(const std::string& name) {
  if (name == kStandardInput) return STDIN_FILENO;
  if (name == kStandardOutput) return STDOUT_FILENO;
  if (name == kStandardError) return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!name.starts_with(folder)) continue;
    int descriptor = -1;
    const char* const last = name.data() + name.size();
    const auto [end, error] = std::from_chars(name.data() + folder.size(), last, descriptor);
    if (error == std::errc{} && end == last && fcntl(descriptor, F_GETFD) != -1) return descriptor;
  }
  return std::nullopt;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) close(fd_);
}

Descriptor OpenByName(const std::string& name, int flags) {
  if (const auto open = DescriptorOf(name)) return Descriptor(fcntl(*open, F_DUPFD_CLOEXEC, 0));
  return Descriptor(open(name.c_str(), flags | O_CLOEXEC));
}

bool IsStream(const std::string& name) {
  if (DescriptorOf(name)) return true;
  struct stat status {};
  return stat(name.c_str(), &status) == 0 &&
         (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode) || S_ISSOCK(status.st_mode));
}

}  // namespace qarv::command
