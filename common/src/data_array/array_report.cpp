// The one line that a failing range check of the arrays prints.
#include "common/data_array/array_report.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <iostream>

namespace qarv::common {

void ReportArrayError(const char* path, int line, const char* message) noexcept try {
  // On the stack, as a check may fail where no memory is left, and in one piece, so that the lines
  // of several threads do not mix.
  std::array<char, 512> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "[Error] %s(%d)%s", path, line, message);
  if (length < 0) return;
  const std::size_t end = std::min(static_cast<std::size_t>(length), text.size() - 1);
  text[end] = '\n';  // in the place of the terminating 0
  std::cerr.write(text.data(), static_cast<std::streamsize>(end + 1)).flush();
} catch (...) {
  // The caller has set the stream to throw.  A line that cannot be printed is no reason to fail.
}

void ReportMoreArrayErrors(uint64 count) {
  std::cerr << "[Error] and " + std::to_string(count) + " more of the same\n" << std::flush;
}

}  // namespace qarv::common
