#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace publisher {

// A JSON text (RFC 8259) in the making; UTF-8.
std::string JsonString(const std::string& text);
std::string JsonArray(const std::vector<std::string>& values);   // of JSON texts
std::string JsonStrings(const std::vector<std::string>& texts);  // of plain texts

class JsonObject {
 public:
  JsonObject& Add(const std::string& key, const std::string& json);  // a JSON text
  JsonObject& AddText(const std::string& key, const std::string& text) { return Add(key, JsonString(text)); }
  JsonObject& AddNumber(const std::string& key, std::uint64_t number) {
    return Add(key, std::to_string(number));
  }
  JsonObject& AddBool(const std::string& key, bool value) { return Add(key, value ? "true" : "false"); }
  std::string Text() const { return "{" + members_ + "}"; }

 private:
  std::string members_;
};

}  // namespace publisher
