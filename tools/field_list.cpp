// Prints every set of fields as JSON, for the checks that hold other places against the one list.
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "definition/fields.h"

namespace {

using namespace qarv::definition;
using Json = nlohmann::ordered_json;

const char* KindName(ValueKind kind) {
  switch (kind) {
    case ValueKind::Number:
      return "Number";
    case ValueKind::Count:
      return "Count";
    case ValueKind::Flag:
      return "Flag";
    case ValueKind::Text:
      return "Text";
    case ValueKind::Enumeration:
      return "Enumeration";
    case ValueKind::Unit:
      return "Unit";
    case ValueKind::Numbers:
      return "Numbers";
    case ValueKind::Set:
      return "Set";
    case ValueKind::List:
      return "List";
    case ValueKind::Samples:
      return "Samples";
  }
  return "";
}

Json FieldJson(const FieldInfo& field) {
  Json json{{"key", field.key},
            {"kind", KindName(field.kind)},
            {"unit", field.unit},
            {"sentence", field.sentence}};
  if (std::isfinite(field.range.low)) json[field.range.open ? "above" : "from"] = field.range.low;
  if (std::isfinite(field.range.high)) json["to"] = field.range.high;
  if (!field.initial.empty()) json["initial"] = Json::parse(field.initial);
  return json;
}

}  // namespace

int main() {
  Json sets = Json::object();
  for (const SetInfo& set : AllSets()) {
    Json& fields = sets[set.key.empty() ? "settings" : set.key] = Json::array();
    for (const FieldInfo& field : set.fields) fields.push_back(FieldJson(field));
  }
  std::puts(sets.dump(1).c_str());
}
