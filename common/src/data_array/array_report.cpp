// The one line that a failing range check of the arrays prints.
#include "common/data_array/array_report.h"

#include <iostream>
#include <string>

namespace qarv::common {

void ReportArrayError(const char* path, int line, const char* message) {
  // One piece, so that lines of several threads do not mix.
  const std::string text =
      "[Error] " + std::string(path) + "(" + std::to_string(line) + ")" + message + "\n";
  std::cerr << text << std::flush;
}

}  // namespace qarv::common
