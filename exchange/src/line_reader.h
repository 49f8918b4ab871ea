// The lines of a text or a stream, one after the other.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "common/int_types.h"

namespace qarv::exchange {

class LineReader {
 public:
  explicit LineReader(std::string_view text) : rest_(text) {}
  /// Throws Error where the stream has failed already.
  explicit LineReader(std::istream& in);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  /// The next line, without its end; false at the end of the text.
  /// Throws Error where it has more than 65536 bytes.
  bool Next(std::string* line);

  /// The number of the last line, from 1; 0 before it was asked for one.
  common::uint64 GetNumber() const { return number_; }

 private:
  bool Fill();

  std::streambuf* stream_ = nullptr;  // none for a text
  std::vector<char> buffer_;          // that was read last
  std::string_view rest_;             // that was not handed out yet
  common::uint64 number_ = 0;
};

}  // namespace qarv::exchange
