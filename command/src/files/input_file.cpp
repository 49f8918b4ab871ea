// Input files.
#include "files/input_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

#include "command_error.h"

namespace qarv::command {

using common::uint64;
using platform::FileKind;

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;  // [byte] read at a time

/// What this run of the command has read.
std::set<FileId>& Inputs() {
  static std::set<FileId> inputs;
  return inputs;
}

[[noreturn]] void FailWithErrno(const std::string& name) {
  Fail(name, errno == ENOENT ? "does not exist"
                             : fmt::format("cannot be read: {}", std::strerror(errno)));
}

Descriptor Opened(const std::string& name) {
  Descriptor file = OpenByName(name, platform::Access::Read);
  const auto facts = file.Get() < 0 ? std::nullopt : platform::FactsOf(file.Get());
  if (!facts) FailWithErrno(name);
  if (facts->kind == FileKind::Folder) Fail(name, "is a folder");
  const bool device =
      facts->kind == FileKind::CharacterDevice || facts->kind == FileKind::BlockDevice;
  const bool readable = platform::IsOpenForReading(file.Get());
  if (device && readable && !platform::IsTerminal(file.Get())) Fail(name, "is a device");
  const bool isNew = Inputs().insert(facts->id).second;
  if (!isNew && (DescriptorOf(name) || facts->kind != FileKind::Regular)) {
    Fail(name, "is read twice");
  }
  return file;
}

}  // namespace

InputFile::InputFile(const std::string& name) : name_(name), file_(Opened(name)) {
  const auto facts = platform::FactsOf(file_.Get());
  size_ = facts && facts->kind == FileKind::Regular ? facts->size : 0;
}

std::size_t InputFile::GetPercent() const {
  if (size_ == 0) return 0;
  // A file may grow while it is read.
  return static_cast<std::size_t>(std::min<uint64>(100, count_ / (size_ / 100 + 1)));
}

bool InputFile::Append() {
  const std::size_t before = buffer_.size();
  buffer_.resize(before + kPiece);
  std::ptrdiff_t n = 0;
  while ((n = platform::Read(file_.Get(), buffer_.data() + before, kPiece)) < 0) {
    if (errno != EINTR) FailWithErrno(name_);
  }
  buffer_.resize(before + static_cast<std::size_t>(n));
  count_ += static_cast<uint64>(n);
  if (count_ > kLargestFile) Fail(name_, fmt::format("is larger than {} bytes", kLargestFile));
  return n != 0;
}

void InputFile::Fill() {
  buffer_.clear();
  at_ = 0;
  Append();
}

std::string_view InputFile::Head() {
  constexpr std::size_t kHead = 64;  // a FIFO may come byte by byte
  while (buffer_.size() < kHead && Append()) {
  }
  return buffer_;
}

std::span<char> InputFile::ReadPiece() {
  if (at_ == buffer_.size()) Fill();
  const std::span<char> piece = std::span(buffer_).subspan(at_);
  at_ = buffer_.size();
  return piece;
}

std::vector<unsigned char> InputFile::ReadAll(uint64 most) {
  std::vector<unsigned char> bytes;
  for (auto piece = ReadPiece(); !piece.empty(); piece = ReadPiece()) {
    bytes.insert(bytes.end(), piece.begin(), piece.end());
    if (bytes.size() > most) Fail(name_, fmt::format("is larger than {} bytes", most));
  }
  return bytes;
}

std::vector<unsigned char> ReadFile(const std::string& file) { return InputFile(file).ReadAll(); }

bool IsInput(const FileId& file) { return Inputs().contains(file); }

}  // namespace qarv::command
