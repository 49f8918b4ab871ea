// Prints a hash of every kind of result that the libraries make, one per line: the same on every
// machine, compiler and instruction set.  Depends on the libraries alone, so that it runs where no
// test framework does.
//
//   bits [RECORD...] > hashes.txt
//
// A program of this source is made for each instruction set: the best one that the processor has up
// to the named one.  Each record is loaded, defined again from its own parameters, and hashed; that
// the samples are the loaded ones is part of what is printed.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <list>
#include <span>
#include <string>
#include <vector>

#include "analysis/shock.h"
#include "analysis/srs.h"
#include "common/numeric/calc_wave.h"
#include "common/numeric/mat_fft.h"
#include "common/serial/serial_data.h"
#include "numeric/elementary.h"
#include "random_classical.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using common::InstructionSet;
using test::RandomValues;

/// FNV-1a over 64-bit words.  Every NaN counts as one: which one an addition gives is the
/// processor's own.
class Hash {
 public:
  void Add(std::uint64_t word) { state_ = (state_ ^ word) * 0x100000001b3u; }
  void Add(double x) { Add(x == x ? __builtin_bit_cast(std::uint64_t, x) : 0x7ff8000000000000u); }
  void Add(std::span<const double> x) {
    Add(static_cast<std::uint64_t>(x.size()));
    for (const double v : x) Add(v);
  }
  void Print(const std::string& name) const {
    std::printf("%s %016llx\n", name.c_str(), static_cast<unsigned long long>(state_));
  }

 private:
  std::uint64_t state_ = 0xcbf29ce484222325u;
};

std::span<const double> Samples(const common::CDataArrayFloatT<double>& a) {
  return {a.GetData(), static_cast<std::size_t>(a.GetSize())};
}

void AddDefinition(Hash& hash, const CWaveDef& def) {
  hash.Add(static_cast<std::uint64_t>(def.GetWaveType()));
  hash.Add(Samples(def.GetWave()));
  hash.Add(Samples(def.GetTolU()));
  hash.Add(Samples(def.GetTolL()));
}

// ---- Elementary functions ----------------------------------------------------------------------

constexpr int kResults = 1000000;

/// Arguments of every size and kind; the last ones special.
std::vector<double> Arguments(double usual) {
  RandomValues random(1);
  std::vector<double> x(kResults);
  for (double& v : x) {
    switch (random.Below(8)) {
      case 0:
        v = random.Between(-1.0, 1.0) * 0x1p-20;
        break;
      case 1:  // any bits at all
        v = __builtin_bit_cast(double, static_cast<std::uint64_t>(random.Below(0xffffffffu)) << 32 |
                                           random.Below(0xffffffffu));
        break;
      case 2:
        v = random.Below(1u << 30) * 1.5707963267948966;
        break;
      case 3:
        v = random.Hostile();
        break;
      default:
        v = random.Between(-usual, usual);
    }
  }
  return x;
}

template <class F>
void PrintValues(const std::string& name, double usual, F f) {
  Hash hash;
  for (const double x : Arguments(usual)) hash.Add(f(x));
  hash.Print(name);
}

using Block = void (*)(std::span<const double>, std::span<double>, InstructionSet);

void PrintBlock(const std::string& name, double usual, Block block) {
  std::vector<double> x = Arguments(usual);
  block(x, x, common::BestInstructionSet());
  Hash hash;
  for (const double v : x) hash.Add(v);
  hash.Print(name);
}

void PrintElementary() {
  using namespace common::elementary;
  PrintValues("Sin", 1e4, [](double x) { return Sin(x); });
  PrintValues("Cos", 1e4, [](double x) { return Cos(x); });
  PrintValues("Exp", 800.0, [](double x) { return Exp(x); });
  PrintValues("Log", 1e3, [](double x) { return Log(x < 0.0 ? -x : x); });
  PrintValues("Atan", 10.0, [](double x) { return Atan(x); });
  PrintValues("Tan", 10.0, [](double x) { return Tan(x); });
  PrintValues("Atan2", 10.0, [](double x) { return Atan2(x, 1.0 - x); });
  PrintBlock("Sin", 1e4, Sin);
  PrintBlock("Cos", 1e4, Cos);
  PrintBlock("Exp", 800.0, Exp);
}

// ---- Definitions -------------------------------------------------------------------------------

constexpr int kDefinitions = 2000;  // of each family

