// The lines of a text or a stream, one after the other.
#include "line_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <istream>

#include "exchange/error.h"

namespace qarv::exchange {
namespace {

constexpr std::size_t kLongestLine = std::size_t{1} << 16;  // [byte]
constexpr std::size_t kPiece = std::size_t{1} << 16;        // [byte] read at a time

}  // namespace

LineReader::LineReader(std::istream& in) : stream_(in.rdbuf()), buffer_(kPiece) {
  if (in.fail() || stream_ == nullptr) throw Error("cannot be read");
}

/// Takes what the stream has at hand, so that a line of a slow one is seen when it is there.  Asks
/// the stream's buffer itself, whose exceptions the stream would keep.
bool LineReader::Fill() {
  using Traits = std::streambuf::traits_type;
  if (stream_ == nullptr || Traits::eq_int_type(stream_->sgetc(), Traits::eof())) return false;
  const auto most = static_cast<std::streamsize>(kPiece);
  const std::streamsize ready = std::clamp(stream_->in_avail(), std::streamsize{1}, most);
  const std::streamsize n = stream_->sgetn(buffer_.data(), ready);
  rest_ = {buffer_.data(), static_cast<std::size_t>(n)};
  return n != 0;
}

bool LineReader::Next(std::string* line) {
  line->clear();
  if (rest_.empty() && !Fill()) return false;
  ++number_;
  do {
    const std::size_t end = rest_.find('\n');
    const std::string_view piece = rest_.substr(0, end);
    if (line->size() + piece.size() > kLongestLine) {
      throw Error(fmt::format("has a line of more than {} bytes", kLongestLine));
    }
    line->append(piece);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (end != std::string_view::npos) break;
  } while (Fill());
  return true;
}

}  // namespace qarv::exchange
