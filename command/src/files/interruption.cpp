// What an interrupted run leaves behind: nothing.
//
// A handler may be called between any two instructions.  It reads a list whose nodes are complete
// before they are linked and never go away, and calls only what a handler may call.
#include "files/interruption.h"

#include <atomic>

#include "platform/platform.h"

namespace qarv::command {

struct PerishableNode {
  std::string path;
  Perishable::Kind kind;
  std::atomic<bool> there;
  PerishableNode* next;  // the one before it

  void Remove() const {
    if (kind == Perishable::Kind::Folder) {
      platform::RemoveFolder(path.c_str());
    } else {
      platform::RemoveFile(path.c_str());
    }
  }
};

namespace {

std::atomic<PerishableNode*> g_newest{
    nullptr};  // of the nodes; what is in a folder comes before it

void RemoveAll() {
  for (const PerishableNode* node = g_newest.load(); node != nullptr; node = node->next) {
    if (node->there.load()) node->Remove();
  }
}

}  // namespace

void CleanUpWhenInterrupted() { platform::CallWhenInterrupted(RemoveAll); }

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

}  // namespace qarv::command
