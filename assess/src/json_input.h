// Reading one JSON object of ours: what is wrong becomes an Error with its key and line.
#pragma once

#include <string_view>

#include "assess/error.h"
#include "definition/error.h"
#include "json_text.h"

namespace qarv::assess {

/// What `read` makes of the object in a text.
/// @throws Error, with key and line, where the text is no JSON object, has a key twice, or `read`
///         throws an Error of either library
template <class Read>
auto ReadObject(std::string_view text, Read read) {
  const auto lineOf = [&](const std::string& key) {
    return key.empty() ? 0 : definition::LineOf(text, key);
  };
  try {
    const definition::JsonTree tree = definition::ParseJson(text);
    if (!tree.Root().is_object()) throw Error("", "is not an object");
    return read(tree.Root());
  } catch (const definition::Error& e) {
    throw Error(e.GetKey(), e.GetText(), e.GetLine() != 0 ? e.GetLine() : lineOf(e.GetKey()));
  } catch (const Error& e) {
    throw Error(e.GetKey(), e.what(), lineOf(e.GetKey()));
  }
}

}  // namespace qarv::assess
