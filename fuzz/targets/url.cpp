#include "base/url.hpp"

#include <algorithm>

#include "fuzz/support/promises.hpp"

namespace {

void JudgeResolved(const std::string& url) {
  const std::string resolved = base::ResolvedUrl(url);
  const bool mirror = base::IsMirrorUrl(url);
  fuzz::Require(!mirror || !resolved.empty(), "a mirror's address is an address");
  if (resolved.empty()) return;
  fuzz::Require(resolved.starts_with("http://") || resolved.starts_with("https://"), "only http and https");
  fuzz::Require(base::ResolvedUrl(resolved) == resolved, "a resolved address is resolved");
  const std::string asked =
      resolved.substr(std::min(resolved.find('/', resolved.find("://") + 3), resolved.size()));
  const std::string path = asked.substr(0, asked.find('?'));
  fuzz::Require(path.find("/../") == path.npos && !path.ends_with("/..") && !path.ends_with("/."),
                "no dot segments are left");
  fuzz::Require(std::all_of(asked.begin(), asked.end(), [](char c) { return c > ' ' && c < 127; }),
                "what a server is asked is plain");
  const std::string secure = base::AsHttps(url);
  fuzz::Require(base::ResolvedUrl(secure).starts_with("https://"), "an address can be asked over https");
  fuzz::Require(!base::RedirectAllowed(secure, "http://example.org/"), "https is not left");
  fuzz::Require(base::RedirectAllowed(url, secure), "https may be gone to");
}

char Digit(char c) { return static_cast<char>(c <= '9' ? c - '0' : c - 'A' + 10); }

std::string Unescaped(const std::string& path) {
  std::string text;
  for (std::size_t i = 0; i < path.size(); ++i) {
    const bool escaped = path[i] == '%';
    text += escaped ? static_cast<char>(Digit(path[i + 1]) << 4 | Digit(path[i + 2])) : path[i];
    if (escaped) i += 2;
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(fuzz::Text(data, size));
  JudgeResolved(text);
  JudgeResolved("http://example.org/update/" + text);
  const std::string path = base::UrlPath(text);
  fuzz::Require(Unescaped(path) == text, "a path keeps its name");
  fuzz::Require(std::all_of(path.begin(), path.end(),
                            [](char c) { return c > ' ' && c < 127 && c != '?' && c != '#'; }),
                "a path is one for a server");
  const std::size_t half = size / 2;
  base::RedirectAllowed(text.substr(0, half), text.substr(half));
  return 0;
}
