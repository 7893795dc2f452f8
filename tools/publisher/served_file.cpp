#include "publisher/served_file.hpp"

#include <sys/stat.h>

#include <array>

#include "base/runtime_error.hpp"

namespace publisher {
namespace {

struct TypeOfEnding {
  std::string_view ending;
  const char* type;
};

constexpr std::array<TypeOfEnding, 4> kTypes = {{
    {".txt", "text/plain; charset=utf-8"},
    {".ini", "text/plain; charset=utf-8"},
    {".php", "text/html; charset=utf-8"},
    {".zip", "application/zip"},
}};

const char* TypeOf(const std::string& path) {
  for (const TypeOfEnding& each : kTypes) {
    if (path.ends_with(each.ending)) return each.type;
  }
  return "application/octet-stream";
}

constexpr const char* kHttpDate = "%a, %d %b %Y %H:%M:%S GMT";

std::string HttpDate(std::time_t time) {
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 40> text{};
  std::strftime(text.data(), text.size(), kHttpDate, &parts);
  return text.data();
}

}  // namespace

std::optional<ServedFile> OpenServed(const std::string& path) try {
  // The publisher replaces files at any time, so the open one is compared with the one described.
  for (;;) {
    struct stat described;
    if (stat(path.c_str(), &described) != 0) return std::nullopt;
    const auto stamp = platform::StampOf(path);
    platform::InputFile file(path);
    if (!stamp || platform::StampOf(path) != stamp) continue;
    return ServedFile{std::move(file),
                      stamp->size,
                      "\"" + std::to_string(stamp->size) + "-" + std::to_string(stamp->modified) + "\"",
                      described.st_mtime,
                      HttpDate(described.st_mtime),
                      TypeOf(path)};
  }
} catch (const base::RuntimeError&) {
  return std::nullopt;
}

std::optional<std::time_t> TimeOf(const std::string& httpDate) {
  std::tm parts{};
  const char* end = strptime(httpDate.c_str(), kHttpDate, &parts);
  if (end == nullptr || *end != '\0') return std::nullopt;
  return timegm(&parts);
}

}  // namespace publisher
