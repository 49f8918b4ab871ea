// What the command asks of the operating system, on Linux.
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace qarv::command::platform {

// ---- Files -------------------------------------------------------------------------------------

namespace {

FileKind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileKind::Regular;
  if (S_ISDIR(mode)) return FileKind::Folder;
  if (S_ISCHR(mode)) return FileKind::CharacterDevice;
  return S_ISBLK(mode) ? FileKind::BlockDevice : FileKind::Pipe;
}

FileFacts FactsOf(const struct stat& status) {
  return {KindOf(status.st_mode),
          {status.st_dev, status.st_ino},
          status.st_mode & 0777U,
          status.st_mtime,
          static_cast<common::uint64>(status.st_size)};
}

}  // namespace

std::optional<FileFacts> FactsOf(int fd) {
  struct stat status {};
  if (fstat(fd, &status) != 0) return std::nullopt;
  return FactsOf(status);
}

std::optional<FileFacts> FactsOf(const std::string& name) {
  struct stat status {};
  if (stat(name.c_str(), &status) != 0) return std::nullopt;
  return FactsOf(status);
}

int Open(const std::string& name, Access access) {
  return open(name.c_str(), (access == Access::Read ? O_RDONLY : O_WRONLY) | O_CLOEXEC);
}

int Create(const std::string& name, std::optional<unsigned> mode) {
  const int fd = open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode ? 0600U : 0666U);
  if (fd >= 0 && mode && fchmod(fd, *mode) != 0) {
    const int reason = errno;
    close(fd);
    unlink(name.c_str());
    errno = reason;
    return -1;
  }
  return fd;
}

int Duplicate(int fd) { return fcntl(fd, F_DUPFD_CLOEXEC, 0); }
void Close(int fd) { close(fd); }
bool IsOpen(int fd) { return fcntl(fd, F_GETFD) != -1; }
bool IsTerminal(int fd) { return isatty(fd) != 0; }
bool IsOpenForReading(int fd) { return (fcntl(fd, F_GETFL) & O_ACCMODE) != O_WRONLY; }
bool IsWritable(const std::string& name) { return access(name.c_str(), W_OK) == 0; }
std::ptrdiff_t Read(int fd, char* data, std::size_t n) { return read(fd, data, n); }
std::ptrdiff_t Write(int fd, const char* data, std::size_t n) { return write(fd, data, n); }
bool MakeFolder(const std::string& name) { return mkdir(name.c_str(), 0777) == 0; }

bool Replace(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

void RemoveFile(const char* name) { unlink(name); }
void RemoveFolder(const char* name) { rmdir(name); }
int ProcessNumber() { return getpid(); }

void PrepareStandardStreams() {
  // Deliberate: opened the wrong way round, so that whoever reads or writes them is told.
  constexpr std::array<int, 3> kModes{O_WRONLY, O_RDONLY, O_RDONLY};
  for (std::size_t i = 0; i < kModes.size(); ++i) {
    if (IsOpen(static_cast<int>(i))) continue;
    // The lowest free descriptor, which is this one.
    if (open("/dev/null", kModes[i]) < 0) return;
  }
}

void FailWhereNobodyReads() {
  // A reader that goes away early is an error of the write, not the end of the command.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // so is a file that gets too large
}

// ---- Interruptions -----------------------------------------------------------------------------

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<void (*)()> g_function{nullptr};
// The process that an interruption has to end first, because it writes to a perishable file.
std::atomic<pid_t> g_child{0};

void OnInterruption(int signal) {
  const pid_t child = g_child.load();
  if (child > 0) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  g_function.load()();
  raise(signal);  // with its default action, which ends the run as the caller expects
}

sigset_t SignalSet() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kSignals) sigaddset(&set, signal);
  return set;
}

// Of the outermost object alone: those within it would find the signals blocked.
int g_depth = 0;
sigset_t g_before;

}  // namespace

void CallWhenInterrupted(void (*function)()) {
  g_function.store(function);
  for (const int signal : kSignals) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = OnInterruption;
    action.sa_mask = SignalSet();
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

Uninterrupted::Uninterrupted() {
  const sigset_t set = SignalSet();
  if (g_depth++ == 0) sigprocmask(SIG_BLOCK, &set, &g_before);
}

Uninterrupted::~Uninterrupted() {
  if (--g_depth == 0) sigprocmask(SIG_SETMASK, &g_before, nullptr);
}

// ---- Another program ---------------------------------------------------------------------------

namespace {

using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// The environment without the variables that change what gnuplot does.
std::vector<char*> Environment() {
  std::vector<char*> kept;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text(*variable);
    if (!text.starts_with("GNUPLOT_") && !text.starts_with("GNUTERM=")) kept.push_back(*variable);
  }
  kept.push_back(nullptr);
  return kept;
}

/// All that was written to a file.
std::string Contents(std::FILE* file) {
  std::string text;
  std::rewind(file);
  std::array<char, 512> piece{};
  while (const std::size_t n = std::fread(piece.data(), 1, piece.size(), file)) {
    text.append(piece.data(), n);
  }
  return text;
}

}  // namespace

Outcome FeedGnuplot(const std::string& script) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {false, false, std::strerror(errno)};
  FilePtr reader(fdopen(ends[0], "r"), std::fclose);
  FilePtr writer(fdopen(ends[1], "w"), std::fclose);
  // In memory, because a pipe that nobody reads meanwhile could fill.
  FilePtr said(fdopen(memfd_create("gnuplot", MFD_CLOEXEC), "w+"), std::fclose);
  if (!said) return {false, false, std::strerror(errno)};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, fileno(said.get()), STDERR_FILENO);
  pid_t child = 0;
  std::string name = "gnuplot";
  std::string defaults = "-d";  // neither the user's start-up file nor the system's
  std::array<char*, 3> arguments{name.data(), defaults.data(), nullptr};
  int error = 0;
  {
    const Uninterrupted guard;  // until an interruption knows of the child
    error = posix_spawnp(&child, name.c_str(), &actions, nullptr, arguments.data(),
                         Environment().data());
    g_child.store(error == 0 ? child : 0);
  }
  posix_spawn_file_actions_destroy(&actions);
  reader.reset();  // so that a child that ends early is a broken pipe
  if (error != 0) return {};
  const bool sent = std::fwrite(script.data(), 1, script.size(), writer.get()) == script.size();
  const bool flushed = std::fclose(writer.release()) == 0;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  g_child.store(0);
  return {true, sent && flushed && WIFEXITED(status) && WEXITSTATUS(status) == 0,
          Contents(said.get())};
}

}  // namespace qarv::command::platform
