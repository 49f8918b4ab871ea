// A waveform as a NumPy file, version 1.0 of the format: magic, length and text of a header that is
// a Python literal, then the bytes of the array.
#include "export/npy.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <vector>

#include "definition_file.h"
#include "output_files.h"

namespace qarv::command {

using common::uint64;
using definition::SampleRateOf;

namespace {

/// The header, padded so that the array begins at a multiple of 64 bytes.
std::string Header(uint64 N) {
  constexpr std::size_t kBefore = 10;  // [byte] magic, version, length
  constexpr std::size_t kAlignment = 64;
  const char order = std::endian::native == std::endian::little ? '<' : '>';
  std::string text = fmt::format(
      "{{'descr': [('time', '{0}f8'), ('waveform', '{0}f8'), ('lower', '{0}f8'), "
      "('upper', '{0}f8')], 'fortran_order': False, 'shape': ({1},), }}",
      order, N);
  while ((kBefore + text.size() + 1) % kAlignment != 0) text += ' ';
  text += '\n';
  std::string header = "\x93NUMPY";
  header += '\x01';
  header += '\x00';
  header += static_cast<char>(text.size() % 256);
  header += static_cast<char>(text.size() / 256);
  return header + text;
}

}  // namespace

void WriteNpy(const wave_def::CWaveDef& def, const std::string& file) {
  constexpr uint64 kPiece = 4096;  // [sample] written at a time
  const double fsamp = SampleRateOf(def);
  const uint64 N = def.GetNsamp();
  FilePtr out = OpenForWriting(file);
  const std::string header = Header(N);
  WriteBytes(out.get(), header.data(), header.size(), file);
  std::vector<std::array<double, 4>> rows;
  for (uint64 i = 0; i < N; ++i) {
    rows.push_back(
        {static_cast<double>(i) / fsamp, def.GetWave()[i], def.GetTolL()[i], def.GetTolU()[i]});
    if (rows.size() < kPiece && i + 1 < N) continue;
    WriteBytes(out.get(), rows.data(), rows.size() * sizeof(rows.front()), file);
    rows.clear();
  }
  Close(std::move(out), file);
}

}  // namespace qarv::command
