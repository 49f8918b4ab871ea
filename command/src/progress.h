// How far long work has come: one line on a terminal, nothing anywhere else.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace qarv::command {

/// Shows progress on standard error where that is a terminal, and erases it when the work is done.
class Progress {
 public:
  explicit Progress(std::size_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// Says what the next of the parts is, a few times a second at most.
  void Show(std::size_t done, const std::string& next);

 private:
  std::size_t total_;
  bool terminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point last_;
};

}  // namespace qarv::command
