// MAT files where there is no libmatio: they are not read.
#include "exchange/error.h"
#include "exchange/mat.h"

namespace qarv::exchange {

std::vector<Signal> ReadMat(Bytes /*bytes*/) {
  throw Error("is a MAT file, which this build does not read: it has no libmatio");
}

}  // namespace qarv::exchange
