// The lines of a text of any encoding that loggers write, looked at where they lie.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "common/int_types.h"
#include "exchange/table.h"

namespace qarv::exchange {

/// Gives line after line without copying those that lie within a piece.  UTF-16 of both byte orders
/// is read as UTF-8; a byte order mark is passed over.  Lines end with CR, LF or both; which of
/// them it is, the first line's end decides.
class TextLines {
 public:
  explicit TextLines(const Pieces& next) : next_(next) {}
  TextLines(const TextLines&) = delete;
  TextLines& operator=(const TextLines&) = delete;

  /// The next line, without its end; it stays until the next one is asked for.  False at the end.
  /// Throws Error where it has more than 65536 bytes.
  bool Next(std::string_view* line);

  /// The number of the last line, from 1.
  common::uint64 GetNumber() const { return number_; }

 private:
  enum class Encoding { Unknown, Utf8, Utf16Little, Utf16Big };

  bool Fill();
  void Decode(std::string_view bytes);
  void FindLineEnd();

  const Pieces& next_;
  Encoding encoding_ = Encoding::Unknown;
  std::string start_;      // what came before there was enough to know the encoding by
  std::string decoded_;    // the piece, where it is not UTF-8
  std::string left_;       // bytes of a character of UTF-16 that is not whole
  std::string carry_;      // a line that began in a piece before
  std::string_view rest_;  // of the piece
  char end_ = '\0';        // of a line, once one was seen
  common::uint64 number_ = 0;
};

}  // namespace qarv::exchange
