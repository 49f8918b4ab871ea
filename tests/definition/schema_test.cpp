// The list of fields, and the schema that is made from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <set>
#include <string>

#include "definition/definition.h"
#include "definition/fields.h"
#include "json_text.h"

namespace qarv::test {
namespace {

using definition::FieldInfo;
using definition::Json;
using definition::SetInfo;
using definition::ValueKind;

const SetInfo& SetOf(const std::string& key) {
  const auto& sets = definition::AllSets();
  const auto found =
      std::find_if(sets.begin(), sets.end(), [&](const SetInfo& set) { return set.key == key; });
  EXPECT_NE(found, sets.end()) << key;
  return *found;
}

TEST(Fields, EachSaysWhatItIs) {
  std::set<std::string> sets;
  for (const SetInfo& set : definition::AllSets()) {
    EXPECT_TRUE(sets.insert(set.key).second) << set.key;
    EXPECT_FALSE(set.title.empty());
    std::set<std::string> keys;
    for (const FieldInfo& field : set.fields) {
      EXPECT_TRUE(keys.insert(field.key).second) << field.key;
      EXPECT_FALSE(field.sentence.empty()) << field.key;
      EXPECT_FALSE(field.sentence.ends_with('.')) << field.key;
      EXPECT_LE(field.range.low, field.range.high) << field.key;
      EXPECT_TRUE(field.standard.empty() || !field.required) << field.key;
      const bool holdsSet = field.kind == ValueKind::Set || field.kind == ValueKind::List;
      EXPECT_EQ(holdsSet, !field.set.empty()) << field.key;
      if (holdsSet) SetOf(field.set);
    }
  }
  EXPECT_EQ(std::count_if(definition::AllSets().begin(), definition::AllSets().end(),
                          [](const SetInfo& set) { return set.family; }),
            7);
}

// What stands in the list as the default is what the field has where it is not given.
TEST(Fields, TheirDefaultsChangeNothing) {
  Json bare{{"Fsamp", 1000.0}, {"Single", {{"Period", 0.1}, {"PeakLevel", 1.0}, {"Nsamp", 9}}}};
  Json full = bare;
  for (const FieldInfo& field : SetOf("").fields) {
    if (!full.contains(field.key)) full[field.key] = Json::parse(field.standard);
  }
  for (const FieldInfo& field : SetOf("Single").fields) {
    if (!field.required) full["Single"][field.key] = Json::parse(field.standard);
  }
  EXPECT_GT(full["Single"].size(), bare["Single"].size());
  EXPECT_EQ(ToJson(definition::FromJson(full.dump())), ToJson(definition::FromJson(bare.dump())));
}

TEST(Schema, NamesEveryField) {
  const Json schema = Json::parse(definition::SchemaText());
  EXPECT_EQ(schema["$schema"], "https://json-schema.org/draft/2020-12/schema");
  for (const SetInfo& set : definition::AllSets()) {
    const Json& at = set.key.empty() ? schema : schema["$defs"][set.key];
    for (const FieldInfo& field : set.fields) {
      ASSERT_TRUE(at["properties"].contains(field.key)) << set.key << "." << field.key;
      const std::string said = at["properties"][field.key]["description"];
      EXPECT_TRUE(said.starts_with(field.sentence)) << said;
    }
    EXPECT_EQ(at["additionalProperties"], false);
  }
  EXPECT_EQ(schema["oneOf"].size(), 7U);
}

}  // namespace
}  // namespace qarv::test
