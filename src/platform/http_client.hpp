#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace platform {

enum class HttpError {
  None,
  BadUrl,           // not an absolute http or https address
  CannotConnect,    // no address, refused, not connected within the limit, or held up by a proxy (status 407)
  Insecure,         // the certificate or the secure channel was not accepted; systemText says why
  RefusedRedirect,  // to another scheme than http/https, from https to http, or too many
  Stalled,          // under 1 byte/s for the stall limit
  CutShort,         // fewer or more bytes than announced
  Refused,          // the sink took no more
  Cancelled,
  Other,
};

struct HttpHead {
  int status = 0;
  std::optional<std::uint64_t> contentLength;  // as announced, none when missing or not a number
  std::vector<std::pair<std::string, std::string>> headers;     // names in lower case
  std::string Header(const std::string& lowerCaseName) const {  // empty when missing
    for (const auto& [name, value] : headers) {
      if (name == lowerCaseName) return value;
    }
    return {};
  }
};

// Receives one answer, called on the thread that runs Get. Redirect answers are not passed on.
class HttpSink {
 public:
  virtual ~HttpSink() = default;
  virtual void Begin(const HttpHead& head) = 0;
  // False ends the transfer with HttpError::Refused.
  virtual bool Write(std::span<const std::byte> bytes) = 0;
};

struct HttpRequest {
  std::string url;  // dot segments are resolved before it is sent
  std::vector<std::pair<std::string, std::string>> headers{};
  std::uint32_t connectLimitMs = 10'000;
  std::uint32_t stallLimitMs = 30'000;
  std::uint32_t wholeLimitMs = 0;  // 0: none
};

struct HttpOutcome {
  HttpError error = HttpError::Other;
  int status = 0;                 // of the last answer, 0 when none came
  std::uint32_t systemError = 0;  // the system's or library's own number for a failure, 0 when it named none
  std::string systemText{};       // and its own words, UTF-8
  bool Complete() const { return error == HttpError::None; }
};

// Blocking GET over http and https; certificates are verified, redirects followed (at most 10). Safe to call
// from several threads at once. Connections are kept and used again.
class HttpClient {
 public:
  virtual ~HttpClient() = default;
  // What the sink raises is raised again here.
  virtual HttpOutcome Get(const HttpRequest& request, HttpSink& sink, std::stop_token stop) = 0;
};

}  // namespace platform
