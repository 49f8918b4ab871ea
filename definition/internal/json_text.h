// JSON text as a tree, with a look at it before it becomes one, and the line of a key in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "json_fields.h"

namespace qarv::definition {

/// A tree that takes itself down without asking for memory.  Its parts cannot: the destructor of a
/// list or object makes a copy of what is in it first, and where there is no memory for that it
/// ends the process.  Whatever may hold samples is therefore kept in one of these.
class JsonTree {
 public:
  JsonTree() = default;
  explicit JsonTree(Json root) : root_(std::move(root)) {}
  JsonTree(JsonTree&&) = default;
  JsonTree& operator=(JsonTree&&) = delete;
  ~JsonTree();

  Json& Root() { return root_; }
  const Json& Root() const { return root_; }

 private:
  Json root_;
};

/// The tree of a text.
/// @throws Error if it is no JSON, has a key twice in one object, or more depth or keys than any
///         definition
JsonTree ParseJson(std::string_view text);

/// The line of a key ("Classical.TolUserDef.TolMainU", "Damping.Elements[3].Freq"), from 1; of what
/// it stands in, where it is missing.
std::size_t LineOf(std::string_view text, const std::string& key);

}  // namespace qarv::definition
