#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <winhttp.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/win32/transfer_limits.hpp"

namespace platform {

// The way to one host: through a proxy (as WinHttpOpen takes it), or directly when it has no name.
struct Proxy {
  std::wstring name, bypass;
};

// Finds the proxy that the player's own settings name, by a script too, where WinHTTP does not look itself.
// Any thread may ask.
class PlayerProxy {
 public:
  // The proxy for `url`. The system may take long to find a script; what is not known after some seconds
  // counts as none, and is there for a later question. Returns None, or why the transfer ends.
  HttpError Find(const std::string& url, TransferLimits& limits, Proxy& found);

 private:
  struct Lookup;
  std::shared_ptr<Lookup> LookupFor(const std::wstring& url);

  std::mutex mutex_;
  std::map<std::wstring, std::shared_ptr<Lookup>> lookups_;  // by scheme, host and port
};

}  // namespace platform
