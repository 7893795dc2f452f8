#include "base/url.hpp"

#include <algorithm>
#include <vector>

namespace base {
namespace {

struct UrlPieces {
  std::string scheme;     // lower case
  std::string authority;  // host and port
  std::string path;       // from the first "/"
  std::string query;      // from "?", the fragment left out
};

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return lower;
}

// False when `url` is not an absolute http or https address with a host.
bool Parse(std::string_view url, UrlPieces& pieces) {
  const std::size_t colon = url.find("://");
  if (colon == std::string_view::npos) return false;
  pieces.scheme = LowerAscii(url.substr(0, colon));
  if (pieces.scheme != "http" && pieces.scheme != "https") return false;
  for (const char c : url) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\\' || c == 127) return false;
  }
  url = url.substr(0, url.find('#'));
  url.remove_prefix(colon + 3);
  const std::size_t pathStart = std::min(url.find_first_of("/?"), url.size());
  pieces.authority = url.substr(0, pathStart);
  url.remove_prefix(pathStart);
  const std::size_t queryStart = std::min(url.find('?'), url.size());
  pieces.path = url.substr(0, queryStart);
  pieces.query = url.substr(queryStart);
  const bool hasHost = !pieces.authority.empty() && pieces.authority.front() != ':';
  return hasHost && pieces.authority.find_first_of("@ ") == std::string::npos;
}

// Blanks and bytes beyond ASCII as %XX (RFC 3986, 2.1); what is escaped already stays.
std::string Escaped(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string result;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code > ' ' && code < 127) {
      result += c;
    } else {
      result.append({'%', kHex[code >> 4], kHex[code & 15]});
    }
  }
  return result;
}

// Dot segments removed as RFC 3986, 5.2.4 has it.
std::string WithoutDotSegments(std::string_view path) {
  std::vector<std::string_view> kept;
  bool endsInFolder = true;
  while (!path.empty()) {
    path.remove_prefix(1);  // its "/"
    const std::size_t next = std::min(path.find('/'), path.size());
    const std::string_view segment = path.substr(0, next);
    path.remove_prefix(next);
    endsInFolder = segment == "." || segment == "..";
    if (segment == ".." && !kept.empty()) kept.pop_back();
    if (!endsInFolder) kept.push_back(segment);
  }
  std::string result;
  for (const std::string_view segment : kept) result.append("/").append(segment);
  if (endsInFolder) result += '/';
  return result;
}

}  // namespace

std::string ResolvedUrl(const std::string& url) {
  UrlPieces pieces;
  if (!Parse(url, pieces)) return {};
  return pieces.scheme + "://" + pieces.authority + Escaped(WithoutDotSegments(pieces.path)) +
         Escaped(pieces.query);
}

std::string AsHttps(const std::string& url) {
  constexpr std::string_view kHttp = "http://", kOwnPort = ":80";
  if (LowerAscii(url.substr(0, kHttp.size())) != kHttp) return url;
  std::string rest = url.substr(kHttp.size());
  const std::size_t end = std::min(rest.find_first_of("/?#"), rest.size());
  if (std::string_view(rest).substr(0, end).ends_with(kOwnPort)) {
    rest.erase(end - kOwnPort.size(), kOwnPort.size());
  }
  return "https://" + rest;
}

bool IsMirrorUrl(const std::string& url) { return url.ends_with('/') && !ResolvedUrl(url).empty(); }

bool RedirectAllowed(const std::string& from, const std::string& to) {
  UrlPieces source, target;
  if (!Parse(from, source) || !Parse(to, target)) return false;
  return !(source.scheme == "https" && target.scheme == "http");
}

std::string UrlPath(std::string_view relativePath) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  static constexpr std::string_view kPlainMarks = "/-._~!$&'()*+,;=@";
  std::string result;
  for (const char c : relativePath) {
    const bool letterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (letterOrDigit || kPlainMarks.find(c) != std::string_view::npos) {
      result += c;
    } else {
      const auto code = static_cast<unsigned char>(c);
      result.append({'%', kHex[code >> 4], kHex[code & 15]});
    }
  }
  return result;
}

}  // namespace base
