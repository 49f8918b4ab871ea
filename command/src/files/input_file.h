// Input files: read once from their beginning, whatever they are, and remembered.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/int_types.h"
#include "files/file_name.h"

namespace qarv::command {

/// The most bytes that are read of a file, however many it may say it has.
inline constexpr common::uint64 kLargestFile = common::uint64{1} << 32;        // [byte]
inline constexpr common::uint64 kLargestDefinition = common::uint64{1} << 26;  // [byte]

/// A file, a FIFO or an open descriptor that is read.  Every member ends the command where that
/// fails, or where there is more than `kLargestFile`.
class InputFile {
 public:
  /// Not explicit: whatever reads a file takes its name as well.
  InputFile(const std::string& name);

  const std::string& GetName() const { return name_; }
  /// [%] of it that has been read; 0 where nobody knows, as of a pipe.
  std::size_t GetPercent() const;

  /// What it begins with, 64 bytes at least if it has them.  Before the first reading only.
  std::string_view Head();

  /// All that has not been read yet.
  /// @param[in] most  [byte] that it may have
  std::vector<unsigned char> ReadAll(common::uint64 most = kLargestFile);

  /// The bytes that come next, as many as are at hand; none at the end of the file.  They stay
  /// until more are asked for.
  std::span<char> ReadPiece();

 private:
  bool Append();
  void Fill();

  std::string name_;
  Descriptor file_;
  common::uint64 size_;       // [byte]; 0 where nobody knows
  std::string buffer_;        // that was read last
  std::size_t at_ = 0;        // of it that was handed out
  common::uint64 count_ = 0;  // [byte] read so far
};

/// The bytes of a file.
std::vector<unsigned char> ReadFile(const std::string& file);

/// Whether a file was read: no output may replace it.
bool IsInput(const FileId& file);

}  // namespace qarv::command