CWaveDef Settings(RandomValues& random) {
  CWaveDef def;
  def.SetFsamp(random.Between(100.0, 20000.0));
  def.SetTolUpperRat(random.Between(0.0, 0.5));
  def.SetTolLowerRat(random.Between(-0.5, 0.0));
  return def;
}

bool DefineSingle(RandomValues& random, CWaveDef& def) {
  CWaveDefSingle set;
  set.SetNsamp(random.Below(1500));
  const double frame = set.GetNsamp() / def.GetFsamp();
  set.SetPeriod(random.Value(0.001, 0.3) * frame);
  set.SetPeakLevel(random.Value(-50.0, 50.0));
  set.SetEdgeTime(random.Value(0.0, 0.6) * frame);
  return def.SetDefSingle(set);
}

bool DefineGradual(RandomValues& random, CWaveDef& def) {
  CWaveDefGradual set;
  set.SetNsamp(random.Below(1500));
  const double frame = set.GetNsamp() / def.GetFsamp();
  set.SetPeriod(random.Value(0.001, 0.3) * frame);
  set.SetLevelBeg(random.Value(-50.0, 50.0));
  set.SetLevelEnd(random.Value(-50.0, 50.0));
  set.SetLengthType(random.OneIn(2) ? CWaveDefGradual::LENGTH_BY_TIME
                                    : CWaveDefGradual::LENGTH_BY_SLOPE);
  set.SetWaveTime(random.Value(0.0, 1.0) * frame);
  set.SetWaveSlope(random.Value(-100.0, 100.0) / frame);
  set.SetPreTime(random.Value(0.0, 0.3) * frame);
  return def.SetDefGradual(set);
}

bool DefineSymmetry(RandomValues& random, CWaveDef& def) {
  CWaveDefSymmetry set;
  const auto time = [&] { return random.Below(300) / def.GetFsamp(); };
  const int kind = static_cast<int>(random.Below(3));
  set.SetWaveKind(kind == 0   ? wave_def_sub::HALF_SINE
                  : kind == 1 ? wave_def_sub::TRIANGLE
                              : wave_def_sub::HAVERSINE);
  set.SetPeak(random.Value(-50.0, 50.0));
  set.SetWidth(time());
  set.SetPeakPos(random.Value(0.0, 1.0));
  set.SetPreZero(time());
  set.SetMidZero(time());
  set.SetPostZero(time());
  set.SetDevideComp(random.OneIn(2));
  set.SetCompForward(random.OneIn(2));
  set.SetMidZeroBackward(time());
  return def.SetDefSymmetry(set);
}

bool DefineSineBeatBurst(RandomValues& random, CWaveDef& def) {
  CWaveDefSineBeatBurst set;
  set.SetWaveKind(random.OneIn(2) ? CWaveDefSineBeatBurst::SINE_BEAT
                                  : CWaveDefSineBeatBurst::SINE_BURST);
  set.SetAmpl(random.Between(-50.0, 50.0));
  set.SetFreq(def.GetFsamp() * random.Between(0.02, 0.4));
  set.SetCycle(1 + random.Below(20));
  set.SetFrame(1 + random.Below(5));
  set.SetRestTime(static_cast<int>(random.Below(200)) / def.GetFsamp());
  const unsigned int rise = random.Below(4);
  const unsigned int fall = random.Below(4);
  const bool edging = random.OneIn(2);  // one call at a time: arguments have no order
  const auto window = static_cast<CWaveDefSineBeatBurst::WINDOW_TYPE>(random.Below(3));
  set.SetEdging(edging, rise, fall, window);
  return def.SetDefSineBeatBurst(set);
}

bool DefineDamping(RandomValues& random, CWaveDef& def) {
  CWaveDefDamping set;
  set.SetNsamp(random.Below(1500));
  set.SetSyncWaveType(static_cast<com_def::comdefconst::SYNC_WAVE_TYPE>(1 + random.Below(3)));
  set.SetFreq(def.GetFsamp() * random.Between(0.001, 0.05));
  set.SetZeta(random.Between(0.2, 1.0));
  std::list<CWaveDefDampingElm> elms(1 + random.Below(6));
  for (CWaveDefDampingElm& elm : elms) {
    elm.SetFreq(def.GetFsamp() * random.Value(0.001, 0.4));
    elm.SetAmpl(random.Value(-50.0, 50.0));
    elm.SetZeta(random.Value(-0.02, 0.2));
    elm.SetNumHalf(random.Below(30));
    elm.SetDelay(random.Below(200) / def.GetFsamp());
  }
  set.SetDefDampingElmList(elms);
  return def.SetDefDamping(set);
}

