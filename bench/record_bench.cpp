// Writing and reading the record of a definition of a million samples.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

#include "common/serial/serial_data.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;

CWaveDef Million() {
  CWaveDef def;
  def.SetFsamp(1000.0);
  def.SetDefMeasure({}, common::CDataArrayFloatT<double>(1000000));
  return def;
}

/// The bytes of the samples copied into memory that is new each time, as a record's is.
void BM_Ref_CopyToNewMemory(benchmark::State& state) {
  const std::vector<double> from(3000000, 1.0);
  for (auto _ : state) {
    const std::unique_ptr<double[]> to(new double[from.size()]);
    std::memcpy(to.get(), from.data(), from.size() * sizeof(double));
    benchmark::DoNotOptimize(to.get());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Ref_CopyToNewMemory);

void BM_RecordWrite(benchmark::State& state) {
  CWaveDef def = Million();
  for (auto _ : state) {
    common::CSerialData stream;
    benchmark::DoNotOptimize(def.Serialize(&stream));
  }
}
BENCHMARK(BM_RecordWrite);

void BM_RecordRead(benchmark::State& state) {
  CWaveDef def = Million();
  common::CSerialData stream;
  def.Serialize(&stream);
  CWaveDef back;
  for (auto _ : state) {
    stream.Finalize();
    benchmark::DoNotOptimize(back.Serialize(&stream));
  }
}
BENCHMARK(BM_RecordRead);

}  // namespace
