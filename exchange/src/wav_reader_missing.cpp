// Sound files where there is no libsndfile: they are written, and not read.
#include "exchange/error.h"
#include "exchange/wav.h"

namespace qarv::exchange {

std::vector<Signal> ReadWav(Bytes /*bytes*/) {
  throw Error("is a sound file, which this build does not read: it has no libsndfile");
}

}  // namespace qarv::exchange
