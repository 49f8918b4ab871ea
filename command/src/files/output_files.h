// The files that a command writes: all of them appear complete, or none does.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "files/file_name.h"
#include "files/interruption.h"

namespace qarv::command {

/// A file opened for writing, closed at the latest with its owner.
using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// The output files of one run.  Each is made under a temporary name and takes the target's place
/// in Commit; what was not committed is removed again, after an interruption too.  A target that
/// is a stream (standard output, a FIFO, a device) has no place to take: Commit copies to it.
class OutputFiles {
 public:
  OutputFiles() = default;
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;
  ~OutputFiles();

  /// Reserves a target.  Ends the command where it cannot be written, is an input, or was reserved,
  /// under this or another name.
  /// @return the temporary name to write to; the file is there, and empty
  std::string Reserve(const std::string& target);

  /// Why a target cannot be reserved; empty if nothing is known that would keep it from it.
  std::string WhyNot(const std::string& target) const;

  /// A file that is there for the run only, with the target if that is no stream.
  std::string Scratch(const std::string& target);

  /// Makes a folder with what is missing above it.  Where nothing is committed, it disappears
  /// again. Ends the command where that fails.
  void MakeFolder(const std::string& folder);

  /// Puts every reserved file in its place, and says what is for people: on standard output, or on
  /// standard error where standard output is one of the targets.
  void Commit(const std::string& text = "");

 private:
  struct Target;
  enum class Way { Rename, Copy, Drop };
  struct Entry {
    Way way;
    std::string target;  // as it was given, or where its links lead
    std::unique_ptr<Perishable> temporary;
  };

  static std::string FolderOf(const Target& target);
  std::unique_ptr<Perishable> MakeTemporary(const std::string& folder, const std::string& target,
                                            std::optional<unsigned> mode);

  std::vector<Entry> entries_;
  // Of the targets, to find one again: by its name, and what was there by itself.
  std::set<std::string> paths_;
  std::set<FileId> files_;
  bool standardOutput_ = false;  // is one of them
  // That were made.  The newest goes first, as in a handler: the innermost, when its files are
  // gone.
  std::vector<std::unique_ptr<Perishable>> folders_;
};

/// Opens a file for writing.  Ends the command where that fails.
FilePtr OpenForWriting(const std::string& file);

/// Writes bytes, or closes the file.  Ends the command where they did not arrive.
void WriteBytes(std::FILE* file, const void* data, std::size_t n, const std::string& name);
void Close(FilePtr file, const std::string& name);

/// Writes a text to standard output, all the way: what comes after it knows that it has arrived.
void Print(const std::string& text);

/// Writes a whole file.
void WriteFile(const std::string& file, std::string_view bytes);

}  // namespace qarv::command
