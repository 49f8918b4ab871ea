// JSON text as a tree, with a look at it before it becomes one, and the line of a key in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "json_tree.h"

namespace qarv::definition {

/// The tree of a text.
/// @throws Error if it is no JSON, has a key twice in one object, or more depth or keys than any
///         definition
JsonTree ParseJson(std::string_view text);

/// The line of a key ("Classical.TolUserDef.TolMainU", "Damping.Elements[3].Freq"), from 1; of what
/// it stands in, where it is missing.
std::size_t LineOf(std::string_view text, const std::string& key);

}  // namespace qarv::definition
