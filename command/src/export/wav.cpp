// A waveform as a sound file.
#include "export/wav.h"

#include <fmt/format.h>
#include <sndfile.h>

#include <cmath>
#include <limits>
#include <memory>

#include "command_error.h"
#include "common/numeric/index_conv.h"
#include "definition_file.h"

namespace qarv::command {

using common::uint64;
using definition::SampleRateOf;

void WriteWav(const wave_def::CWaveDef& def, const std::string& name, const std::string& file) {
  const double fsamp = SampleRateOf(def);
  if (!(fsamp >= 1.0 && fsamp <= std::numeric_limits<int>::max() && std::round(fsamp) == fsamp)) {
    Fail(name, fmt::format("a sound file needs a whole sampling frequency, not {:g} Hz", fsamp));
  }
  const uint64 N = def.GetNsamp();
  constexpr double kLargest = std::numeric_limits<float>::max();
  for (const double v : def.GetWave()) {
    if (!(std::fabs(v) <= kLargest)) Fail(name, fmt::format("a sound file cannot hold {:g}", v));
  }
  constexpr uint64 kMost = (uint64{1} << 30) - 64;  // [sample] in the 4 GiB that its header counts
  if (N > kMost) Fail(name, "is too long for a sound file");
  SF_INFO info{};
  info.samplerate = static_cast<int>(common::TruncToIndex(fsamp));
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> out(sf_open(file.c_str(), SFM_WRITE, &info),
                                                  sf_close);
  if (!out) Fail(file, sf_strerror(nullptr));
  // The chunk of peaks carries the time of writing: the same waveform gives the same bytes.
  sf_command(out.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  const auto frames = static_cast<sf_count_t>(N);
  if (sf_write_double(out.get(), def.GetWave().GetData(), frames) != frames) {
    Fail(file, sf_strerror(out.get()));
  }
  sf_write_sync(out.get());
  if (sf_close(out.release()) != 0) Fail(file, "cannot be written");
}

}  // namespace qarv::command
