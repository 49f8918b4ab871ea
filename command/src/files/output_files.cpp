// The files that a command writes: all of them appear complete, or none does.
#include "files/output_files.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "command_error.h"
#include "diagnostics.h"
#include "files/input_file.h"

namespace qarv::command {

namespace fs = std::filesystem;
using platform::FileKind;
using platform::Uninterrupted;

namespace {

[[noreturn]] void FailWithErrno(const std::string& file) { Fail(file, std::strerror(errno)); }

/// Where a name leads, through links that lead to nothing yet as well: the folder as it is, and
/// the name in it.
fs::path WhereLinksLead(const fs::path& name) {
  constexpr int kMostLinks = 40;  // as the system has it
  std::error_code error;
  fs::path path = fs::absolute(name, error);
  for (int i = 0; i < kMostLinks && fs::is_symlink(path, error); ++i) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  const fs::path folder = fs::weakly_canonical(path.parent_path(), error);
  return error ? path : folder / path.filename();
}

void WriteAll(int fd, const char* data, std::size_t n, const std::string& name) {
  while (n != 0) {
    const std::ptrdiff_t written = platform::Write(fd, data, n);
    if (written < 0 && errno != EINTR) FailWithErrno(name);
    if (written <= 0) continue;
    data += written;
    n -= static_cast<std::size_t>(written);
  }
}

void CopyTo(const std::string& target, const std::string& source) {
  const Descriptor from(platform::Open(source, platform::Access::Read));
  const Descriptor to = OpenByName(target, platform::Access::Write);
  if (from.Get() < 0 || to.Get() < 0) FailWithErrno(target);
  std::vector<char> piece(std::size_t{1} << 16);
  for (;;) {
    const std::ptrdiff_t n = platform::Read(from.Get(), piece.data(), piece.size());
    if (n < 0) FailWithErrno(source);
    if (n == 0) return;
    WriteAll(to.Get(), piece.data(), static_cast<std::size_t>(n), target);
  }
}

}  // namespace

/// What is known of a target before it is written.
struct OutputFiles::Target {
  explicit Target(const std::string& name);
  bool IsRegular() const { return facts && facts->kind == FileKind::Regular; }

  std::string path;  // where links lead; of a stream its name
  bool stream = false;
  bool standardOutput = false;
  std::optional<platform::FileFacts> facts;  // none if there is no such file
  std::string problem;                       // empty if there is none
};

OutputFiles::Target::Target(const std::string& name) {
  if (name.empty()) {
    problem = "cannot be written";
    return;
  }
  const std::optional<int> descriptor = DescriptorOf(name);
  stream = IsStream(name);
  path = stream ? name : WhereLinksLead(name).string();
  facts = descriptor ? platform::FactsOf(*descriptor) : platform::FactsOf(path);
  if (!facts && errno != ENOENT) problem = std::strerror(errno);
  if (path.ends_with('/')) problem = "cannot be written";
  standardOutput = descriptor == platform::kOutput;
  // A file that standard output or standard error goes to: it would be lost to them if another took
  // its name.
  for (const char* const open : {kStandardOutput, kStandardError}) {
    const auto other = IsRegular() ? platform::FactsOf(*DescriptorOf(open)) : std::nullopt;
    if (!other || other->id != facts->id) continue;
    stream = true;
    path = open;
    standardOutput = path == kStandardOutput;
    return;
  }
  if (facts && !stream && !IsRegular()) problem = "is not a regular file";
}

OutputFiles::~OutputFiles() {
  entries_.clear();
  while (!folders_.empty()) folders_.pop_back();
}

/// Where a target is made: beside it, so that it can be renamed; of a stream elsewhere.
std::string OutputFiles::FolderOf(const Target& target) {
  if (!target.stream) return fs::path(target.path).parent_path().string();
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  if (error) Fail(target.path, "there is no folder for temporary files");
  return folder.string();
}

/// Makes an empty file that was not there before.
std::unique_ptr<Perishable> OutputFiles::MakeTemporary(const std::string& folder,
                                                       const std::string& target,
                                                       std::optional<unsigned> mode) {
  const Uninterrupted guard;  // from here until the file is known to be perishable
  for (std::size_t number = entries_.size();; ++number) {
    // Short, because the target's name may be as long as a name can be.
    const std::string name = fmt::format(".qarv-wave.{}-{}", platform::ProcessNumber(), number);
    const std::string path = (fs::path(folder) / name).string();
    const Descriptor file(platform::Create(path, mode));
    if (file.Get() >= 0) return std::make_unique<Perishable>(path, Perishable::Kind::File);
    if (errno != EEXIST) FailWithErrno(target);
  }
}

std::string OutputFiles::WhyNot(const std::string& target) const {
  const Target found(target);
  if (!found.problem.empty()) return found.problem;
  if (found.IsRegular() && IsInput(found.facts->id)) return "is an input";
  if (paths_.contains(found.path) || (found.facts && files_.contains(found.facts->id))) {
    return "is written twice";
  }
  if (!DescriptorOf(found.path) && found.facts && !platform::IsWritable(found.path)) {
    return std::strerror(errno);
  }
  return "";
}

std::string OutputFiles::Reserve(const std::string& target) {
  const std::string problem = WhyNot(target);
  if (!problem.empty()) Fail(target, problem);
  const Target found(target);
  // Where there was a file already, its mode stays.
  const auto mode = found.facts && !found.stream ? std::optional(found.facts->mode) : std::nullopt;
  entries_.push_back({found.stream ? Way::Copy : Way::Rename, found.path,
                      MakeTemporary(FolderOf(found), target, mode)});
  paths_.insert(found.path);
  if (found.facts) files_.insert(found.facts->id);
  standardOutput_ = standardOutput_ || found.standardOutput;
  return entries_.back().temporary->GetPath();
}

std::string OutputFiles::Scratch(const std::string& target) {
  entries_.push_back({Way::Drop, target, MakeTemporary(FolderOf(Target(target)), target, {})});
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
    if (!platform::MakeFolder(it->string())) FailWithErrno(folder);
    folders_.push_back(std::make_unique<Perishable>(it->string(), Perishable::Kind::Folder));
  }
  if (!fs::is_directory(folder, error)) Fail(folder, "is not a folder");
}

void OutputFiles::Commit(const std::string& text) {
  for (const Entry& entry : entries_) {  // what was read after it was reserved
    if (entry.way != Way::Rename) continue;
    const Target target(entry.target);
    if (target.IsRegular() && IsInput(target.facts->id)) Fail(entry.target, "is an input");
  }
  // Streams first: they may fail, and wait for their reader as long as it likes.
  for (const Entry& entry : entries_) {
    if (entry.way == Way::Copy) CopyTo(entry.target, entry.temporary->GetPath());
  }
  if (standardOutput_) {
    Diagnose(text);
  } else {
    Print(text);
  }
  const Uninterrupted guard;  // all of them or none
  for (const Entry& entry : entries_) {
    if (entry.way != Way::Rename) continue;
    if (!platform::Replace(entry.temporary->GetPath(), entry.target)) {
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
