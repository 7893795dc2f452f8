#pragma once

#include <string>
#include <string_view>

#include "platform/http_client.hpp"

namespace fuzz {

// An answer over HTTP that the input writes down: its status, headers ("name: value") and an empty line, a
// line each; the rest is the body.
struct GivenAnswer {
  explicit GivenAnswer(std::string_view input);

  platform::HttpHead head;
  std::string body;
};

// The line at the front of a text, which is shortened by it.
std::string_view TakeLine(std::string_view& text);

}  // namespace fuzz
