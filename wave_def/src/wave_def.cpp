// CWaveDef: defining, comparing and storing a waveform; the bands of all but classical waveforms.
#include "wave_def/wave_def.h"

#include <utility>

#include "classical/classical_pipeline.h"
#include "common/numeric/index_conv.h"
#include "common/record/record_codec.h"
#include "family/damping.h"
#include "family/gradual.h"
#include "family/sine_beat_burst.h"
#include "family/single.h"
#include "family/symmetry.h"

namespace qarv::wave_def {

using common::uint64;

namespace {

/// Runs `make`; where that ends in an exception, `drop` takes back what it has left half made.
template <class Make, class Drop>
auto WholeOrNothing(Make make, Drop drop) {
  try {
    return make();
  } catch (...) {
    drop();
    throw;
  }
}

}  // namespace

CWaveDef::~CWaveDef() = default;

CWaveDef& CWaveDef::operator=(const CWaveDef& other) {
  if (this == &other) return *this;
  Clear();
  WholeOrNothing(
      [&] {
        def_ = other.def_;
        head_ = other.head_;
      },
      [this] { Clear(); });
  return *this;
}

/// Calls f with the member of the definition that `type` makes active; false if it names none.
template <class F>
bool CWaveDef::WithActiveSet(WAVE_TYPE type, F f) {
  switch (type) {
    case WAVE_TYPE_CLASSICAL:
      return f(&Definition::Classical);
    case WAVE_TYPE_SYMMETRY:
      return f(&Definition::Symmetry);
    case WAVE_TYPE_SINE_BEAT_BURST:
      return f(&Definition::SineBeatBurst);
    case WAVE_TYPE_MEASURE:
      return f(&Definition::Measure);
    case WAVE_TYPE_GRADUAL:
      return f(&Definition::Gradual);
    case WAVE_TYPE_SINGLE:
      return f(&Definition::Single);
    case WAVE_TYPE_DAMPING:
      return f(&Definition::Damping);
    case WAVE_TYPE_NONE:
      break;
  }
  return false;
}

bool CWaveDef::operator==(const CWaveDef& other) const {
  if (this == &other) return true;
  if (head_ != other.head_) return false;
  const bool sameSet =
      head_->WaveType == WAVE_TYPE_NONE ||
      WithActiveSet(head_->WaveType, [&](auto set) { return def_.*set == other.def_.*set; });
  return sameSet && def_.Wave == other.def_.Wave && def_.TolU == other.def_.TolU &&
         def_.TolL == other.def_.TolL;
}

void CWaveDef::Clear() {
  LelWaveTypeClear();
  head_.Clear();
}

void CWaveDef::LelWaveTypeClear() {
  head_->WaveType = WAVE_TYPE_NONE;
  def_.Classical.Clear();
  def_.Symmetry.Clear();
  def_.SineBeatBurst.Clear();
  def_.Measure.Clear();
  def_.Gradual.Clear();
  def_.Single.Clear();
  def_.Damping.Clear();
  def_.Wave.Clear();
  def_.TolU.Clear();
  def_.TolL.Clear();
}

bool CWaveDef::Serialize(common::CSerialData* stream) {
  if (stream == nullptr) return false;
  if (!stream->IsFinalize()) {
    constexpr uint64 kHead = 4096;  // [bytes] about what all but the samples takes
    stream->Reserve(kHead + sizeof(double) *
                                (def_.Wave.GetSize() + def_.TolU.GetSize() + def_.TolL.GetSize()));
    return SerializeItems(stream);
  }
  Clear();
  // Taken over when complete: neither a failure nor an exception leaves half of it.  The storage of
  // the samples before goes along, so that loading again takes no memory.
  CWaveDef fresh(std::move(*this));
  if (!fresh.SerializeItems(stream)) return false;
  *this = std::move(fresh);
  return true;
}

/// The items of the record in their order, in either direction.  The leading fields come first, so
/// that the type is known by the time its parameter set is reached.
bool CWaveDef::SerializeItems(common::CSerialData* stream) {
  return head_.Serialize(stream) &&
         WithActiveSet(head_->WaveType, [&](auto set) { return (def_.*set).Serialize(stream); }) &&
         def_.Wave.Serialize(stream) && def_.TolU.Serialize(stream) && def_.TolL.Serialize(stream);
}

/// The frame of every definition: the one before is dropped, `make` fills the waveform and stores
/// the parameters, and with the type and the bands the object is defined.  An exception leaves
/// nothing but the settings.
template <class Make>
bool CWaveDef::Define(WAVE_TYPE type, Make make) {
  LelWaveTypeClear();
  return WholeOrNothing(
      [&] {
        if (!make()) return false;
        head_->WaveType = type;
        return LclCalcTolData();
      },
      [this] { LelWaveTypeClear(); });
}

/// Defines a family whose generator fills the waveform alone and leaves the parameters as they are.
template <class Set, class Generate>
bool CWaveDef::DefineFrom(WAVE_TYPE type, Set Definition::*set, const Set& def, Generate generate) {
  return Define(type, [&] {
    if (!generate(def, head_->Fsamp, &def_.Wave)) return false;
    def_.*set = def;
    return true;
  });
}

bool CWaveDef::SetDefMeasure(const CWaveDefMeasure& def,
                             const common::CDataArrayFloatT<double>& samples) {
  return Define(WAVE_TYPE_MEASURE, [&] {
    def_.Wave = samples;
    def_.Measure = def;
    return true;
  });
}

bool CWaveDef::SetDefClassical(const CWaveDefClassical& def) {
  return Define(WAVE_TYPE_CLASSICAL, [&] {
    CWaveDefClassical params(def);
    if (!GenerateClassical(params, head_->Fsamp, &def_.Wave, &def_.TolU, &def_.TolL,
                           head_->AutoFsamp)) {
      return false;
    }
    // Deliberate: stored after the generation, as that has left it: with the results of the
    // compensation.  The sets of the other families are stored as they were given.
    def_.Classical = params;
    return true;
  });
}

bool CWaveDef::SetDefSymmetry(const CWaveDefSymmetry& def) {
  return DefineFrom(WAVE_TYPE_SYMMETRY, &Definition::Symmetry, def, SymmetryGenerate);
}

bool CWaveDef::SetDefSineBeatBurst(const CWaveDefSineBeatBurst& def) {
  return DefineFrom(WAVE_TYPE_SINE_BEAT_BURST, &Definition::SineBeatBurst, def,
                    SineBeatBurstGenerate);
}

bool CWaveDef::SetDefGradual(const CWaveDefGradual& def) {
  return DefineFrom(WAVE_TYPE_GRADUAL, &Definition::Gradual, def, GradualGenerate);
}

bool CWaveDef::SetDefSingle(const CWaveDefSingle& def) {
  return DefineFrom(WAVE_TYPE_SINGLE, &Definition::Single, def, SingleGenerate);
}

bool CWaveDef::SetDefDamping(const CWaveDefDamping& def) {
  return DefineFrom(WAVE_TYPE_DAMPING, &Definition::Damping, def, DampingSynthesize);
}

bool CWaveDef::LclCalcTolData() {
  if (head_->WaveType == WAVE_TYPE_CLASSICAL) return true;
  const auto any = [](auto) { return true; };
  if (!WithActiveSet(head_->WaveType, any)) return false;

  const double peak = def_.Wave.GetAbsMax(0, 0);
  const double up = peak * head_->TolUpperRat;
  const double low = peak * head_->TolLowerRat;
  const uint64 n = def_.Wave.GetSize();
  def_.TolU.ResizeToWrite(n);
  def_.TolL.ResizeToWrite(n);
  const double* const wave = def_.Wave.GetData();
  double* const upper = def_.TolU.GetData();
  double* const lower = def_.TolL.GetData();
  for (uint64 i = 0; i < n; ++i) {
    upper[i] = wave[i] + up;
    lower[i] = wave[i] + low;
  }
  return true;
}

bool CWaveDef::GetMainPulsPos(uint64* start, uint64* end) const {
  if (start == nullptr || end == nullptr || head_->WaveType != WAVE_TYPE_CLASSICAL) return false;
  const uint64 n = def_.Classical.GetNsamp();
  const uint64 half = common::TruncToIndex(def_.Classical.GetMainWidth() * head_->Fsamp * 0.5);
  const uint64 shift =
      common::TruncToIndex(def_.Classical.GetMainShift() * static_cast<double>(n));  // truncated
  const uint64 centre = shift + n / 2;
  *start = centre - half;
  *end = centre + half;
  return true;
}

}  // namespace qarv::wave_def
