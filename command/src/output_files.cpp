// The files that a command writes: all of them appear complete, or none does.
#include "output_files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "input_file.h"
#include "text.h"

namespace qarv::command {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void FailWithErrno(const std::string& file) { Fail(file, std::strerror(errno)); }

/// Makes an empty file that was not there before, beside the target.
std::unique_ptr<Perishable> MakeTemporary(const fs::path& target) {
  const Uninterrupted guard;  // from here until the file is known to be perishable
  for (int attempt = 0;; ++attempt) {
    const std::string name =
        fmt::format(".{}.{}-{}", target.filename().string(), getpid(), attempt);
    const std::string path = (target.parent_path() / name).string();
    const int fd = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (fd >= 0) {
      close(fd);
      return std::make_unique<Perishable>(path, Perishable::Kind::File);
    }
    if (errno != EEXIST) FailWithErrno(target.string());
  }
}

}  // namespace

OutputFiles::~OutputFiles() {
  entries_.clear();
  while (!folders_.empty()) folders_.pop_back();
}

std::string OutputFiles::Reserve(const std::string& target) {
  std::error_code error;
  const fs::path place = fs::weakly_canonical(target, error);  // where a link points to
  if (error || target.empty()) Fail(target, "cannot be written");
  if (fs::exists(place, error) && !fs::is_regular_file(place, error)) {
    Fail(target, "is not a regular file");
  }
  if (IsInput(place)) Fail(target, "is an input");
  for (const Entry& entry : entries_) {
    if (entry.target == place.string()) Fail(target, "is written twice");
  }
  if (fs::exists(place, error) && access(place.c_str(), W_OK) != 0) FailWithErrno(target);
  entries_.push_back({place.string(), MakeTemporary(place)});
  return entries_.back().temporary->GetPath();
}

std::string OutputFiles::Scratch(const std::string& target) {
  entries_.push_back({"", MakeTemporary(fs::absolute(target))});
  return entries_.back().temporary->GetPath();
}

void OutputFiles::MakeFolder(const std::string& folder) {
  std::vector<fs::path> missing;
  std::error_code error;
  for (fs::path path = fs::absolute(folder).lexically_normal(); !fs::exists(path, error);
       path = path.parent_path()) {
    if (path.has_filename()) missing.push_back(path);
  }
  for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
    const Uninterrupted guard;
    if (mkdir(it->c_str(), 0777) != 0) FailWithErrno(folder);
    folders_.push_back(std::make_unique<Perishable>(it->string(), Perishable::Kind::Folder));
  }
  if (!fs::is_directory(folder, error)) Fail(folder, "is not a folder");
}

void OutputFiles::Commit() {
  for (const Entry& entry : entries_) {  // what was read after it was reserved
    if (!entry.target.empty() && IsInput(entry.target)) Fail(entry.target, "is an input");
  }
  const Uninterrupted guard;  // all of them or none
  for (const Entry& entry : entries_) {
    if (entry.target.empty()) continue;
    if (std::rename(entry.temporary->GetPath().c_str(), entry.target.c_str()) != 0) {
      FailWithErrno(entry.target);
    }
    entry.temporary->Keep();
  }
  for (const auto& folder : folders_) folder->Keep();
  entries_.clear();
  folders_.clear();
}

FilePtr OpenForWriting(const std::string& file) {
  FilePtr out(std::fopen(file.c_str(), "wb"), std::fclose);
  if (!out) FailWithErrno(file);
  return out;
}

void WriteBytes(std::FILE* file, const void* data, std::size_t n, const std::string& name) {
  if (std::fwrite(data, 1, n, file) != n) FailWithErrno(name);
}

void Print(const std::string& text) {
  constexpr const char* kName = "standard output";
  WriteBytes(stdout, text.data(), text.size(), kName);
  if (std::fflush(stdout) != 0) FailWithErrno(kName);
}

void Close(FilePtr file, const std::string& name) {
  if (std::fclose(file.release()) != 0) FailWithErrno(name);
}

void WriteFile(const std::string& file, std::string_view bytes) {
  FilePtr out = OpenForWriting(file);
  WriteBytes(out.get(), bytes.data(), bytes.size(), file);
  Close(std::move(out), file);
}

}  // namespace qarv::command
