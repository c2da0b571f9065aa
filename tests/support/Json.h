// A JSON reader for tests: it refuses everything that is not valid.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace test {

/// A JSON value. Numbers keep their text.
struct Json {
  enum class Kind { Null, True, False, Number, Text, Array, Object };
  Kind kind = Kind::Null;
  std::string text = {};  ///< of a Number or Text, in UTF-8
  std::vector<Json> items = {};
  std::map<std::string, Json> members = {};

  bool IsNull() const { return kind == Kind::Null; }
  /// Throws std::out_of_range if there is no such member.
  const Json& operator[](const std::string& name) const { return members.at(name); }
  const Json& operator[](std::size_t index) const { return items.at(index); }
};

/// Throws std::runtime_error, with the place, if the text is not JSON.
Json ParseJson(std::string_view text);

}  // namespace test
