// Prints tests/data/elementary_hard.csv: per function the arguments, of a few million, whose exact
// values lie closest to the middle between two doubles, with those values rounded by MPFR.
//
//   build/release/tools/hard_arguments > tests/data/elementary_hard.csv
#include <algorithm>
#include <cstdio>
#include <utility>

#include "elementary/exact.h"

int main() {
  constexpr std::size_t kKept = 400;
  constexpr int kTried = 100000;  // of each range
  qarv::test::ExactValue exact;
  std::puts("function,argument,value");
  for (const auto& f : qarv::test::ElementaryFunctions()) {
    std::mt19937_64 random(1);
    std::vector<std::pair<double, double>> hard;  // distance from the tie, argument
    for (const auto& range : f.ranges) {
      std::vector<std::pair<double, double>> found;
      for (int i = 0; i < kTried; ++i) {
        const double x = range(random);
        const double distance = exact.FromTie(f.exact, x);
        if (distance > 1e-12) found.emplace_back(distance, x);  // a tie itself is a short number
      }
      std::sort(found.begin(), found.end());
      found.resize(std::min(found.size(), kKept / f.ranges.size() + 1));
      hard.insert(hard.end(), found.begin(), found.end());
    }
    std::sort(hard.begin(), hard.end());
    hard.resize(kKept);
    for (const auto& [distance, x] : hard) {
      std::printf("%s,%a,%a\n", f.name.c_str(), x, exact.Value(f.exact, x));
    }
  }
}
