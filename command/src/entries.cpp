// A list of results, as text and as JSON.
#include "entries.h"

#include <fmt/format.h>

#include "text/text.h"

namespace qarv::command {

using text::Plain;

Json ShownValue(const Entry& entry) {
  if (entry.value.is_number_float()) return Plain(entry.value.get<double>());
  // As WriteValue has it, with its bits.
  const bool odd = entry.value.is_string() && entry.value.get<std::string>().starts_with("nan(");
  return odd ? Json("nan") : entry.value;
}

std::string ValueText(const Entry& entry) {
  const Json shown = ShownValue(entry);
  const std::string value = shown.is_number_float() ? fmt::format("{:.6g}", shown.get<double>())
                            : shown.is_string()     ? shown.get<std::string>()
                                                    : shown.dump();
  return entry.unit.empty() ? value : value + " " + entry.unit;
}

std::string AsText(const Entries& entries) {
  std::string text;
  for (const Entry& entry : entries)
    text += fmt::format("{:<34} {}\n", entry.label, ValueText(entry));
  return text;
}

std::string AsJson(const Entries& entries) {
  Json json = Json::object();
  for (const Entry& entry : entries) {
    Json item = Json::object();
    item["value"] = ShownValue(entry);
    if (!entry.unit.empty()) item["unit"] = entry.unit;
    json[entry.key] = item;
  }
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace qarv::command
