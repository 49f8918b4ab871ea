// What an interrupted run leaves behind: nothing.
#pragma once

#include <string>

namespace qarv::command {

/// Has the signals that end a run (interrupt, termination, hang-up) end it without its perishable
/// files, folders and its child process.  Signals that are ignored stay ignored.
void CleanUpWhenInterrupted();

struct PerishableNode;

/// A file or an empty folder that disappears with its object, and where the run is interrupted.
class Perishable {
 public:
  enum class Kind { File, Folder };

  /// @param[in] path  absolute, or as it counts from a working folder that does not change
  Perishable(const std::string& path, Kind kind);
  Perishable(const Perishable&) = delete;
  Perishable& operator=(const Perishable&) = delete;
  ~Perishable();

  const std::string& GetPath() const;
  /// From now on it stays.
  void Keep();

 private:
  PerishableNode* node_;
};

}  // namespace qarv::command
