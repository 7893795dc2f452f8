#pragma once

#include <cstdint>
#include <string_view>

namespace publisher {

// How the files of a publication are asked for, which decides how long caches may keep them.
enum class FileKind {
  Poll,      // asked by every open launcher all day: the probe, the servers, the news
  Personal,  // the address query
  Archive,   // a numbered patch, which never changes
  Replaced,  // everything else: its next version comes under the same name
};

struct CacheRule {
  const char* header;          // what Cache-Control should say
  std::uint32_t leastSeconds;  // fresh for less: it works, but costs the mirror requests
  std::uint32_t mostSeconds;   // fresh for more: players are kept from what is new
};

// `path` is relative to the publication, "/" between its parts.
FileKind KindOf(std::string_view path);
const CacheRule& CachingOf(FileKind kind);

}  // namespace publisher
