#include "platform/win32/player_proxy.hpp"

#include <thread>

#include "platform/win32/wide.hpp"
#include "platform/win32/winhttp_session.hpp"

namespace platform {
namespace {

constexpr std::uint64_t kPatienceMs = 4'000;
constexpr std::uint64_t kRememberedMs = 5 * 60 * 1'000;  // a laptop may move to another network

struct GlobalTextTraits : base::NullIsNone<wchar_t*> {
  static void Close(wchar_t* text) { GlobalFree(text); }
};
using unique_global_text = base::UniqueHandle<GlobalTextTraits>;

std::wstring Taken(wchar_t* text) {
  const unique_global_text owner(text);
  return text ? text : L"";
}

struct PlayerSettings {
  bool autoDetect = false;
  std::wstring script;
  Proxy fixed;
  bool NeedScript() const { return autoDetect || !script.empty(); }
};

PlayerSettings ReadPlayerSettings() {
  WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config{};
  if (!WinHttpGetIEProxyConfigForCurrentUser(&config)) return {};
  PlayerSettings settings;
  settings.autoDetect = config.fAutoDetect != FALSE;
  settings.script = Taken(config.lpszAutoConfigUrl);
  settings.fixed = {Taken(config.lpszProxy), Taken(config.lpszProxyBypass)};
  return settings;
}

// What the network's or the player's script says; the fixed proxy when there is no script to be had.
Proxy AskScript(const std::wstring& url, const PlayerSettings& settings) {
  const unique_internet session(WinHttpOpen(kUserAgent, WINHTTP_ACCESS_TYPE_NO_PROXY, WINHTTP_NO_PROXY_NAME,
                                            WINHTTP_NO_PROXY_BYPASS, 0));
  WINHTTP_AUTOPROXY_OPTIONS options{};
  if (settings.autoDetect) {
    options.dwFlags |= WINHTTP_AUTOPROXY_AUTO_DETECT;
    options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
  }
  if (!settings.script.empty()) {
    options.dwFlags |= WINHTTP_AUTOPROXY_CONFIG_URL;
    options.lpszAutoConfigUrl = settings.script.c_str();
  }
  options.fAutoLogonIfChallenged = TRUE;
  WINHTTP_PROXY_INFO info{};
  if (!WinHttpGetProxyForUrl(session.get(), url.c_str(), &options, &info)) return settings.fixed;
  return {Taken(info.lpszProxy), Taken(info.lpszProxyBypass)};
}

// The part of an address that decides about its proxy.
std::wstring SiteOf(const std::wstring& url) {
  const std::size_t host = url.find(L"://");
  return url.substr(0, host == std::wstring::npos ? host : url.find_first_of(L"/?#", host + 3));
}

}  // namespace

// One question, answered at once or by a thread that nobody has to wait for.
struct PlayerProxy::Lookup {
  unique_event done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::uint64_t asked = AwakeMs();
  Proxy proxy;  // complete once `done` is set

  void Answer(Proxy answer) {
    proxy = std::move(answer);
    SetEvent(done.get());
  }
  bool Done() const { return WaitForSingleObject(done.get(), 0) == WAIT_OBJECT_0; }
};

std::shared_ptr<PlayerProxy::Lookup> PlayerProxy::LookupFor(const std::wstring& url) {
  const std::lock_guard lock(mutex_);
  std::shared_ptr<Lookup>& known = lookups_[SiteOf(url)];
  if (known && AwakeMs() - known->asked < kRememberedMs) return known;
  known = std::make_shared<Lookup>();
  const PlayerSettings settings = ReadPlayerSettings();
  if (settings.NeedScript()) {
    std::thread([url, settings, lookup = known] { lookup->Answer(AskScript(url, settings)); }).detach();
  } else {
    known->Answer(settings.fixed);
  }
  return known;
}

HttpError PlayerProxy::Find(const std::string& url, TransferLimits& limits, Proxy& found) {
  const std::shared_ptr<Lookup> lookup = LookupFor(Wide(url));
  const std::uint64_t start = AwakeMs();
  limits.BeginHop();
  while (!lookup->Done() && AwakeMs() - start < kPatienceMs) {
    const HttpError limit = limits.Sleep(lookup->done);
    if (limit == HttpError::CannotConnect) break;
    if (limit != HttpError::None) return limit;
  }
  if (lookup->Done()) found = lookup->proxy;
  return HttpError::None;
}

}  // namespace platform
