// The JSON Schema of a definition, from the list of fields.
#include <cmath>

#include "definition/fields.h"
#include "json_fields.h"

namespace qarv::definition {

namespace {

/// "#/$defs/Classical", where the schema of a set stands.
Json ReferenceTo(const std::string& set) { return Json{{"$ref", "#/$defs/" + set}}; }

/// Bytes that are not UTF-8.
Json EscapedText() {
  return Json{{"type", "object"},
              {"required", Json::array({"Escaped"})},
              {"additionalProperties", false},
              {"properties", {{"Escaped", {{"type", "string"}}}}}};
}

/// A number, or the string that stands for what is none.
Json NumberSchema(const Range& range) {
  Json json{{"type", Json::array({"number", "string"})},
            {"pattern", "^(nan|nan\\(0x[0-9a-f]{16}\\)|-?inf|[-+]?[0-9.]+([eE][-+]?[0-9]+)?)$"}};
  if (std::isfinite(range.low)) json[range.open ? "exclusiveMinimum" : "minimum"] = range.low;
  if (std::isfinite(range.high)) json["maximum"] = range.high;
  return json;
}

Json UnitSchema() {
  const Json codes{{"type", "array"}, {"minItems", 4}, {"maxItems", 4}};
  return Json{
      {"anyOf",
       {{{"type", "string"}},
        {{"type", "object"},
         {"required", {"Codes", "Calcs", "Suffix"}},
         {"properties", {{"Codes", codes}, {"Calcs", codes}, {"Suffix", Json::object()}}}}}}};
}

Json EnumerationSchema(const EnumNames& names) {
  if (names.empty()) return Json{{"type", "integer"}};
  Json list = Json::array();
  for (const auto& [value, name] : names) list.push_back(name);
  return Json{{"anyOf", {{{"enum", list}}, {{"type", "integer"}}}}};
}

Json ValueSchema(const FieldInfo& field) {
  switch (field.kind) {
    case ValueKind::Number:
      return NumberSchema(field.range);
    case ValueKind::Count:
      return Json{{"type", "integer"}, {"minimum", std::fmax(field.range.low, 0.0)}};
    case ValueKind::Flag:
      return Json{{"type", "boolean"}};
    case ValueKind::Text:
      return Json{{"anyOf", {{{"type", "string"}}, EscapedText()}}};
    case ValueKind::Enumeration:
      return EnumerationSchema(field.names);
    case ValueKind::Unit:
      return UnitSchema();
    case ValueKind::Numbers:
      return Json{{"type", "array"}, {"items", NumberSchema({})}};
    case ValueKind::Set:
      return ReferenceTo(field.set);
    case ValueKind::List:
      return Json{{"type", "array"}, {"items", ReferenceTo(field.set)}};
    case ValueKind::Samples:
      return Json{{"anyOf",
                   {{{"type", "array"}, {"items", NumberSchema({})}, {"minItems", 1}},
                    {{"type", "string"}},
                    EscapedText()}}};
  }
  return Json::object();
}

/// The value with what people are told of it.
Json FieldSchema(const FieldInfo& field) {
  Json json = ValueSchema(field);
  json["description"] =
      field.unit.empty() ? field.sentence : field.sentence + " [" + field.unit + "]";
  if (!field.standard.empty()) json["default"] = Json::parse(field.standard);
  return json;
}

Json SetSchema(const SetInfo& set) {
  Json properties = Json::object();
  Json required = Json::array();
  for (const FieldInfo& field : set.fields) {
    properties[field.key] = FieldSchema(field);
    if (field.required) required.push_back(field.key);
  }
  Json json{{"type", "object"}, {"description", set.title}, {"properties", properties}};
  if (!required.empty()) json["required"] = required;
  json["additionalProperties"] = false;
  return json;
}

}  // namespace

std::string SchemaText() {
  Json schema = Json::object();
  Json sets = Json::object();
  Json oneFamily = Json::array();
  Json families = Json::object();
  for (const SetInfo& set : AllSets()) {
    if (set.key.empty()) {
      schema = SetSchema(set);
      continue;
    }
    sets[set.key] = SetSchema(set);
    if (!set.family) continue;
    families[set.key] = ReferenceTo(set.key);
    oneFamily.push_back(Json{{"required", Json::array({set.key})}});
  }
  Json out{{"$schema", "https://json-schema.org/draft/2020-12/schema"},
           {"title", "Definition of a test waveform"}};
  schema["description"] = "settings and exactly one waveform family";
  for (const auto& item : families.items()) schema["properties"][item.key()] = item.value();
  schema["properties"]["$schema"] = Json{{"type", "string"}};
  out.update(schema);
  out["oneOf"] = oneFamily;
  out["$defs"] = sets;
  return out.dump(2) + "\n";
}

}  // namespace qarv::definition
