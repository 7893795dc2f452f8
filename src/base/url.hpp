#pragma once

#include <string>
#include <string_view>

namespace base {

// A relative path for a URL: "/" stays, every other byte that has a meaning of its own there is written %XX
// (RFC 3986, 2.1); letters, digits and the marks of plain file names stay as they are.
std::string UrlPath(std::string_view relativePath);

// `url` with "." and ".." segments of its path resolved, doubled slashes kept, blanks and bytes beyond ASCII
// escaped; empty when it is not an absolute http or https address with a host.
std::string ResolvedUrl(const std::string& url);

// The same place asked over https: an http address with its scheme replaced and its port kept, but for http's
// own, which goes. Anything else as it is.
std::string AsHttps(const std::string& url);

// Whether `url` can be what a mirror's files are asked below: absolute, http or https, ending in "/".
bool IsMirrorUrl(const std::string& url);

// Whether a redirect from one absolute address to another may be followed.
bool RedirectAllowed(const std::string& from, const std::string& to);

}  // namespace base
