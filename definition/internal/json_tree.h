// Trees of JSON for which memory may run out: what the JSON library does not survive there is
// avoided.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace qarv::definition {

using Json = nlohmann::ordered_json;

/// A tree that takes itself down without asking for memory.  Its parts cannot: the destructor of a
/// list or object that is not empty makes a copy of what is in it first, and where there is no
/// memory for that it ends the process.  What is built or handed on is therefore kept in one of
/// these, and begins as Json::object() or Json::array(): a null that becomes one by its first
/// member is broken where there is no memory for it.
class JsonTree {
 public:
  JsonTree() = default;
  explicit JsonTree(Json root) : root_(std::move(root)) {}
  JsonTree(JsonTree&&) = default;
  JsonTree& operator=(JsonTree&&) = delete;
  ~JsonTree() { Empty(root_); }

  Json& Root() { return root_; }
  const Json& Root() const { return root_; }
  /// The tree as a plain value, for who keeps it in another.
  Json Take() { return std::move(root_); }

 private:
  /// Empties lists and objects from the inside out; what is empty goes without memory.
  static void Empty(Json& json) {
    if (json.is_array()) {
      auto& list = json.get_ref<Json::array_t&>();
      for (Json& element : list) Empty(element);
      list.clear();
    } else if (json.is_object()) {
      auto& object = json.get_ref<Json::object_t&>();
      for (auto& member : object) Empty(member.second);
      object.clear();
    }
  }

  Json root_;
};

/// A member of an object, null if it is new.  The library's own way to it copies all other members
/// where the object grows, and takes the copies down where there is no memory for all of them.
inline Json& Member(Json& object, const std::string& key) {
  auto& members = object.get_ref<Json::object_t&>();
  if (members.size() == members.capacity()) {
    Json::object_t larger;
    larger.reserve(2 * members.size() + 4);
    for (const auto& member : members) larger.emplace_back(member.first, nullptr);
    auto to = larger.begin();
    for (auto& member : members) (to++)->second = std::move(member.second);
    members.swap(larger);
  }
  return object[key];
}

}  // namespace qarv::definition
