// Prints how close the compensation comes to the physical limit over the reference cases, as tables
// for docs/compensation.md.
//   compensation_table CASES.csv           every type
//   compensation_table CASES.csv levels    the optimised type over OptRatLevel, for each shape
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string_view>

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

// ---- Over OptRatLevel --------------------------------------------------------------------------

constexpr std::array kLevels{0.0, 0.25, 0.5, 0.75, 1.0};

/// What the cases of one shape come to at one level.
struct Spent {
  std::vector<double> strokes;  // over the limit with the nominal pulse
  std::vector<double> losses;   // of velocity change [%]
};
using SpentAtLevels = std::array<Spent, kLevels.size()>;

void Add(const CompensationCase& c, bool nonSymmetric, SpentAtLevels* spent) {
  const StrokeResult nominal = Compensate(c.NominalDefinition());
  const double least = c.LeastStroke("nominal", nonSymmetric);
  for (std::size_t i = 0; i < kLevels.size(); ++i) {
    const StrokeResult result = Compensate(c.Definition(4, nonSymmetric, kLevels[i]));
    if (!result.done) continue;
    (*spent)[i].losses.push_back(100.0 * VelocityLoss(nominal, result));
    if (std::isfinite(least)) (*spent)[i].strokes.push_back(result.stroke / least);
  }
}

void PrintLevels(const std::vector<CompensationCase>& cases) {
  std::printf("| shape | sides |");
  for (const double level : kLevels) std::printf(" %g |", level);
  std::printf("\n|---|---|---|---|---|---|---|\n");
  constexpr std::array kShapes{"all",       "half-sine", "terminal-peak sawtooth",
                               "trapezoid", "triangle",  "user trapezoid",
                               "haversine"};
  for (std::size_t shape = 0; shape < kShapes.size(); ++shape) {
    for (const bool nonSymmetric : {true, false}) {
      SpentAtLevels spent;
      for (const CompensationCase& c : cases) {
        if (shape == 0 || c.At("WaveKind") == static_cast<double>(shape))
          Add(c, nonSymmetric, &spent);
      }
      std::printf("| %s | %s |", kShapes[shape], nonSymmetric ? "free" : "symmetric");
      for (const Spent& at : spent)
        std::printf(" %.2f, %.1f %% |", Quantile(at.strokes, 0.5), Quantile(at.losses, 0.5));
      std::printf("\n");
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const bool levels = argc == 3 && std::string_view(argv[2]) == "levels";
  if (argc != 2 && !levels) {
    std::fprintf(stderr, "usage: compensation_table CASES.csv [levels]\n");
    return 2;
  }
  const auto cases = ReadCompensationCases(argv[1]);
  if (cases.empty()) {
    std::fprintf(stderr, "compensation_table: %s: no cases\n", argv[1]);
    return 2;
  }
  if (levels) {
    PrintLevels(cases);
    return 0;
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
