// What the command asks of the operating system, on Windows.
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

#include "platform/platform.h"

namespace qarv::command::platform {

// ---- Files -------------------------------------------------------------------------------------

namespace {

HANDLE HandleOf(int fd) { return reinterpret_cast<HANDLE>(_get_osfhandle(fd)); }

FileKind KindOf(unsigned mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return FileKind::Regular;
    case S_IFDIR:
      return FileKind::Folder;
    case S_IFCHR:
      return FileKind::CharacterDevice;
    default:
      return FileKind::Pipe;
  }
}

/// The facts that a handle has beyond those of its descriptor: the latter numbers no files.
FileFacts FactsOf(HANDLE handle, const struct _stat64& status) {
  FileFacts facts{KindOf(status.st_mode),
                  {},
                  status.st_mode & 0777U,
                  status.st_mtime,
                  static_cast<common::uint64>(status.st_size)};
  BY_HANDLE_FILE_INFORMATION information{};
  if (GetFileInformationByHandle(handle, &information) != 0) {
    facts.id = {information.dwVolumeSerialNumber,
                common::uint64{information.nFileIndexHigh} << 32 | information.nFileIndexLow};
  } else {
    // A pipe or a terminal, which is the same as no other.
    facts.id = {std::numeric_limits<common::uint64>::max(), reinterpret_cast<std::size_t>(handle)};
  }
  return facts;
}

/// The most bytes that one call reads or writes.
unsigned Part(std::size_t n) { return static_cast<unsigned>(std::min(n, std::size_t{1} << 24)); }

}  // namespace

std::optional<FileFacts> FactsOf(int fd) {
  struct _stat64 status {};
  if (_fstat64(fd, &status) != 0) return std::nullopt;
  return FactsOf(HandleOf(fd), status);
}

std::optional<FileFacts> FactsOf(const std::string& name) {
  struct _stat64 status {};
  if (_stat64(name.c_str(), &status) != 0) return std::nullopt;
  // With this flag folders open too.
  constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE handle = CreateFileA(name.c_str(), 0, kShared, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  const FileFacts facts = FactsOf(handle, status);
  if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
  return facts;
}

int Open(const std::string& name, Access access) {
  return _open(name.c_str(),
               (access == Access::Read ? _O_RDONLY : _O_WRONLY) | _O_BINARY | _O_NOINHERIT);
}

int Create(const std::string& name, std::optional<unsigned> /*mode*/) {
  // Deliberate: whatever the mode was; who may write a file is no matter of modes here.
  return _open(name.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT,
               _S_IREAD | _S_IWRITE);
}

int Duplicate(int fd) { return _dup(fd); }
void Close(int fd) { _close(fd); }
bool IsOpen(int fd) { return HandleOf(fd) != INVALID_HANDLE_VALUE; }
bool IsTerminal(int fd) { return _isatty(fd) != 0; }
bool IsOpenForReading(int /*fd*/) { return true; }
bool IsWritable(const std::string& name) { return _access(name.c_str(), 2) == 0; }
std::ptrdiff_t Read(int fd, char* data, std::size_t n) { return _read(fd, data, Part(n)); }
std::ptrdiff_t Write(int fd, const char* data, std::size_t n) { return _write(fd, data, Part(n)); }
bool MakeFolder(const std::string& name) { return _mkdir(name.c_str()) == 0; }

bool Replace(const std::string& from, const std::string& to) {
  // The C library's takes no name that there is.
  std::error_code error;
  std::filesystem::rename(from, to, error);
  errno = error ? EACCES : 0;
  return !error;
}

void RemoveFile(const char* name) { _unlink(name); }
void RemoveFolder(const char* name) { _rmdir(name); }
int ProcessNumber() { return _getpid(); }

void PrepareStandardStreams() {
  for (const int fd : {kInput, kOutput, kError}) {
    if (IsOpen(fd)) _setmode(fd, _O_BINARY);
  }
}

void FailWhereNobodyReads() {}  // such a write fails here anyway

// ---- Interruptions -----------------------------------------------------------------------------

namespace {

std::atomic<void (*)()> g_function{nullptr};

/// Held by who is not to be interrupted, and by the interruption, which comes in a thread of its
/// own.
struct Section {
  Section() { InitializeCriticalSection(&section); }
  CRITICAL_SECTION section{};  // in its place for good, as it has to be
};
CRITICAL_SECTION* TheSection() {
  static Section section;
  return &section.section;
}

BOOL WINAPI OnInterruption(DWORD /*event*/) {
  EnterCriticalSection(TheSection());
  g_function.load()();
  return FALSE;  // what comes next ends the run
}

}  // namespace

void CallWhenInterrupted(void (*function)()) {
  g_function.store(function);
  TheSection();
  SetConsoleCtrlHandler(OnInterruption, TRUE);
}

Uninterrupted::Uninterrupted() { EnterCriticalSection(TheSection()); }
Uninterrupted::~Uninterrupted() { LeaveCriticalSection(TheSection()); }

// ---- Another program ---------------------------------------------------------------------------

Outcome FeedGnuplot(const std::string& /*script*/) {
  return {false, false, "on Windows no plots are drawn"};
}

}  // namespace qarv::command::platform
