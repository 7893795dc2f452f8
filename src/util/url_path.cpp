#include "util/url_path.hpp"

namespace util {

std::string UrlPath(std::string_view relativePath) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  static constexpr std::string_view kPlainMarks = "/-._~!$&'()*+,;=@";
  std::string result;
  for (const char c : relativePath) {
    const bool letterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (letterOrDigit || kPlainMarks.find(c) != std::string_view::npos) {
      result += c;
    } else {
      const auto code = static_cast<unsigned char>(c);
      result.append({'%', kHex[code >> 4], kHex[code & 15]});
    }
  }
  return result;
}

}  // namespace util
