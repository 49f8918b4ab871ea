// The generator of sine beats and bursts.
//
//   Np  length of a packet [sample]
//   Nr  length of the rest between two packets [sample]; wraps below 0 for a negative time
//   Nt  length of the whole [sample]
#include "family/sine_beat_burst.h"

#include <algorithm>

#include "common/data_array/array_report.h"
#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "common/numeric/mat_edit.h"
#include "numeric/sample_blocks.h"

namespace qarv::wave_def {

using common::CMatEdit;
using common::InstructionSet;
using common::int64;
using common::RoundToIndex;
using common::uint64;
using Samples = common::CDataArrayFloatT<double>;

namespace {

bool IsGenerated(const CWaveDefSineBeatBurst& def) {
  return def.GetAmpl() != 0.0 && def.GetFreq() != 0.0 && def.GetCycle() != 0 &&
         def.GetFrame() != 0 &&
         (def.GetWaveKind() == CWaveDefSineBeatBurst::SINE_BEAT ||
          def.GetWaveKind() == CWaveDefSineBeatBurst::SINE_BURST);
}

/// Tapers the two ends of a burst's packet.  A taper longer than the packet keeps its shape and is
/// cut; one that cannot be drawn is left out.
void TaperEdges(const CWaveDefSineBeatBurst& def, double fsamp, double dt, Samples* packet) {
  const double c = dt * def.GetFreq();                    // [cycles] per sample
  const uint64 Lr = RoundToIndex(def.GetEdgeRise() / c);  // rounded half up
  const uint64 Lf = RoundToIndex(def.GetEdgeFall() / c);  // rounded half up
  const uint64 last = packet->GetSize() - 1;
  const auto riseEnd = static_cast<int64>(Lr);
  const auto fallStart = static_cast<int64>(last - Lf);
  const auto end = static_cast<int64>(last);
  switch (def.GetEdgeWindow()) {
    case CWaveDefSineBeatBurst::WINDOW_HALF_HANNING:
      CMatEdit::HalfHanning(fsamp, packet, CMatEdit::HALFHANNING_START, 1.0, 0, riseEnd);
      CMatEdit::HalfHanning(fsamp, packet, CMatEdit::HALFHANNING_END, 1.0, fallStart, end);
      break;
    case CWaveDefSineBeatBurst::WINDOW_RAMP:
      CMatEdit::RampFunction(fsamp, packet, true, 1.0, 0, riseEnd);
      CMatEdit::RampFunction(fsamp, packet, false, 1.0, fallStart, end);
      break;
    case CWaveDefSineBeatBurst::WINDOW_NONE:
      break;
  }
}

/// Makes `packet` one packet of Np samples.
void DrawPacket(const CWaveDefSineBeatBurst& def, double fsamp, uint64 Np, Samples* packet) {
  const double dt = 1.0 / fsamp;
  const double Ampl = def.GetAmpl();
  const double Freq = def.GetFreq();
  const double Cycle = def.GetCycle();
  const bool beat = def.GetWaveKind() == CWaveDefSineBeatBurst::SINE_BEAT;
  packet->ResizeToWrite(Np);
  double* const sample = packet->GetData();
  common::SampleBlock x;
  const InstructionSet set = common::BestInstructionSet();
  common::ForBlocks(set, 0, Np, [&](uint64 first, std::size_t n) QARV_LANES {
    double* const y = sample + first;
    common::FillBlock(x.data(), first, n,
                      [=](double k) QARV_LANES { return k * dt * Freq * common::kTwoPi; });
    common::elementary::Sin({x.data(), n}, {y, n}, set);
    for (std::size_t i = 0; i < n; ++i) y[i] *= Ampl;
    if (!beat) return;
    for (std::size_t i = 0; i < n; ++i) x[i] = x[i] / Cycle * 0.5;
    common::elementary::Sin({x.data(), n}, {x.data(), n}, set);
    for (std::size_t i = 0; i < n; ++i) y[i] *= x[i];
  });
  if (!beat && def.GetEdging()) TaperEdges(def, fsamp, dt, packet);
}

/// Lays the packet `frames` times into the wave, a step apart, a later one over the one before.
void LayOverlapping(const Samples& packet, uint64 step, uint64 frames, Samples* wave) {
  const uint64 Np = packet.GetSize();
  if (wave->GetSize() < Np) {
    // Every copy is refused with the same line, of which the first ones say all.
    const uint64 told = std::min(frames, common::kMostArrayErrors);
    for (uint64 j = 0; j < told; ++j) Samples::RingCopy(*wave, packet, 0, j * step, Np);
    if (frames > told) common::ReportMoreArrayErrors(frames - told);
    return;
  }
  // What the next packet covers is not copied, so that the cost is that of the wave; packets that
  // lie one upon the other are one packet.
  for (uint64 j = step == 0 ? frames - 1 : 0; j < frames; ++j) {
    const uint64 own = j + 1 == frames ? Np : std::min(step, Np);
    Samples::RingCopy(*wave, packet, 0, j * step, own);
  }
}

}  // namespace

PacketLayout LayOut(const CWaveDefSineBeatBurst& def, double fsamp) {
  const double T = 1.0 / def.GetFreq();
  const double packetSamples = def.GetCycle() * T * fsamp;
  const double restSamples = def.GetRestTime() * fsamp;
  PacketLayout out{.packet = RoundToIndex(packetSamples),  // rounded half up
                   .rest = RoundToIndex(restSamples),      // rounded half up
                   .total = {}};
  const unsigned int frames = def.GetFrame();
  out.total.Add(out.packet, packetSamples, frames);
  out.total.Add(out.rest, restSamples, frames == 0 ? 0 : frames - 1);
  return out;
}

bool SineBeatBurstGenerate(const CWaveDefSineBeatBurst& def, double fsamp, Samples* wave) {
  if (fsamp == 0.0 || wave == nullptr || !IsGenerated(def)) return false;

  const PacketLayout layout = LayOut(def, fsamp);
  if (layout.packet == 0 || !layout.total.IsPositive()) return false;
  const uint64 frames = def.GetFrame();
  const uint64 Np = layout.packet;
  const uint64 Nt = layout.total.Count();
  const uint64 step = Np + layout.rest;

  wave->Reserve(Nt);  // all that can fail for want of memory comes before the first sample
  if (def.GetRestTime() * fsamp < 0.0 &&
      frames > 1) {  // overlapping packets need their pattern kept apart
    Samples packet;
    DrawPacket(def, fsamp, Np, &packet);
    wave->Clear();
    wave->Resize(Nt);
    LayOverlapping(packet, step, frames, wave);
    return true;
  }
  DrawPacket(def, fsamp, Np, wave);
  wave->ResizeToWrite(Nt);
  double* const x = wave->GetData();
  for (uint64 j = 1; j < frames; ++j) {
    std::fill_n(x + j * step - layout.rest, layout.rest, 0.0);
    std::copy_n(x, Np, x + j * step);
  }
  return true;
}

}  // namespace qarv::wave_def
