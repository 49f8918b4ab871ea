// Uses every public class from outside: values, records, the services, errors across the boundary.
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/numeric/mat_fft.h"
#include "common/serial/serial_data.h"
#include "data_edit_log/data_edit_log.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;

int failures = 0;

void Expect(bool ok, const char* what) {
  if (ok) return;
  std::printf("consumer: %s\n", what);
  ++failures;
}

template <class Set>
void CheckSet(const char* name) {
  Set set;
  Set moved(std::move(set));
  set = moved;
  common::CSerialData out;
  Expect(set.Serialize(&out), name);
  out.Finalize();
  Set back;
  Expect(back.Serialize(&out) && back == set, name);
}

}  // namespace

int main() {
  CheckSet<CWaveDefClassical>("classical");
  CheckSet<CWaveDefSymmetry>("symmetry");
  CheckSet<CWaveDefSineBeatBurst>("sine beat and burst");
  CheckSet<CWaveDefMeasure>("measure");
  CheckSet<CWaveDefGradual>("gradual");
  CheckSet<CWaveDefSingle>("single");
  CheckSet<CWaveDefDamping>("damping");
  CheckSet<CWaveDefDampingElm>("damping element");
  CheckSet<CWaveDefTolSpecify>("standard tolerance");
  CheckSet<CWaveDefTolUserDef>("user tolerance");

  CWaveDefSingle sine;
  sine.SetPeriod(0.01);
  sine.SetPeakLevel(2.0);
  sine.SetNsamp(100);
  CWaveDef def;
  def.SetFsamp(1000.0);
  Expect(def.SetDefSingle(sine), "a single wave is defined");
  Expect(def.GetNsamp() == 100 && def.GetTolU().GetSize() == 100, "it has its samples and bands");
  common::CSerialData out;
  Expect(def.Serialize(&out), "it is stored");
  common::CSerialData in(out.GetData(), out.GetSize());
  CWaveDef back;
  Expect(back.Serialize(&in) && back == def, "and restored");

  std::uint64_t start = 0;
  std::uint64_t end = 0;
  Expect(!def.GetMainPulsPos(&start, &end), "only a classical wave has a main pulse");
  try {
    const double beyond = def.GetWave()[100];
    Expect(false, std::to_string(beyond).c_str());
  } catch (const std::out_of_range& e) {
    Expect(std::string(e.what()) == "invalid vector<T> subscript", e.what());
  }

  double c = 0.0;
  double s = 0.0;
  Expect(common::CMatFFT::GetCosSinI(1, 4, &c, &s) && c == 0.0 && s == 1.0, "the services link");
  std::printf("consumer: %s\n", failures == 0 ? "ok" : "failed");
  return failures == 0 ? 0 : 1;
}
