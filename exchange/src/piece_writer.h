// Text on its way to a sink, in pieces whose size does not depend on how much there is.
#pragma once

#include <fmt/format.h>

#include <iterator>
#include <string_view>

#include "exchange/waveform.h"

namespace qarv::exchange {

class PieceWriter {
 public:
  /// @param[in] sink  has to outlive it
  explicit PieceWriter(const Sink& sink) : sink_(sink) {}
  PieceWriter(const PieceWriter&) = delete;
  PieceWriter& operator=(const PieceWriter&) = delete;

  /// Appends a text by its format.
  template <class... Args>
  void Print(fmt::format_string<Args...> format, Args&&... args) {
    fmt::format_to(std::back_inserter(text_), format, std::forward<Args>(args)...);
    if (text_.size() >= kPiece) Flush();
  }
  void Append(std::string_view bytes);

  /// Hands over what is left; nothing is without it.
  void Flush();

 private:
  static constexpr std::size_t kPiece = std::size_t{1} << 16;  // [byte]

  const Sink& sink_;
  fmt::memory_buffer text_;
};

}  // namespace qarv::exchange
