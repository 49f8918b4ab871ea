// JSON text as a tree.
#include "json_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <set>
#include <vector>

#include "definition/error.h"
#include "json_fields.h"

namespace qarv::definition {

namespace {

/// The characters of a text, with the line that has been read up to.
class LineReader {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  LineReader(const char* at, std::size_t* line) : at_(at), line_(line) {}
  reference operator*() const { return *at_; }
  LineReader& operator++() {
    if (*at_++ == '\n') ++*line_;
    return *this;
  }
  LineReader operator++(int) {
    LineReader before = *this;
    ++*this;
    return before;
  }
  bool operator==(const LineReader& other) const { return at_ == other.at_; }
  bool operator!=(const LineReader& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  std::size_t* line_;
};

/// Follows a parser through a text, with the place that it has come to.
class Follower : public nlohmann::json_sax<Json> {
 public:
  bool start_object(std::size_t /*size*/) override { return Open({}); }
  bool start_array(std::size_t /*size*/) override { return Open(0); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool key(std::string& name) override {
    open_.back().key = name;
    return Key(name);
  }
  bool null() override { return Scalar(); }
  bool boolean(bool /*v*/) override { return Scalar(); }
  bool number_integer(std::int64_t /*v*/) override { return Scalar(); }
  bool number_unsigned(std::uint64_t /*v*/) override { return Scalar(); }
  bool number_float(double /*v*/, const std::string& /*text*/) override { return Scalar(); }
  bool string(std::string& /*v*/) override { return Scalar(); }
  bool binary(Json::binary_t& /*v*/) override { return Scalar(); }
  bool parse_error(std::size_t /*at*/, const std::string& /*last*/,
                   const Json::exception& /*e*/) override {
    return false;  // and the parser says it
  }

 protected:
  /// An object or a list that is open, and where in it the parser is.
  struct Level {
    std::optional<std::size_t> index;  // in a list
    std::string key;                   // in an object
  };
  const std::vector<Level>& Levels() const { return open_; }

  virtual bool Opened() { return true; }
  virtual bool Closed() { return true; }
  virtual bool Key(const std::string& /*name*/) { return true; }
  /// Before a value that is an element of a list.
  virtual bool Element() { return true; }

 private:
  bool Open(std::optional<std::size_t> index) {
    const bool go = BeforeValue();
    open_.push_back({index, {}});
    return Opened() && go;
  }
  bool Close() {
    open_.pop_back();
    AfterValue();
    return Closed();
  }
  bool Scalar() {
    const bool go = BeforeValue();
    AfterValue();
    return go;
  }
  bool BeforeValue() { return open_.empty() || !open_.back().index || Element(); }
  void AfterValue() {
    if (!open_.empty() && open_.back().index) ++*open_.back().index;
  }

  std::vector<Level> open_;
};

/// Looks at a text before it becomes a tree.  A key that stands twice in one object is an error,
/// not a silent choice.  Depth and number of keys are bounded far above every definition: what is
/// kept and looked through stays small, whatever the text holds.
///
/// Not the parser's callback, for which it goes through all elements of a list at the end of each.
class Watch : public Follower {
 private:
  bool Opened() override {
    constexpr std::size_t kDeepest = 32;
    if (keys_.size() == kDeepest) {
      Place().Fail(fmt::format("is nested deeper than {} levels", kDeepest));
    }
    keys_.emplace_back();
    return true;
  }
  bool Closed() override {
    keys_.pop_back();
    return true;
  }
  bool Key(const std::string& name) override {
    constexpr std::size_t kMostKeys = 100;  // of an object
    if (!keys_.back().insert(name).second) Place().Key(name).Fail("stands twice");
    if (keys_.back().size() > kMostKeys) {
      Place().Fail(fmt::format("has an object of more than {} keys", kMostKeys));
    }
    return true;
  }

  std::vector<std::set<std::string>> keys_;  // of what is open, of a list none
};

/// Looks for the line of a key, or of the nearest that it stands in.
class Finder : public Follower {
 public:
  Finder(const std::string& key, const std::size_t* line) : wanted_(key), line_(line) {}
  std::size_t Found() const { return found_; }

 private:
  bool Key(const std::string& /*name*/) override { return Compare(); }
  bool Element() override { return Compare(); }

