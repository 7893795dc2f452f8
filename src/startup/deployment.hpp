#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "platform/profile_files.hpp"

namespace startup {

inline constexpr int kMirrorCount = 7;

// Who the hosts are: Deployment.ini beside the executable. A key that the file lacks takes its built-in
// value, a demonstration on loopback; but as soon as one mirror is named, the ring has only those that are.
struct Deployment {
  std::array<std::string, kMirrorCount> mirrors;  // complete URLs, in ring order; empty: no such entry
  std::array<bool, kMirrorCount> usable{};        // absolute http or https, ending in "/"
  std::string web;                                // site root for pages and news, without trailing "/"
  std::string api;                                // scheme, host and port, without trailing "/"
  std::string support, forum, social, chat, client1, client2;  // web addresses
  std::string parameter;                                       // handed to the game client
  std::string staffApplication;          // settings-store application of the staff marker
  std::optional<std::string> publicKey;  // as it stands there (Base64), usable or not; none: not named
  std::string unreadable;                // why the file cannot be read; nothing is known then

  bool AnyUsable() const;
  // Whether `url` is an entry of the second update host (ring entries 2 and 5).
  bool IsSecondHost(const std::string& url) const;
};

// Whether a key as Deployment.ini names it can be used to verify signatures.
bool IsUsableKey(const std::string& publicKey);

// What is wrong with a deployment, one sentence for the player or operator each; empty when all is well.
std::vector<std::string> ProblemsOf(const Deployment& deployment);

Deployment LoadDeployment(platform::ProfileFiles& profiles, const std::string& file);

}  // namespace startup
