#pragma once

#include <cstdint>

namespace web {

class AnswerCache;

// How a text is asked for.
struct TextOptions {
  std::uint32_t wholeLimitMs = 0;  // from the first packet to the last byte; 0: the primitive's own limit
  AnswerCache* cache = nullptr;    // not owned; null: every call asks the server
};

}  // namespace web