  /// @return false where the key itself was found
  bool Compare() {
    std::string here;
    for (const Level& level : Levels()) {
      here +=
          level.index ? fmt::format("[{}]", *level.index) : (here.empty() ? "" : ".") + level.key;
      if (!wanted_.starts_with(here)) return true;
    }
    const bool whole = here.size() == wanted_.size();
    const bool within = !whole && (wanted_[here.size()] == '.' || wanted_[here.size()] == '[');
    if ((whole || within) && here.size() >= best_) {
      best_ = here.size();
      found_ = *line_;
    }
    return !whole;
  }

  const std::string& wanted_;
  const std::size_t* line_;
  std::size_t best_ = 0;   // length of what was found
  std::size_t found_ = 1;  // the definition itself
};

/// What the parser found wrong, without its own marks and at a length that can be read.
std::string ParserMessage(const Json::exception& e) {
  constexpr std::size_t kLongest = 160;  // [byte]
  const std::string_view text = e.what();
  const std::size_t mark = text.find("] ");
  const std::string_view said = mark == std::string_view::npos ? text : text.substr(mark + 2);
  return std::string(said.substr(0, kLongest)).append(said.size() > kLongest ? "..." : "");
}

/// The line in which a parser has stopped.
std::size_t LineOfError(std::string_view text, const Json::exception& e) {
  const auto* const error = dynamic_cast<const Json::parse_error*>(&e);
  if (error == nullptr) return 0;
  const std::string_view before = text.substr(0, std::min(error->byte, text.size()));
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

/// Builds the tree of a text that has been looked at.  Not the library's own builder, whose tree
/// ends the process where memory runs out for it.
class Builder : public nlohmann::json_sax<Json> {
 public:
  Builder(std::string_view text, Json* root) : text_(text), root_(root) {}

  bool start_object(std::size_t /*size*/) override { return Open(Json::object()); }
  bool start_array(std::size_t /*size*/) override { return Open(Json::array()); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool key(std::string& name) override {
    key_ = std::move(name);
    return true;
  }
  bool null() override { return Scalar(nullptr); }
  bool boolean(bool v) override { return Scalar(v); }
  bool number_integer(std::int64_t v) override { return Scalar(v); }
  bool number_unsigned(std::uint64_t v) override { return Scalar(v); }
  bool number_float(double v, const std::string& /*text*/) override { return Scalar(v); }
  bool string(std::string& v) override { return Scalar(std::move(v)); }
  bool binary(Json::binary_t& /*v*/) override { return false; }
  bool parse_error(std::size_t /*at*/, const std::string& /*last*/,
                   const Json::exception& e) override {
    throw Error(Error::Kind::Input, "", "not JSON: " + ParserMessage(e), LineOfError(text_, e));
  }

 private:
  bool Open(Json empty) {
    open_.push_back(Put(std::move(empty)));
    return true;
  }
  bool Close() {
    open_.pop_back();
    return true;
  }
  bool Scalar(Json v) {
    Put(std::move(v));
    return true;
  }
  /// What is open is the last of what it is in, so that it stays where it is while it grows.
  Json* Put(Json v) {
    Json* const at = open_.empty() ? root_ : NewIn(open_.back());
    *at = std::move(v);
    return at;
  }
  Json* NewIn(Json* in) {
    if (in->is_object()) return &Member(*in, key_);
    auto& list = in->get_ref<Json::array_t&>();
    list.emplace_back();
    return &list.back();
  }

  std::string_view text_;
  Json* root_;
  std::vector<Json*> open_;
  std::string key_;  // of the value that comes next, in an object
};

}  // namespace

JsonTree ParseJson(std::string_view text) {
  Watch watch;
  static_cast<void>(Json::sax_parse(text, &watch));  // what is no JSON is said by the next
  JsonTree tree;
  Builder builder(text, &tree.Root());
  static_cast<void>(Json::sax_parse(text, &builder));
  return tree;
}

std::size_t LineOf(std::string_view text, const std::string& key) {
  std::size_t line = 1;
  Finder finder(key, &line);
  const char* const end = text.data() + text.size();
  std::size_t unused = 0;
  static_cast<void>(
      Json::sax_parse(LineReader(text.data(), &line), LineReader(end, &unused), &finder));
  return finder.Found();
}

}  // namespace qarv::definition
