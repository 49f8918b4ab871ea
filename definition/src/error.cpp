// What is wrong with a definition.
#include "definition/error.h"

#include "text/text.h"

namespace qarv::definition {

Error::Error(Kind kind, const std::string& key, const std::string& text, std::size_t line)
    : std::runtime_error(text::OneLine(key.empty() ? text : key + ": " + text)),
      kind_(kind),
      key_(text::OneLine(key)),
      text_(text::OneLine(text)),
      line_(line) {}

}  // namespace qarv::definition
