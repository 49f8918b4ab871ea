// What a writer takes: a waveform between its bands, and where the bytes go.
#include "exchange/waveform.h"

#include <ostream>

#include "exchange/error.h"

namespace qarv::exchange {

Sink ToStream(std::ostream& out) {
  return [&out](std::string_view piece) {
    if (!out.write(piece.data(), static_cast<std::streamsize>(piece.size()))) {
      throw Error("cannot be written");
    }
  };
}

void RequireBands(const Waveform& waveform) {
  const std::size_t n = waveform.waveform.size();
  if (waveform.lower.size() != n || waveform.upper.size() != n) {
    throw Error("its bands are not as long as the waveform");
  }
}

}  // namespace qarv::exchange
