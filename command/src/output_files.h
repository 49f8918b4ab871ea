// The files that a command writes: all of them appear complete, or none does.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "interruption.h"

namespace qarv::command {

/// A file opened for writing, closed at the latest with its owner.
using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// The output files of one run.  Each is written under a temporary name beside its target and takes
/// the target's place in Commit; what was not committed is removed again, after an interruption
/// too.
class OutputFiles {
 public:
  OutputFiles() = default;
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;
  ~OutputFiles();

  /// Reserves a target.  Ends the command where it cannot be written, is an input, or was reserved.
  /// @return the temporary name to write to; the file is there, and empty
  std::string Reserve(const std::string& target);

  /// A file beside a target that is there for the run only.
  std::string Scratch(const std::string& target);

  /// Makes a folder with what is missing above it.  Where nothing is committed, it disappears
  /// again. Ends the command where that fails.
  void MakeFolder(const std::string& folder);

  /// Puts every reserved file in its place.
  void Commit();

 private:
  struct Entry {
    std::string target;  // none: a file for the run only
    std::unique_ptr<Perishable> temporary;
  };
  std::vector<Entry> entries_;
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
