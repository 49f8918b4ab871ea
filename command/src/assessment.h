// What keeps a waveform or a record from being assessed, as the command says it.
#pragma once

#include <string>

#include "assess/error.h"

namespace qarv::command {

/// Ends the command with what is wrong with an option or with a file.
[[noreturn]] void FailWith(const assess::Error& e, const std::string& file);

/// What `assess` gives.  Ends the command where it gives nothing.
/// @param[in] file  that is assessed
template <class F>
auto Assessed(const std::string& file, F assess) {
  try {
    return assess();
  } catch (const assess::Error& e) {
    FailWith(e, file);
  }
}

}  // namespace qarv::command
