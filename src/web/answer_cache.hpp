#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/http_client.hpp"

namespace web {

// Answers that their server declared reusable (RFC 9111: "Cache-Control: max-age", "Expires", "ETag",
// "Last-Modified"), or says nothing about although they are files. A query that is repeated every two seconds
// by every open launcher is served from here as long as that holds, and costs it a 304 afterwards. In memory
// only; times are milliseconds of platform::Clock.
class AnswerCache {
 public:
  using Headers = std::vector<std::pair<std::string, std::string>>;

  // The kept text while it is fresh.
  std::optional<std::string> Fresh(const std::string& url, std::uint64_t now) const;

  // What a request must carry so that the server may answer 304; empty when nothing is kept.
  Headers Conditions(const std::string& url) const;

  // Takes in a whole answer, `text` being its body, and returns the text to use: the kept one after a 304.
  std::string Take(const std::string& url, const platform::HttpHead& head, std::string text,
                   std::uint64_t now);

  void Forget(const std::string& url) { kept_.erase(url); }

 private:
  struct Kept {
    std::string text;
    platform::HttpHead head;       // what it says of the answer's age and of how to ask for it again
    std::uint64_t freshUntil = 0;  // 0: must be revalidated
  };

  void Keep(const std::string& url, Kept answer);

  std::map<std::string, Kept> kept_;
};

}  // namespace web