bool DefineMeasure(RandomValues& random, CWaveDef& def) {
  common::CDataArrayFloatT<double> samples(random.Below(500));
  for (double& v : samples) v = random.Value(-50.0, 50.0);
  return def.SetDefMeasure({}, samples);
}

bool DefineClassical(RandomValues& random, CWaveDef& def) {
  const CWaveDefClassical set = test::RandomClassical(&random);
  def.SetFsamp(2.56 * set.GetFmax());
  return def.SetDefClassical(set);
}

/// A pulse that can be compensated, by any type.
bool DefineCompensated(RandomValues& random, CWaveDef& def) {
  CWaveDefClassical set;
  set.SetWaveKind(static_cast<wave_def_sub::WAVE_KIND>(1 + random.Below(6)));
  set.SetMainAmpl(random.Between(5.0, 100.0));
  set.SetFmax(2000.0);
  set.SetNsamp(512 + random.Below(512));
  set.SetMainWidth(random.Between(0.03, 0.12) * set.GetNsamp() / (2.56 * set.GetFmax()));
  set.SetMainRise(0.2);
  set.SetMainFall(0.3);
  CWaveDefTolUserDef tol;
  tol.SetTolLeftU(0.2);
  tol.SetTolLeftL(0.2);
  tol.SetTolMainU(0.15);
  tol.SetTolMainL(0.15);
  tol.SetTolRightU(0.2);
  tol.SetTolRightL(0.2);
  tol.SetTolFrontA(0.2);
  tol.SetTolRearA(0.2);
  set.SetTolKind(CWaveDefClassical::TOL_USER_DEF);
  set.SetDefTolUserDef(tol);
  set.SetAddCmp(true);
  set.SetCmpType(static_cast<CWaveDefClassical::COMP_TYPE>(1 + random.Below(4)));
  set.SetCmpNonSym(random.OneIn(2));
  set.SetCmpPre(1.0);
  set.SetCmpPost(1.0);
  set.SetOptRatLevel(random.Between(0.0, 1.0));
  def.SetFsamp(2.56 * set.GetFmax());
  return def.SetDefClassical(set);
}

void PrintDefinitions(const std::string& name, bool (*define)(RandomValues&, CWaveDef&),
                      int count) {
  RandomValues random(7);
  Hash hash;
  int defined = 0;
  for (int i = 0; i < count; ++i) {
    CWaveDef def = Settings(random);
    if (define(random, def)) ++defined;
    AddDefinition(hash, def);
  }
  hash.Print(name + "." + std::to_string(defined) + "-of-" + std::to_string(count));
}

// ---- Transforms, motion, spectra ---------------------------------------------------------------

std::vector<double> Noise(std::size_t n) {
  RandomValues random(static_cast<unsigned int>(n));
  std::vector<double> x(n);
  for (double& v : x) v = random.Between(-1.0, 1.0);
  return x;
}

void PrintTransforms() {
  Hash hash;
  for (const std::size_t n : {1u, 2u, 3u, 4u, 8u, 15u, 64u, 97u, 360u, 1000u, 1024u, 2560u, 4096u,
                              10007u, 32768u, 65536u}) {
    const common::FftPlan plan(n);
    std::vector<double> x = Noise(n);
    std::vector<double> work(static_cast<std::size_t>(plan.GetWorkSize()));
    std::vector<double> re(n / 2 + 1);
    std::vector<double> im(n / 2 + 1);
    plan.Forward(x.data(), work.data(), re.data(), im.data());
    hash.Add(re);
    hash.Add(im);
    plan.Inverse(x.data(), work.data(), re.data(), im.data());
    hash.Add(x);
  }
  hash.Print("Transforms");
}

void PrintMotion() {
  Hash hash;
  for (const std::size_t n : {1u, 2u, 100u, 5000u}) {
    const std::vector<double> x = Noise(n);
    std::vector<double> v(n);
    common::CCalcWave::IntegTime(n, v.data(), x.data(), 1e4);
    hash.Add(v);
  }
  hash.Print("Motion");
}

