#pragma once

#include <functional>
#include <stop_token>
#include <string>

#include "startup/services.hpp"
#include "web/answer_cache.hpp"
#include "web/transfer_report.hpp"

namespace web {

// The most bytes of an answer that are taken into memory.
inline constexpr std::size_t kLargestText = 16 * 1024 * 1024;

// The time a text may take when nothing else is said: texts are small, and a server that trickles one byte
// after the other must not hold its caller for ever.
inline constexpr std::uint32_t kTextLimitMs = 60'000;

struct TextAnswer {
  std::string text;  // UTF-8; empty unless the whole answer came
  TransferReport report;
  platform::HttpHead head{};  // its status is 0 when no answer came
  bool asked = true;          // false: a fresh answer of the cache, the server was not asked
};

// Called on the working thread with the undecoded body of a whole answer.
using OnBody = std::function<void(const platform::HttpHead&, const std::string& bytes)>;

// Fetches a text while events go on being handled. `cache` may be null.
TextAnswer FetchText(const startup::Services& services, platform::HttpRequest request, AnswerCache* cache,
                     std::stop_token stop = {}, const OnBody& onBody = {});

}  // namespace web
