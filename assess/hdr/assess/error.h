// What keeps a waveform or a record from being assessed.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace qarv::assess {

/// Why there is no result.  `what()` is one line, without the key.
class Error : public std::runtime_error {
 public:
  /// @param[in] key   the setting or the key of a text that is wrong ("q", "Points[1]"); empty if
  /// it
  ///                  is the record or the text
  /// @param[in] line  of the text, from 1; 0 if it is not in a line
  Error(const std::string& key, const std::string& text, std::size_t line = 0)
      : std::runtime_error(text), key_(key), line_(line) {}
  const std::string& GetKey() const { return key_; }
  std::size_t GetLine() const { return line_; }

 private:
  std::string key_;
  std::size_t line_;
};

}  // namespace qarv::assess
