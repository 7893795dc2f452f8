#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <winhttp.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "base/unique_handle.hpp"
#include "platform/http_client.hpp"
#include "platform/win32/player_proxy.hpp"

namespace platform {

struct InternetTraits : base::NullIsNone<HINTERNET> {
  static void Close(Type handle) { WinHttpCloseHandle(handle); }
};
using unique_internet = base::UniqueHandle<InternetTraits>;

inline constexpr wchar_t kUserAgent[] = L"KelvarinLauncher/" LAUNCHER_VERSION;

// How much WinHTTP does by itself. Before Windows 8.1 it neither looks into the player's proxy settings nor
// uses today's secure protocols unless told.
enum class WinHttpAge { OfSystem, BeforeWindows81 };

// What all transfers of a client share. Any thread may use it.
class WinHttpSession {
 public:
  explicit WinHttpSession(WinHttpAge age);

  // For requests to addresses of a scheme (lower case) that go through `proxy`; owned by this.
  HINTERNET Through(const Proxy& proxy, const std::wstring& scheme);
  PlayerProxy* Proxies() const { return proxies_.get(); }  // null where WinHTTP itself finds the proxy
  bool HasTls12() const { return hasTls12_; }              // false: the system refused to be asked for it

 private:
  unique_internet Open(DWORD access, const Proxy& proxy);

  std::unique_ptr<PlayerProxy> proxies_;
  bool hasTls12_ = true;
  unique_internet direct_;
  std::mutex mutex_;
  std::map<std::wstring, unique_internet> through_;  // by the proxy's name and exceptions
};

std::unique_ptr<HttpClient> MakeHttpClient(WinHttpAge age);

}  // namespace platform
