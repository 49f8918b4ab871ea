// Prints how close the compensation comes to the physical limit over the reference cases, as a
// table for docs/compensation.md.
//   compensation_table CASES.csv
#include <chrono>
#include <cmath>
#include <cstdio>

#include "compensation_cases.h"

namespace {

using namespace qarv::test;

struct Row {
  int type;
  double optRatLevel;
  bool nonSymmetric;
};

void Print(const std::vector<CompensationCase>& cases, const Row& row) {
  int done = 0;
  int everyday = 0;
  int everydayDone = 0;
  int unshifted = 0;
  double slowest = 0;
  std::vector<double> overNominal;
  std::vector<double> overShape;
  std::vector<double> overFree;
  std::vector<double> everydayNominal;
  std::vector<double> everydayShape;
  std::vector<double> seconds;
  for (const CompensationCase& c : cases) {
    const auto begin = std::chrono::steady_clock::now();
    const StrokeResult result =
        Compensate(c.Definition(row.type, row.nonSymmetric, row.optRatLevel));
    const double took =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    slowest = std::max(slowest, took);
    if (c.At("Nsamp") == 8192) seconds.push_back(took);
    everyday += c.IsEveryday();
    if (!result.done) continue;
    ++done;
    everydayDone += c.IsEveryday();
    unshifted += result.params.GetWaveShift() == 0;
    const auto add = [&](const char* pulse, std::vector<double>* all,
                         std::vector<double>* ofEveryday) {
      const double least = c.LeastStroke(pulse, row.nonSymmetric);
      if (!std::isfinite(least)) return;
      all->push_back(result.stroke / least);
      if (c.IsEveryday() && ofEveryday != nullptr) ofEveryday->push_back(result.stroke / least);
    };
    add("nominal", &overNominal, &everydayNominal);
    add("shape", &overShape, &everydayShape);
    add("free", &overFree, nullptr);
  }
  std::printf(
      "| %d | %g | %s | %d of %zu | %d of %d | %.2f, %.2f | %.2f, %.2f | %.2f | %.2f | %.2f | %d | "
      "%.1f, %.0f |\n",
      row.type, row.optRatLevel, row.nonSymmetric ? "free" : "symmetric", done, cases.size(),
      everydayDone, everyday, Quantile(overNominal, 0.5), Quantile(overNominal, 0.9),
      Quantile(overShape, 0.5), Quantile(overShape, 0.9), Quantile(overFree, 0.5),
      Quantile(everydayNominal, 0.5), Quantile(everydayShape, 0.5), unshifted,
      1e3 * Quantile(seconds, 0.5), 1e3 * slowest);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: compensation_table CASES.csv\n");
    return 2;
  }
  const auto cases = ReadCompensationCases(argv[1]);
  if (cases.empty()) {
    std::fprintf(stderr, "compensation_table: %s: no cases\n", argv[1]);
    return 2;
  }
  std::printf(
      "| type | OptRatLevel | sides | done | everyday | over nominal | over shape | over free | "
      "everyday nominal | everyday shape | unshifted | ms |\n");
  std::printf("|---|---|---|---|---|---|---|---|---|---|---|---|\n");
  for (const Row& row :
       {Row{1, 0, true}, Row{1, 0, false}, Row{2, 0, true}, Row{2, 0, false}, Row{3, 0, true},
        Row{3, 0, false}, Row{4, 0, true}, Row{4, 0, false}, Row{4, 0.5, true}, Row{4, 0.5, false},
        Row{4, 1, true}, Row{4, 1, false}}) {
    Print(cases, row);
  }
}
