// Prints the table of a set's fields as it stands in docs/command.md.
//   field_tables SET     the key of the set; "settings" for those of a definition
#include <cmath>
#include <cstdio>
#include <string>

#include "definition/fields.h"
#include "text/text.h"

namespace {

using namespace qarv::definition;

std::string Code(const std::string& text) { return "`" + text + "`"; }

std::string RangeText(const Range& range) {
  using qarv::text::NumberText;
  const bool low = std::isfinite(range.low);
  const bool high = std::isfinite(range.high);
  if (low && high) return NumberText(range.low) + " to " + NumberText(range.high);
  if (low) return (range.open ? "above " : "from ") + NumberText(range.low);
  return high ? "up to " + NumberText(range.high) : "";
}

std::string MeaningOf(const FieldInfo& field) {
  std::string text = field.sentence;
  std::string names;
  for (const auto& [value, name] : field.names) {
    if (!names.empty()) names += ", ";
    names += Code(name);
  }
  return names.empty() ? text : text + ": " + names;
}

void PrintTable(const SetInfo& set, const char* title) {
  std::printf("| %s | unit | default | range | |\n|---|---|---|---|---|\n", title);
  for (const FieldInfo& field : set.fields) {
    std::printf("| %s%s | %s | %s | %s | %s |\n", Code(field.key).c_str(),
                field.required ? "*" : "", field.unit.c_str(),
                field.standard.empty() ? "" : Code(field.standard).c_str(),
                RangeText(field.range).c_str(), MeaningOf(field).c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string wanted = argc == 2 ? argv[1] : "";
  for (const SetInfo& set : AllSets()) {
    if ((set.key.empty() ? "settings" : set.key) != wanted) continue;
    PrintTable(set, wanted.c_str());
    return 0;
  }
  std::fprintf(stderr, "field_tables: no set %s\n", wanted.c_str());
  return 2;
}
