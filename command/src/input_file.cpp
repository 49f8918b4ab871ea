// Whole input files.
#include "input_file.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "output_files.h"
#include "text.h"

namespace qarv::command {

namespace fs = std::filesystem;

namespace {

/// What this run of the command has read.
std::vector<fs::path>& Inputs() {
  static std::vector<fs::path> inputs;
  return inputs;
}

}  // namespace

void NoteInput(const std::string& file) { Inputs().push_back(fs::absolute(file)); }

bool IsInput(const fs::path& file) {
  std::error_code error;
  return std::any_of(Inputs().begin(), Inputs().end(),
                     [&](const fs::path& input) { return fs::equivalent(input, file, error); });
}

std::vector<unsigned char> ReadFile(const std::string& file) {
  NoteInput(file);
  const FilePtr in(std::fopen(file.c_str(), "rb"), std::fclose);
  std::vector<unsigned char> bytes;
  std::array<unsigned char, 65536> piece{};
  std::size_t n = 0;
  while (in && (n = std::fread(piece.data(), 1, piece.size(), in.get())) != 0) {
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(n));
  }
  // A folder opens like a file, and fails at the first read.
  if (!in || std::ferror(in.get()) != 0) {
    Fail(file, "cannot be read");
  }
  return bytes;
}

}  // namespace qarv::command
