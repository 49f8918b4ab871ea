// A list of results, as text and as JSON.
#include "entries.h"

#include <fmt/format.h>

namespace qarv::command {

std::string ValueText(const Entry& entry) {
  const std::string value = entry.value.is_number_float()
                                ? fmt::format("{:.6g}", entry.value.get<double>())
                            : entry.value.is_string() ? entry.value.get<std::string>()
                                                      : entry.value.dump();
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
    item["value"] = entry.value;
    if (!entry.unit.empty()) item["unit"] = entry.unit;
    json[entry.key] = item;
  }
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace qarv::command
