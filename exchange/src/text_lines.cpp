// The lines of a text of any encoding that loggers write.
#include "text_lines.h"

#include <fmt/format.h>

#include "exchange/error.h"
#include "text/text.h"

namespace qarv::exchange {

namespace {

constexpr std::size_t kLongestLine = std::size_t{1} << 16;  // [byte]

void AppendUtf8(char32_t c, std::string* out) {
  const auto add = [out](char32_t byte) { out->push_back(static_cast<char>(byte)); };
  if (c < 0x80) {
    add(c);
  } else if (c < 0x800) {
    add(0xC0 | c >> 6);
    add(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    add(0xE0 | c >> 12);
    add(0x80 | (c >> 6 & 0x3F));
    add(0x80 | (c & 0x3F));
  } else {
    add(0xF0 | c >> 18);
    add(0x80 | (c >> 12 & 0x3F));
    add(0x80 | (c >> 6 & 0x3F));
    add(0x80 | (c & 0x3F));
  }
}

}  // namespace

void TextLines::Decode(std::string_view bytes) {
  const std::size_t high = encoding_ == Encoding::Utf16Big ? 0 : 1;
  left_ += bytes;
  decoded_.clear();
  const auto unit = [&](std::size_t i) {
    const auto byte = [&](std::size_t k) {
      return static_cast<char32_t>(static_cast<unsigned char>(left_[k]));
    };
    return byte(i + high) << 8 | byte(i + 1 - high);
  };
  std::size_t i = 0;
  for (; i + 2 <= left_.size(); i += 2) {
    char32_t c = unit(i);
    if (c == 0xFEFF) continue;  // the byte order mark
    if (c >= 0xD800 && c < 0xDC00) {
      if (i + 4 > left_.size()) break;
      const char32_t low = unit(i + 2);
      if (low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    AppendUtf8(c, &decoded_);
  }
  left_.erase(0, i);
  rest_ = decoded_;
}

bool TextLines::Fill() {
  constexpr std::size_t kKnown = 4;  // [byte] that tell the encoding
  std::span<const char> piece = next_();
  if (encoding_ == Encoding::Unknown) {
    while (!piece.empty() && start_.size() + piece.size() < kKnown) {
      start_.append(piece.data(), piece.size());
      piece = next_();
    }
    if (!start_.empty()) {
      start_.append(piece.data(), piece.size());
      piece = start_;
    }
    const std::string_view head(piece.data(), piece.size());
    const auto isNul = [&](std::size_t i) { return i < head.size() && head[i] == '\0'; };
    encoding_ = head.starts_with("\xFF\xFE") || (isNul(1) && isNul(3))   ? Encoding::Utf16Little
                : head.starts_with("\xFE\xFF") || (isNul(0) && isNul(2)) ? Encoding::Utf16Big
                                                                         : Encoding::Utf8;
    if (head.starts_with(text::kByteOrderMark)) piece = piece.subspan(text::kByteOrderMark.size());
  }
  if (encoding_ == Encoding::Utf8) {
    rest_ = {piece.data(), piece.size()};
    return !piece.empty();
  }
  if (piece.empty()) return false;
  Decode({piece.data(), piece.size()});
  return !rest_.empty() || Fill();
}

/// A CR that ends the piece may be half a line's end: then it is not known yet.
void TextLines::FindLineEnd() {
  const auto at = rest_.find_first_of("\r\n");
  if (at == std::string_view::npos) return;
  if (rest_[at] == '\n') {
    end_ = '\n';
  } else if (at + 1 < rest_.size()) {
    end_ = rest_[at + 1] == '\n' ? '\n' : '\r';
  }
}

bool TextLines::Next(std::string_view* line) {
  carry_.clear();
  if (rest_.empty() && !Fill()) return false;
  ++number_;
  const auto require = [](std::size_t length) {
    if (length > kLongestLine) {
      throw Error(fmt::format("has a line of more than {} bytes", kLongestLine));
    }
  };
  for (;;) {
    if (end_ == '\0') FindLineEnd();
    // Until an end was seen for certain the piece holds none, or a CR as its last byte.
    const auto at = end_ == '\0' ? std::string_view::npos : rest_.find(end_);
    const std::string_view piece = rest_.substr(0, at);
    require(carry_.size() + piece.size());
    rest_.remove_prefix(at == std::string_view::npos ? rest_.size() : at + 1);
    if (carry_.empty() && at != std::string_view::npos) {
      *line = piece;
      return true;
    }
    carry_ += piece;
    if (at != std::string_view::npos) break;
    const bool afterReturn = end_ == '\0' && carry_.ends_with('\r');
    if (!Fill()) break;
    if (afterReturn) {
      end_ = rest_.starts_with('\n') ? '\n' : '\r';
      if (end_ == '\r') break;
    }
  }
  *line = carry_;
  return true;
}

}  // namespace qarv::exchange
