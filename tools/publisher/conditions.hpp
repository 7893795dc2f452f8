#pragma once

#include <cstdint>
#include <string>

#include "publisher/served_file.hpp"

namespace publisher {

// The headers of a request that ask for less than the whole file (RFC 9110, 13 and 14); empty when missing.
struct Conditions {
  std::string ifNoneMatch, ifModifiedSince, range, ifRange;
};

// What a request is to get of a file.
struct Portion {
  enum class Kind { Whole, Part, NotModified, BeyondTheEnd };
  Kind kind = Kind::Whole;
  std::uint64_t first = 0, length = 0;  // of a part
};

// Several ranges at once, and a range that is none, get the whole file.
Portion PortionFor(const ServedFile& file, const Conditions& asked);

}  // namespace publisher
