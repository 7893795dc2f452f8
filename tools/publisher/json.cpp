#include "publisher/json.hpp"

namespace publisher {

std::string JsonString(const std::string& text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string json = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      json.append({'\\', c});
    } else if (code < ' ') {
      json.append("\\u00").append({kHex[code >> 4], kHex[code & 15]});
    } else {
      json += c;
    }
  }
  return json + "\"";
}

std::string JsonArray(const std::vector<std::string>& values) {
  std::string json;
  for (const std::string& value : values) json.append(json.empty() ? "" : ",").append(value);
  return "[" + json + "]";
}

std::string JsonStrings(const std::vector<std::string>& texts) {
  std::vector<std::string> values;
  for (const std::string& text : texts) values.push_back(JsonString(text));
  return JsonArray(values);
}

JsonObject& JsonObject::Add(const std::string& key, const std::string& json) {
  members_.append(members_.empty() ? "" : ",").append(JsonString(key)).append(":").append(json);
  return *this;
}

}  // namespace publisher
