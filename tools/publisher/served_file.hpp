#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/files.hpp"

namespace publisher {

// A file as it is at one moment, open for sending, with what HTTP says of it (RFC 9110, 8.8).
struct ServedFile {
  platform::InputFile file;
  std::uint64_t size;
  std::string etag;          // quoted
  std::string lastModified;  // IMF-fixdate
  const char* type;
};

// None when there is no such file to be had.
std::optional<ServedFile> OpenServed(const std::string& path);

// Whether an If-None-Match header names `etag`.
bool Names(const std::string& ifNoneMatch, const std::string& etag);

}  // namespace publisher
