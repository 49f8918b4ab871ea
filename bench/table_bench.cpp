// Reading the text of ten million lines, beside a loop that takes the numbers and nothing else.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "exchange/table.h"

namespace {

using namespace qarv;

constexpr std::size_t kLines = 10000000;

const std::string& Text(bool comma) {
  static const auto make = [](bool decimalComma) {
    std::string text = "Time [s];Acc [g]\n";
    text.reserve(kLines * 24);
    for (std::size_t i = 0; i < kLines; ++i) {
      const double v = 50.0 * std::sin(1e-3 * static_cast<double>(i));
      const std::size_t at = text.size();
      fmt::format_to(std::back_inserter(text), "{:.6f};{:.6f}\n", static_cast<double>(i) / 51200.0,
                     v);
      for (std::size_t k = at; decimalComma && k < text.size(); ++k) {
        if (text[k] == '.') text[k] = ',';
      }
    }
    return text;
  };
  static const std::string point = make(false);
  static const std::string comma_ = make(true);
  return comma ? comma_ : point;
}

void Count(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

void BM_TableRead(benchmark::State& state) {
  const std::string& text = Text(state.range(0) != 0);
  for (auto _ : state) benchmark::DoNotOptimize(exchange::ReadTable(exchange::BytesOf(text)));
  Count(state, text);
}
BENCHMARK(BM_TableRead)->Arg(0)->Arg(1)->ArgName("decimal_comma")->Unit(benchmark::kMillisecond);

/// What it is compared with: the same numbers of the same text, nothing checked.
void BM_FromChars(benchmark::State& state) {
  const std::string& text = Text(false);
  for (auto _ : state) {
    std::vector<double> times, values;
    const char* p = text.data();
    const char* const end = p + text.size();
    p = static_cast<const char*>(std::memchr(p, '\n', text.size())) + 1;
    while (p != end) {
      double t = 0.0;
      double v = 0.0;
      p = std::from_chars(p, end, t).ptr + 1;
      p = std::from_chars(p, end, v).ptr + 1;
      times.push_back(t);
      values.push_back(v);
    }
    benchmark::DoNotOptimize(times);
    benchmark::DoNotOptimize(values);
  }
  Count(state, text);
}
BENCHMARK(BM_FromChars)->Unit(benchmark::kMillisecond);

/// The lines alone, as `wc -l` counts them.
void BM_CountLines(benchmark::State& state) {
  const std::string& text = Text(false);
  for (auto _ : state) {
    std::size_t lines = 0;
    const char* p = text.data();
    const char* const end = p + text.size();
    while (
        (p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p))))) {
      ++lines;
      if (++p == end) break;
    }
    benchmark::DoNotOptimize(lines);
  }
  Count(state, text);
}
BENCHMARK(BM_CountLines)->Unit(benchmark::kMillisecond);

}  // namespace
