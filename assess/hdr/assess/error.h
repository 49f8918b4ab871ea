// What keeps a waveform or a record from being assessed.
#pragma once

#include <stdexcept>
#include <string>

namespace qarv::assess {

/// Why there is no result.  `what()` is one line, without the key.
class Error : public std::runtime_error {
 public:
  /// @param[in] key  the setting that is wrong ("q"); empty if it is the record
  Error(const std::string& key, const std::string& text) : std::runtime_error(text), key_(key) {}
  const std::string& GetKey() const { return key_; }

 private:
  std::string key_;
};

}  // namespace qarv::assess
