// Whole input files.
#include "input_file.h"

#include <array>
#include <cstdio>

#include "output_files.h"
#include "text.h"

namespace qarv::command {

std::vector<unsigned char> ReadFile(const std::string& file) {
  const FilePtr in(std::fopen(file.c_str(), "rb"), std::fclose);
  std::vector<unsigned char> bytes;
  std::array<unsigned char, 65536> piece{};
  std::size_t n = 0;
  while (in && (n = std::fread(piece.data(), 1, piece.size(), in.get())) != 0) {
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(n));
  }
  // A folder opens like a file, and fails at the first read.
  if (!in || std::ferror(in.get()) != 0) {
    throw CommandError(kBadInput, OneLine(file + ": cannot be read"));
  }
  return bytes;
}

}  // namespace qarv::command
