// The one error of reading and writing sample files: what is wrong, and where.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "common/int_types.h"

namespace qarv::exchange {

/// What is wrong with a file, or with samples that a format cannot hold.  `what()` is the text
/// without the place ("has no samples"), so that the caller puts in front what it calls the file.
class Error : public std::runtime_error {
 public:
  /// @param[in] line  that is wrong, the first one being 1; 0 if it is the whole
  explicit Error(const std::string& what, common::uint64 line = 0)
      : std::runtime_error(what), line_(line) {}

  /// The same with the byte that is wrong, the first one being 0.
  static Error AtOffset(const std::string& what, common::uint64 offset) {
    Error error(what);
    error.offset_ = offset;
    return error;
  }

  /// The line that is wrong, from 1; 0 if there is none.
  common::uint64 GetLine() const { return line_; }

  /// The byte that is wrong, from 0; none where that is not known.
  std::optional<common::uint64> GetOffset() const { return offset_; }

 private:
  common::uint64 line_;
  std::optional<common::uint64> offset_;
};

}  // namespace qarv::exchange
