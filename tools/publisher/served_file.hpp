#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "platform/files.hpp"

namespace publisher {

// A file as it is at one moment, open for sending, with what HTTP says of it (RFC 9110, 8.8).
struct ServedFile {
  platform::InputFile file;
  std::uint64_t size;
  std::string etag;  // quoted
  std::time_t modified;
  std::string lastModified;  // the same as IMF-fixdate
  const char* type;
};

// None when there is no such file to be had.
std::optional<ServedFile> OpenServed(const std::string& path);

// The moment that an IMF-fixdate names; none when it is none.
std::optional<std::time_t> TimeOf(const std::string& httpDate);

}  // namespace publisher
