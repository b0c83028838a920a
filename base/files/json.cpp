#include "base/files/json.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarvo {
namespace {

/// "line 3, column 7" of the last byte read, where `bytesRead` were.
std::string LineAndColumn(std::string_view text, std::size_t bytesRead) {
  const std::string_view before = text.substr(0, bytesRead == 0 ? 0 : bytesRead - 1);
  const auto line = 1 + std::ranges::count(before, '\n');
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0
  return "line " + std::to_string(line) + ", column " +
         std::to_string(before.size() - lineStart + 1);
}

/// Finds what the parser must not be given: a zero byte, which it takes for the end of the text,
/// and nesting that is too deep, before any of it is built. False after a fault.
bool IsReadable(std::string_view text, SceneFaults& faults) {
  std::size_t depth = 0;
  bool isInString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char letter = text[i];
    if (letter == '\0') {
      faults.Add(LineAndColumn(text, i + 1), "JSON text expected, a zero byte given");
      return false;
    }
    if (letter == '"') {
      isInString = !isInString;
    } else if (isInString) {
      i += letter == '\\' ? 1 : 0;
    } else if (letter == '[' || letter == '{') {
      if (++depth > kDeepestNesting) {
        faults.Add(LineAndColumn(text, i + 1), "at most " + std::to_string(kDeepestNesting) +
                                                   " lists and objects inside one another "
                                                   "expected, another one given");
        return false;
      }
    } else if (letter == ']' || letter == '}') {
      depth -= depth > 0 ? 1 : 0;
    }
  }
  return true;
}

/// The parser's message without its name, its error number and its position.
std::string WithoutPreamble(std::string_view words) {
  for (const std::string_view ending : {"] ", "parse error at ", ": "}) {
    const std::size_t place = words.find(ending);
    if (place != std::string_view::npos) {
      words.remove_prefix(place + ending.size());
    }
  }
  return std::string(words);
}

std::string TooLong(std::size_t length) {
  return "text of at most " + std::to_string(kLongestText) + " bytes expected, " +
         std::to_string(length) + " given";
}

/// Builds the value from the parser's events, with the path of each key in the file.
class Builder : public nlohmann::json_sax<Json> {
 public:
  Builder(std::string_view text, SceneFaults& faults) : text_(text), faults_(faults) {}

  Json Take() { return std::move(root_); }

  bool null() override { return Put(nullptr); }
  bool boolean(bool value) override { return Put(value); }
  bool number_integer(number_integer_t value) override { return Put(value); }
  bool number_unsigned(number_unsigned_t value) override { return Put(value); }
  bool number_float(number_float_t value, const string_t& /*words*/) override { return Put(value); }
  bool string(string_t& value) override {
    const std::size_t length = value.size();
    Put(std::move(value));
    if (length > kLongestText) {
      faults_.Add(PathOfLast(), TooLong(length));
    }
    return true;
  }
  bool binary(binary_t& /*value*/) override { return false; }  // JSON text has none
  bool start_object(std::size_t /*size*/) override { return Open(Json::object()); }
  bool start_array(std::size_t /*size*/) override { return Open(Json::array()); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }

  bool key(string_t& key) override {
    if (key.size() > kLongestText) {
      faults_.Add(PathTo(Path(), key), "key: " + TooLong(key.size()));
    }
    if (open_.back().HasMember(key)) {
      faults_.Add(PathTo(Path(), key), "key given twice");
    }
    open_.back().key = std::move(key);
    return true;
  }

  bool parse_error(std::size_t position, const std::string& lastToken,
                   const Json::exception& error) override {
    const bool isNumber = dynamic_cast<const Json::out_of_range*>(&error) != nullptr;
    faults_.Add(LineAndColumn(text_, position),
                isNumber ? "finite number expected, " + lastToken + " given"
                         : WithoutPreamble(error.what()));
    return false;
  }

 private:
  /// A list or object that is not complete yet.
  struct Unfinished {
    Json* value = nullptr;
    std::string key;  ///< of the member under way
    /// Places of the members, once there are many: the library looks for each from the start.
    std::unordered_map<std::string, std::size_t> places;

    [[nodiscard]] bool HasMember(const std::string& name) { return Find(name) != nullptr; }

    /// The member of this name; null when there is none.
    Json* Find(const std::string& name) {
      constexpr std::size_t kFew = 16;
      if (value->size() <= kFew) {
        const auto found = value->find(name);
        return found == value->end() ? nullptr : &*found;
      }
      for (std::size_t i = places.size(); i < value->size(); ++i) {
        places.emplace(MemberAt(i)->first, i);
      }
      const auto found = places.find(name);
      return found == places.end() ? nullptr : &MemberAt(found->second)->second;
    }

    [[nodiscard]] Json::object_t::iterator MemberAt(std::size_t place) const {
      return value->get_ref<Json::object_t&>().begin() + static_cast<std::ptrdiff_t>(place);
    }

    /// Sets the member under way. Not with the library's own operator, which looks for it again.
    Json* Set(Json member) {
      if (Json* known = Find(key)) {
        return &(*known = std::move(member));
      }
      auto& members = value->get_ref<Json::object_t&>();
      return &static_cast<Json::object_t::Container&>(members)
                  .emplace_back(key, std::move(member))
                  .second;
    }
  };

  /// Path of the innermost list or object. Put together only when asked for: deep nesting must not
  /// cost a long path at each level.
  [[nodiscard]] std::string Path() const {
    return PathThrough(open_.empty() ? 0 : open_.size() - 1);
  }

  /// Path of the value that was put last.
  [[nodiscard]] std::string PathOfLast() const { return PathThrough(open_.size()); }

  [[nodiscard]] std::string PathThrough(std::size_t levels) const {
    std::string path;
    for (std::size_t level = 0; level < levels; ++level) {
      const Json& value = *open_[level].value;
      path = value.is_array() ? PathTo(path, value.size() - 1) : PathTo(path, open_[level].key);
    }
    return path;
  }

  Json* Place(Json value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return &root_;
    }
    Json& parent = *open_.back().value;
    if (parent.is_array()) {
      parent.push_back(std::move(value));
      return &parent.back();
    }
    return open_.back().Set(std::move(value));
  }

  bool Put(Json value) {
    Place(std::move(value));
    return true;
  }

  bool Open(Json value) {
    open_.push_back({Place(std::move(value)), ""});
    return true;
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  std::string_view text_;
  SceneFaults& faults_;
  Json root_;
  std::vector<Unfinished> open_;
};

}  // namespace

std::optional<Json> ParseJson(const std::string& text, SceneFaults& faults) {
  if (!IsReadable(text, faults)) {
    return std::nullopt;
  }
  Builder builder(text, faults);
  if (!Json::sax_parse(text, &builder)) {
    return std::nullopt;
  }
  return builder.Take();
}

}  // namespace tarvo