void PrintSpectra(const char* name, std::span<const analysis::SrsResponse> responses) {
  Hash hash;
  const std::vector<double> frequencies = analysis::SrsFrequencies(1.0, 2000.0, 12.0);
  hash.Add(frequencies);
  for (const std::size_t n : {1u, 2u, 100u, 5000u}) {
    for (const double zeta : {0.0, 0.05, 0.5}) {
      for (const analysis::SrsResponse response : responses) {
        for (const auto& p : analysis::CalcSrs(Noise(n), 1e4, frequencies, zeta, response)) {
          for (const auto& e : {p.primary, p.residual}) {
            hash.Add(e.positive);
            hash.Add(e.negative);
          }
        }
      }
    }
  }
  hash.Print(name);
}

void PrintSpectra() {
  using enum analysis::SrsResponse;
  const std::array usual{AbsoluteAcceleration, RelativeDisplacement, PseudoVelocity};
  PrintSpectra("Spectra", usual);
  const std::array other{RelativeVelocity, StaticEquivalent};
  PrintSpectra("OtherSpectra", other);
}

// ---- Records -----------------------------------------------------------------------------------

bool DefineAgain(const CWaveDef& from, CWaveDef& to) {
  to.SetFsamp(from.GetFsamp());
  to.SetAutoFsamp(from.GetAutoFsamp());
  to.SetTolUpperRat(from.GetTolUpperRat());
  to.SetTolLowerRat(from.GetTolLowerRat());
  switch (from.GetWaveType()) {
    case CWaveDef::WAVE_TYPE_CLASSICAL:
      return to.SetDefClassical(from.GetDefClassical());
    case CWaveDef::WAVE_TYPE_SYMMETRY:
      return to.SetDefSymmetry(from.GetDefSymmetry());
    case CWaveDef::WAVE_TYPE_SINE_BEAT_BURST:
      return to.SetDefSineBeatBurst(from.GetDefSineBeatBurst());
    case CWaveDef::WAVE_TYPE_MEASURE:
      return to.SetDefMeasure(from.GetDefMeasure(), from.GetWave());
    case CWaveDef::WAVE_TYPE_GRADUAL:
      return to.SetDefGradual(from.GetDefGradual());
    case CWaveDef::WAVE_TYPE_SINGLE:
      return to.SetDefSingle(from.GetDefSingle());
    case CWaveDef::WAVE_TYPE_DAMPING:
      return to.SetDefDamping(from.GetDefDamping());
    case CWaveDef::WAVE_TYPE_NONE:
      break;
  }
  return false;
}

bool PrintRecord(const std::string& path) {
  std::vector<unsigned char> bytes;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  unsigned char chunk[4096];
  while (const std::size_t n = std::fread(chunk, 1, sizeof chunk, file)) {
    bytes.insert(bytes.end(), chunk, chunk + n);
  }
  std::fclose(file);
  common::CSerialData stream(std::move(bytes));
  CWaveDef loaded;
  CWaveDef again;
  if (!loaded.Serialize(&stream) || !DefineAgain(loaded, again)) return false;
  const bool same = loaded.GetWave() == again.GetWave() && loaded.GetTolU() == again.GetTolU() &&
                    loaded.GetTolL() == again.GetTolL();
  Hash hash;
  AddDefinition(hash, again);
  const std::size_t name = path.find_last_of("/\\") + 1;
  hash.Print("example." + path.substr(name, path.find_last_of('.') - name) +
             (same ? ".same" : ".differs"));
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  PrintElementary();
  PrintDefinitions("Classical", DefineClassical, kDefinitions);
  PrintDefinitions("Compensated", DefineCompensated, 60);
  PrintDefinitions("Symmetry", DefineSymmetry, kDefinitions);
  PrintDefinitions("SineBeatBurst", DefineSineBeatBurst, kDefinitions);
  PrintDefinitions("Measure", DefineMeasure, kDefinitions);
  PrintDefinitions("Gradual", DefineGradual, kDefinitions);
  PrintDefinitions("Single", DefineSingle, kDefinitions);
  PrintDefinitions("Damping", DefineDamping, kDefinitions);
  PrintTransforms();
  PrintMotion();
  PrintSpectra();
  for (int i = 1; i < argc; ++i) {
    if (!PrintRecord(argv[i])) {
      std::fprintf(stderr, "%s: not a record that can be defined again\n", argv[i]);
      return 1;
    }
  }
}
