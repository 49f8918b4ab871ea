// The generator of the symmetry wave.
//
//   n                       width of every pulse [sample]
//   Npre, Nmid, Nmzb, Npost silences before, between, behind the main pulse, at the end [sample];
//                           negative times wrap below 0
#include "family/symmetry.h"

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/sample_blocks.h"

namespace qarv::wave_def {

using common::InstructionSet;
using common::uint64;

namespace {

/// The sample of a triangle's peak, counted from its first.
uint64 TrianglePeak(double peakPos, uint64 n) {
  const uint64 m = common::TruncToIndex(peakPos * static_cast<double>(n));  // truncated
  return m != 0 ? m : 1;
}

struct TriangleSides {
  uint64 rise, fall;  // [sample]
};

/// The two sides of a triangle; where the peak is the end of the width, the last sample becomes it.
TriangleSides SidesOf(double peakPos, uint64 n) {
  const uint64 m = TrianglePeak(peakPos, n);
  return m == n ? TriangleSides{n - 1, 1} : TriangleSides{m, n - m};
}

/// Whether `count` samples from `first` on lie in an array of `size`.
bool Inside(uint64 first, uint64 count, uint64 size) {
  return count == 0 || (first < size && count <= size - first);
}

void DrawPulse(const CWaveDefSymmetry& def, double a, uint64 n, uint64 at,
               common::CDataArrayFloatT<double>* wave) {
  double* const x = wave->GetData();
  switch (def.GetWaveKind()) {
    case wave_def_sub::TRIANGLE:
      SymTrianglePulse(a, n, def.GetPeakPos(), at, x);
      break;
    case wave_def_sub::HAVERSINE:
      // A haversine of no samples still has its centre, where the array has the place.
      if (n != 0 || at < wave->GetSize()) SymHaversinePulse(a, n, at, x);
      break;
    default:
      SymHalfSinePulse(a, n, at, x);
      break;
  }
}

}  // namespace

SymmetryLayout LayOut(const CWaveDefSymmetry& def, double fsamp) {
  SymmetryLayout out{};
  const auto add = [&](double time) {  // counts a stretch and adds it to the whole
    const uint64 count = common::RoundToIndex(time * fsamp);  // rounded half up
    out.total.Add(count, time * fsamp);
    return count;
  };
  const uint64 Npre = add(def.GetPreZero());
  const uint64 n = add(def.GetWidth());
  const uint64 Nmid = add(def.GetMidZero());
  add(def.GetWidth());
  add(def.GetPostZero());
  out.n = n;
  const uint64 second = Npre + Nmid + n;
  if (def.GetDevideComp()) {
    const uint64 Nmzb = add(def.GetMidZeroBackward());
    add(def.GetWidth());
    out.main = second;
    out.comp = {Npre, second + Nmzb + n};
    out.compCount = 2;
  } else {
    out.main = def.GetCompForward() ? second : Npre;
    out.comp = {def.GetCompForward() ? Npre : second, 0};
    out.compCount = 1;
  }
  return out;
}

bool PulseFits(const CWaveDefSymmetry& def, uint64 n, uint64 at, uint64 size) {
  switch (def.GetWaveKind()) {
    case wave_def_sub::HALF_SINE:
      return Inside(at, n, size);
    case wave_def_sub::TRIANGLE:
      return TrianglePeak(def.GetPeakPos(), n) <= n && Inside(at, n, size);
    case wave_def_sub::HAVERSINE: {
      const uint64 h = n / 2;
      if (h == 0) return Inside(at, n, size);
      return Inside(at + 1, 2 * h - 1, size);  // its first sample stays 0
    }
    default:
      return false;
  }
}

void SymHalfSinePulse(double a, uint64 n, uint64 at, double* buffer, InstructionSet set) {
  const auto width = static_cast<double>(n);
  common::ForBlocks(set, 0, n, [&](uint64 first, std::size_t count) QARV_LANES {
    double* const x = buffer + at + first;
    common::FillBlock(x, first, count,
                      [=](double k) QARV_LANES { return k * common::kPi / width; });
    common::elementary::Sin({x, count}, {x, count}, set);
    for (std::size_t i = 0; i < count; ++i) x[i] *= a;
  });
}

void SymHaversinePulse(double a, uint64 n, uint64 at, double* buffer, InstructionSet set) {
  const uint64 h = n / 2;
  buffer[at + h] = a;
  const auto half = static_cast<double>(h);
  common::SampleBlock y;
  common::ForBlocks(set, 0, h, [&](uint64 first, std::size_t count) QARV_LANES {
    common::FillBlock(y.data(), first, count,
                      [=](double k) QARV_LANES { return k * common::kPi / half; });
    common::elementary::Cos({y.data(), count}, {y.data(), count}, set);
    for (std::size_t i = 0; i < count; ++i) {
      const double sample = (y[i] * 0.5 + 0.5) * a;
      buffer[at + h - first - i] = sample;
      buffer[at + h + first + i] = sample;
    }
  });
}

void SymTrianglePulse(double a, uint64 n, double peakPos, uint64 at, double* buffer) {
  const auto [rise, fall] = SidesOf(peakPos, n);
  const double sr = a / static_cast<double>(rise);
  const double sf = a / static_cast<double>(fall);
  for (uint64 k = 0; k < rise; ++k) buffer[at + k] = static_cast<double>(k) * sr;
  buffer[at + rise] = a;
  // Deliberate: the last sample is sf, not 0; the end sample belongs to what follows.
  for (uint64 k = 1; k < fall; ++k) buffer[at + rise + k] = static_cast<double>(k) * -sf + a;
}

bool SymmetryGenerate(const CWaveDefSymmetry& def, double fsamp,
                      common::CDataArrayFloatT<double>* wave) {
  if (wave == nullptr || fsamp == 0.0 || def.GetPeak() == 0.0 || def.GetWidth() == 0.0) {
    return false;
  }
  const SymmetryLayout layout = LayOut(def, fsamp);
  if (!layout.total.IsPositive()) return false;
  const uint64 size = layout.total.Count();
  if (!PulseFits(def, layout.n, layout.main, size)) return false;
  for (const uint64 at : layout.Compensations()) {
    if (!PulseFits(def, layout.n, at, size)) return false;
  }

  wave->Reserve(size);  // all that can fail comes before the first sample is written
  wave->Clear();
  wave->Resize(size);
  DrawPulse(def, def.GetPeak(), layout.n, layout.main, wave);
  const double a = def.GetDevideComp() ? -def.GetPeak() * 0.5 : -def.GetPeak();
  for (const uint64 at : layout.Compensations()) DrawPulse(def, a, layout.n, at, wave);
  return true;
}

}  // namespace qarv::wave_def
