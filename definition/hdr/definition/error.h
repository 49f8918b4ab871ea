// What is wrong with a definition: the one exception type of the library.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace qarv::definition {

/// Why there is no definition, or no waveform of one.  `what()` is one line: the key, if there is
/// one, and what is wrong.
class Error : public std::runtime_error {
 public:
  enum class Kind {
    Input,    // a text or a record that cannot be used
    Refused,  // parameters of which there is no waveform
  };
  /// @param[in] key   where in the definition ("Classical.TolUserDef.TolMainU"); empty for all of
  /// it
  /// @param[in] line  of the text, from 1; 0 if it is not known
  Error(Kind kind, const std::string& key, const std::string& text, std::size_t line = 0);

  Kind GetKind() const { return kind_; }
  const std::string& GetKey() const { return key_; }
  std::size_t GetLine() const { return line_; }
  /// What is wrong, without the key.
  const std::string& GetText() const { return text_; }

 private:
  Kind kind_;
  std::string key_;
  std::string text_;
  std::size_t line_;
};

}  // namespace qarv::definition
