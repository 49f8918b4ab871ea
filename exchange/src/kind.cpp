// What kind of sample file it is, by its content.
#include "exchange/kind.h"

#include <algorithm>
#include <string_view>

#include "exchange/csv.h"
#include "exchange/error.h"
#include "exchange/mat.h"
#include "exchange/npy.h"
#include "exchange/uff.h"
#include "exchange/wav.h"
#include "text/text.h"

namespace qarv::exchange {

using text::kByteOrderMark;
using text::Trimmed;

namespace {

bool IsText(std::string_view head) {
  return std::all_of(head.begin(), head.end(), [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return (code >= 0x20 && code != 0x7F) || c == '\t' || c == '\r' || c == '\n';
  });
}

bool IsWav(std::string_view head) {
  return (head.starts_with("RIFF") || head.starts_with("RIFX") || head.starts_with("RF64")) &&
         head.size() >= 12 && head.substr(8, 4) == "WAVE";
}

}  // namespace

Kind DetectKind(Bytes bytes) {
  constexpr std::size_t kHead = 64;  // [byte] looked at
  std::string_view head = TextOf(bytes).substr(0, kHead);
  if (head.starts_with(kNpyMagic)) return Kind::Npy;
  if (IsWav(head)) return Kind::Wav;
  if (head.starts_with("MATLAB 5.0 MAT-file") || head.starts_with("MATLAB 7.3 MAT-file")) {
    return Kind::Mat;
  }
  if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")) return Kind::Csv;
  if (head.starts_with(kByteOrderMark)) head.remove_prefix(kByteOrderMark.size());
  const std::string_view line = head.substr(0, head.find('\n'));
  if (line.starts_with(kUffDelimiter) && Trimmed(line) == Trimmed(kUffDelimiter)) return Kind::Uff;
  const std::size_t first = head.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos || head[first] == '{') return Kind::Unknown;
  return IsText(head) ? Kind::Csv : Kind::Unknown;
}

std::vector<Signal> ReadSignals(Bytes bytes) {
  switch (DetectKind(bytes)) {
    case Kind::Csv: {
      std::vector<Signal> signals;
      signals.push_back(ReadCsv(bytes));
      return signals;
    }
    case Kind::Uff:
      return ReadUff(bytes);
    case Kind::Npy:
      return ReadNpy(bytes);
    case Kind::Wav:
      return ReadWav(bytes);
    case Kind::Mat:
      return ReadMat(bytes);
    case Kind::Unknown:
      break;
  }
  throw Error("is no sample file of a known kind");
}

}  // namespace qarv::exchange
