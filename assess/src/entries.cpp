// A list of results, as text and as JSON.
#include "assess/entries.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "json_tree.h"
#include "text/text.h"

namespace qarv::assess {

using definition::Json;

namespace {

/// As JSON; what is no number is a text there.
Json Shown(const Value& value) {
  const double* const number = std::get_if<double>(static_cast<const AnyValue*>(&value));
  if (number == nullptr) {
    return std::visit([](const auto& v) { return Json(v); }, static_cast<const AnyValue&>(value));
  }
  const double v = text::Plain(*number);
  return std::isfinite(v) ? Json(v) : Json(text::NumberText(v));
}

}  // namespace

void Append(Entries&& more, Entries* entries) {
  entries->reserve(entries->size() + more.size());
  for (Entry& entry : more) entries->push_back(std::move(entry));
}

std::string BareText(const Entry& entry) {
  const Json shown = Shown(entry.value);
  return shown.is_string() ? shown.get<std::string>() : shown.dump();
}

std::string ValueText(const Entry& entry) {
  const Json shown = Shown(entry.value);
  const std::string value =
      shown.is_number_float() ? fmt::format("{:.6g}", shown.get<double>()) : BareText(entry);
  return entry.unit.empty() ? value : value + " " + entry.unit;
}

std::string AsText(const Entries& entries) {
  std::string out;
  for (const Entry& entry : entries)
    out += fmt::format("{:<34} {}\n", entry.label, ValueText(entry));
  return out;
}

std::string AsJson(const Entries& entries) {
  definition::JsonTree json(Json::object());
  for (const Entry& entry : entries) {
    definition::JsonTree shown(Shown(entry.value));
    Json& item = definition::Member(json.Root(), entry.key) = Json::object();
    Json& value = definition::Member(item, "value");
    value = shown.Take();
    if (!entry.unit.empty()) definition::Member(item, "unit") = entry.unit;
  }
  return json.Root().dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace qarv::assess
