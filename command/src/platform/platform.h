// What the command asks of the operating system: open files, interruptions, another program.
//
// posix.cpp answers for Linux, windows.cpp for Windows; nothing else in the command knows which it
// is.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "common/int_types.h"

namespace qarv::command::platform {

// ---- Files -------------------------------------------------------------------------------------
// What fails leaves its reason in errno.

inline constexpr int kInput = 0;  // the descriptors of the standard streams
inline constexpr int kOutput = 1;
inline constexpr int kError = 2;

/// What tells a file from every other one, whatever it is called.
using FileId = std::pair<common::uint64, common::uint64>;

enum class FileKind { Regular, Folder, Pipe, CharacterDevice, BlockDevice };

struct FileFacts {
  FileKind kind;
  FileId id;
  unsigned mode;          // who may do what with it
  common::int64 written;  // when it was written last: seconds since the start of 1970, UTC
  common::uint64 size;    // [byte]; 0 where nobody knows, as of a pipe
};

/// What a descriptor or a name stands for; nothing where it stands for none.
std::optional<FileFacts> FactsOf(int fd);
std::optional<FileFacts> FactsOf(const std::string& name);

enum class Access { Read, Write };

/// @return a descriptor; below 0 where it cannot be opened
int Open(const std::string& name, Access access);
/// Makes a file that was not there before, and opens it for writing.
/// @param[in] mode  of the file; as it is usual here where there is none
int Create(const std::string& name, std::optional<unsigned> mode);
int Duplicate(int fd);
void Close(int fd);

bool IsOpen(int fd);
bool IsTerminal(int fd);
bool IsOpenForReading(int fd);
bool IsWritable(const std::string& name);

/// @return the bytes that were read or written; below 0 where that fails
std::ptrdiff_t Read(int fd, char* data, std::size_t n);
std::ptrdiff_t Write(int fd, const char* data, std::size_t n);

bool MakeFolder(const std::string& name);
/// Gives a file another name, in place of a file that has it.
bool Replace(const std::string& from, const std::string& to);
/// May be called while the run is interrupted.
void RemoveFile(const char* name);
void RemoveFolder(const char* name);

/// A number that no other run has at the same time.
int ProcessNumber();

/// Makes the standard streams ready: they take bytes as they are, and those that are closed get
/// something to refuse their use.
void PrepareStandardStreams();

/// Has a write that nobody takes fail, as others do, instead of ending the run.
void FailWhereNobodyReads();

// ---- Interruptions -----------------------------------------------------------------------------

/// Has an interruption call a function, which may call only what a signal handler may, and end the
/// run.  Interruptions that are ignored stay ignored.
void CallWhenInterrupted(void (*function)());

/// Holds interruptions back for as long as the object lives.
class Uninterrupted {
 public:
  Uninterrupted();
  Uninterrupted(const Uninterrupted&) = delete;
  Uninterrupted& operator=(const Uninterrupted&) = delete;
  ~Uninterrupted();
};

// ---- Another program ---------------------------------------------------------------------------

/// How a run of a program has ended.
struct Outcome {
  bool started;
  bool succeeded;
  std::string said;  // on standard error, or why it could not be started
};

/// Has gnuplot read a script from its standard input, with its default settings.  An interruption
/// ends it first.
Outcome FeedGnuplot(const std::string& script);

}  // namespace qarv::command::platform
