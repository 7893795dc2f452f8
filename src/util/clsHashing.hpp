#pragma once

#include <stop_token>
#include <string>
#include <string_view>

namespace util {

// Message digests as lower-case hexadecimal text.
class clsHashing {
 public:
  // Of the text's bytes in the system's narrow character set (`text` is UTF-8).
  std::string MD5String(std::string_view text) const;

  // Of a file's contents, read in pieces. Raises the file's own error when it cannot be read; empty when
  // `stop` is requested before the end.
  std::string MD5File(const std::string& File, std::stop_token stop = {}) const;

  // Of the text, one byte per character of the narrow character set. The class has always offered it; nothing
  // calls it today.
  std::string SHA1(std::string_view text) const;
};

}  // namespace util
