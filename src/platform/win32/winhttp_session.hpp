#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <winhttp.h>

#include <memory>

#include "base/unique_handle.hpp"
#include "platform/http_client.hpp"
#include "platform/win32/player_proxy.hpp"

namespace platform {

struct InternetTraits : base::NullIsNone<HINTERNET> {
  static void Close(Type handle) { WinHttpCloseHandle(handle); }
};
using unique_internet = base::UniqueHandle<InternetTraits>;

inline constexpr wchar_t kUserAgent[] = L"KelvarinLauncher/" LAUNCHER_VERSION;

// What all transfers of a client share.
struct WinHttpSession {
  unique_internet handle;
  std::unique_ptr<PlayerProxy> proxies;  // null where WinHTTP itself finds the player's proxy
  bool hasTls12 = true;                  // false: the system refused to be asked for it
};

// How much WinHTTP does by itself. Before Windows 8.1 it neither looks into the player's proxy settings nor
// uses today's secure protocols unless told.
enum class WinHttpAge { OfSystem, BeforeWindows81 };

std::unique_ptr<HttpClient> MakeHttpClient(WinHttpAge age);

}  // namespace platform
