// Samples of sound files: all formats, through libsndfile, which is given the bytes in memory.
#include <fmt/format.h>
#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>

#include "exchange/error.h"
#include "exchange/kind.h"
#include "exchange/wav.h"

namespace qarv::exchange {

using common::uint64;

namespace {

/// The bytes of a file, as libsndfile reads them.
struct Memory {
  Bytes bytes;
  sf_count_t at = 0;

  sf_count_t Size() const { return static_cast<sf_count_t>(bytes.size()); }
};

sf_count_t SizeOf(void* memory) { return static_cast<Memory*>(memory)->Size(); }
sf_count_t Tell(void* memory) { return static_cast<Memory*>(memory)->at; }

sf_count_t Seek(sf_count_t offset, int whence, void* data) {
  Memory& memory = *static_cast<Memory*>(data);
  const sf_count_t size = memory.Size();
  const sf_count_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? memory.at : size;
  // A damaged header names any place; beyond the end there is nothing to read.
  memory.at = std::clamp(offset, -from, size - from) + from;
  return memory.at;
}

sf_count_t Read(void* out, sf_count_t n, void* data) {
  Memory& memory = *static_cast<Memory*>(data);
  const sf_count_t count = std::clamp<sf_count_t>(n, 0, memory.Size() - memory.at);
  std::copy_n(memory.bytes.begin() + memory.at, count, static_cast<unsigned char*>(out));
  memory.at += count;
  return count;
}

sf_count_t Write(const void* /*data*/, sf_count_t /*n*/, void* /*memory*/) { return 0; }

/// A number of a header, `width` bytes long.
uint64 Word(Bytes bytes, std::size_t at, std::size_t width, bool bigEndian) {
  uint64 word = 0;
  for (std::size_t i = 0; i < width; ++i) {
    word |= uint64{bytes[at + (bigEndian ? width - 1 - i : i)]} << (8 * i);
  }
  return word;
}

/// Throws where the file ends before its samples do, which libsndfile passes over: it gives those
/// that are left.
void RequireWhole(Bytes bytes) {
  constexpr std::size_t kFirst = 12;  // [byte] before the first chunk
  constexpr std::size_t kHead = 8;    // [byte] of a chunk
  constexpr uint64 kUnknown = 0xFFFFFFFF;
  if (DetectKind(bytes) != Kind::Wav) throw Error("is no sound file");
  const std::string_view text = TextOf(bytes);
  const bool bigEndian = text.starts_with("RIFX");
  uint64 large = kUnknown;  // [byte] of the samples, where their chunk cannot say it
  std::size_t at = kFirst;
  while (bytes.size() >= at + kHead) {
    const std::string_view id = text.substr(at, 4);
    uint64 size = Word(bytes, at + 4, 4, bigEndian);
    const uint64 rest = bytes.size() - at - kHead;
    if (id == "ds64" && size >= 16 && rest >= 16) large = Word(bytes, at + kHead + 8, 8, bigEndian);
    if (id == "data" && size == kUnknown) size = large;
    // What was written to a pipe does not know its length: then it has what there is.
    if (id == "data" && size == kUnknown) return;
    if (size > rest) break;
    if (id == "data") return;
    at += kHead + static_cast<std::size_t>(size + size % 2);
    if (size == rest) break;
  }
  throw Error::AtOffset("ends before its samples do", bytes.size());
}

using SoundFile = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

/// Lays the samples of each channel, which stand frame by frame, side by side.
void ReadFrames(SNDFILE* file, sf_count_t frames, std::vector<Signal>* signals) {
  constexpr std::size_t kPiece = 16384;  // [sample] read at a time
  const std::size_t channels = signals->size();
  const std::size_t most = std::max<std::size_t>(kPiece / channels, 1);
  std::vector<double> piece(most * channels);
  sf_count_t left = frames;
  while (left > 0) {
    const sf_count_t asked = std::min(left, static_cast<sf_count_t>(most));
    const sf_count_t n = sf_readf_double(file, piece.data(), asked);
    if (n <= 0) throw Error("has fewer samples than it says");
    for (std::size_t i = 0; i < static_cast<std::size_t>(n) * channels; ++i) {
      (*signals)[i % channels].values.push_back(piece[i]);
    }
    left -= n;
  }
}

}  // namespace

std::vector<Signal> ReadWav(Bytes bytes) {
  RequireWhole(bytes);
  Memory memory{bytes};
  SF_VIRTUAL_IO io{SizeOf, Seek, Read, Write, Tell};
  SF_INFO info{};
  const SoundFile file(sf_open_virtual(&io, SFM_READ, &info, &memory), sf_close);
  if (!file) throw Error(fmt::format("is no sound file: {}", sf_strerror(nullptr)));
  if (info.channels < 1 || info.frames < 1) throw Error("has no samples");
  std::vector<Signal> signals(static_cast<std::size_t>(info.channels));
  ReadFrames(file.get(), info.frames, &signals);
  const char* const title = sf_get_string(file.get(), SF_STR_TITLE);
  for (Signal& signal : signals) {
    signal.name = title != nullptr ? title : "";
    signal.fsamp = info.samplerate;
  }
  return signals;
}

}  // namespace qarv::exchange
