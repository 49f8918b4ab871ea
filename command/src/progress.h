// How far long work has come: one line on a terminal, nothing anywhere else.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace qarv::command {

/// When something is said: after a time of silence, then a few times a second.
class Pace {
 public:
  using Time = std::chrono::steady_clock::time_point;
  Pace(std::chrono::milliseconds silence, Time start) : next_(start + silence) {}

  bool IsDue(Time now);

 private:
  Time next_;
};

/// Shows progress on standard error where that is a terminal, and erases it when the work is done.
class Progress {
 public:
  static constexpr std::chrono::milliseconds kPause{100};

  /// @param[in] silence  work that ends sooner says nothing
  explicit Progress(std::size_t total, std::chrono::milliseconds silence = kPause);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// Says what the next of the parts is, a few times a second at most.
  void Show(std::size_t done, const std::string& next);

 private:
  std::size_t total_;
  bool terminal_;
  bool shown_ = false;
  Pace pace_;
};

}  // namespace qarv::command
