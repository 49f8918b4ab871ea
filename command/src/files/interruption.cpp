// What an interrupted run leaves behind: nothing.
//
// A handler may be called between any two instructions.  It reads a list whose nodes are complete
// before they are linked and never go away, and calls only what a handler may call.
#include "files/interruption.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>

namespace qarv::command {

struct PerishableNode {
  std::string path;
  Perishable::Kind kind;
  std::atomic<bool> there;
  PerishableNode* next;  // the one before it

  void Remove() const {
    if (kind == Perishable::Kind::Folder) {
      rmdir(path.c_str());
    } else {
      unlink(path.c_str());
    }
  }
};

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<PerishableNode*> g_newest{
    nullptr};  // of the nodes; what is in a folder comes before it
std::atomic<pid_t> g_child{0};

void OnInterruption(int signal) {
  const pid_t child = g_child.load();
  if (child > 0) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  for (const PerishableNode* node = g_newest.load(); node != nullptr; node = node->next) {
    if (node->there.load()) node->Remove();
  }
  raise(signal);  // with its default action, which ends the run as the caller expects
}

sigset_t SignalSet() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kSignals) sigaddset(&set, signal);
  return set;
}

}  // namespace

void CleanUpWhenInterrupted() {
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

Perishable::Perishable(const std::string& path, Kind kind)
    : node_(new PerishableNode{path, kind, true, g_newest.load()}) {
  g_newest.store(node_);
}

Perishable::~Perishable() {
  if (!node_->there.load()) return;
  node_->Remove();
  node_->there.store(false);
}

const std::string& Perishable::GetPath() const { return node_->path; }

void Perishable::Keep() { node_->there.store(false); }

Uninterrupted::Uninterrupted() {
  const sigset_t set = SignalSet();
  sigprocmask(SIG_BLOCK, &set, &before_);
}

Uninterrupted::~Uninterrupted() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

void NoteChild(pid_t child) { g_child.store(child); }

}  // namespace qarv::command
