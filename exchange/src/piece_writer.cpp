// Text on its way to a sink, in pieces whose size does not depend on how much there is.
#include "piece_writer.h"

namespace qarv::exchange {

void PieceWriter::Append(std::string_view bytes) {
  text_.append(bytes);
  if (text_.size() >= kPiece) Flush();
}

void PieceWriter::Flush() {
  if (text_.size() != 0) sink_({text_.data(), text_.size()});
  text_.clear();
}

}  // namespace qarv::exchange
