#include <windows.h>
// after windows.h, which it builds on
#include <shlwapi.h>

#include <algorithm>
#include <mutex>
#include <optional>

#include "base/url.hpp"
#include "platform/machine.hpp"
#include "platform/win32/wide.hpp"
#include "platform/win32/winhttp_exchange.hpp"

namespace platform {
namespace {

constexpr int kMostRedirects = 10;
constexpr DWORD kTls12 = 0x800, kTls13 = 0x2000;  // WINHTTP_FLAG_SECURE_PROTOCOL_*; older headers lack one

// The entry of a list such as "http=one:80;https=two:80" or "one:80" that is for addresses of this scheme;
// empty when there is none.
std::wstring ProxyFor(const std::wstring& scheme, const std::wstring& list) {
  std::wstring forAll;
  for (std::size_t at = 0; at < list.size();) {
    const std::size_t end = std::min(list.find_first_of(L"; \t", at), list.size());
    const std::wstring entry = list.substr(at, end - at);
    const std::size_t sign = entry.find(L'=');
    if (sign == std::wstring::npos && forAll.empty()) forAll = entry;
    if (sign != std::wstring::npos && entry.substr(0, sign) == scheme) return entry.substr(sign + 1);
    at = end + 1;
  }
  return forAll;
}

// Where a redirect leads, seen from the address that gave it; empty when the answer is none.
std::string RedirectOf(const HttpHead& head, const std::string& url) {
  const bool redirects = head.status == 301 || head.status == 302 || head.status == 303 ||
                         head.status == 307 || head.status == 308;
  const std::string location = head.Header("location");
  if (!redirects || location.empty()) return {};
  constexpr DWORD kLongest = 8192;  // characters
  std::wstring combined(kLongest, L'\0');
  DWORD length = kLongest;
  const HRESULT result = UrlCombineW(Wide(url).c_str(), Wide(location).c_str(), combined.data(), &length, 0);
  return SUCCEEDED(result) ? Narrow(std::wstring_view(combined).substr(0, length)) : location;
}

class WinHttpClient : public HttpClient {
 public:
  explicit WinHttpClient(WinHttpAge age) : age_(age) {}

  HttpOutcome Get(const HttpRequest& request, HttpSink& sink, std::stop_token stop) override {
    TransferLimits limits(request, std::move(stop));
    std::string url = base::ResolvedUrl(request.url);
    if (url.empty()) return {HttpError::BadUrl};
    int status = 0;
    for (int followed = 0; followed <= kMostRedirects; ++followed) {
      WinHttpExchange exchange(Session(), request, limits);
      const HttpError error = exchange.Send(url);
      if (error != HttpError::None) return exchange.Outcome(error, status);
      status = exchange.Head().status;
      const std::string redirect = RedirectOf(exchange.Head(), url);
      if (redirect.empty()) {
        sink.Begin(exchange.Head());
        return exchange.Outcome(exchange.ReadBody(sink), status);
      }
      if (!base::RedirectAllowed(url, redirect)) break;
      url = base::ResolvedUrl(redirect);
    }
    return {HttpError::RefusedRedirect, status};
  }

 private:
  // Opened by the first transfer: windows come before it.
  WinHttpSession& Session() {
    std::call_once(opened_, [this] { session_.emplace(age_); });
    return *session_;
  }

  const WinHttpAge age_;
  std::once_flag opened_;
  std::optional<WinHttpSession> session_;
};

}  // namespace

WinHttpSession::WinHttpSession(WinHttpAge age) {
  if (age == WinHttpAge::OfSystem) direct_ = Open(WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, {});
  if (direct_) return;
  proxies_ = std::make_unique<PlayerProxy>();
  direct_ = Open(WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, {});
}

// A proxy belongs to a session: not every WinHTTP obeys one that is set for a single request.
HINTERNET WinHttpSession::Through(const Proxy& listed, const std::wstring& scheme) {
  const Proxy proxy{ProxyFor(scheme, listed.name), listed.bypass};
  if (proxy.name.empty()) return direct_.get();
  const std::lock_guard lock(mutex_);
  unique_internet& session = through_[proxy.name + L"\n" + proxy.bypass];
  if (!session) session = Open(WINHTTP_ACCESS_TYPE_NAMED_PROXY, proxy);
  return session.get();
}

unique_internet WinHttpSession::Open(DWORD access, const Proxy& proxy) {
  const auto textOrNone = [](const std::wstring& text) { return text.empty() ? nullptr : text.c_str(); };
  unique_internet session(
      WinHttpOpen(kUserAgent, access, textOrNone(proxy.name), textOrNone(proxy.bypass), WINHTTP_FLAG_ASYNC));
  if (!session) return session;
  // Nothing older, whatever the system's own choice is; TLS 1.3 is unknown to most systems.
  hasTls12_ = false;
  for (DWORD protocols : {kTls12 | kTls13, kTls12}) {
    hasTls12_ = hasTls12_ || WinHttpSetOption(session.get(), WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols,
                                              sizeof protocols);
  }
  // A host whose newer kind of address is dead is reached by its other one without delay; the option is a
  // young one.
  BOOL fallBack = TRUE;
  WinHttpSetOption(session.get(), WINHTTP_OPTION_IPV6_FAST_FALLBACK, &fallBack, sizeof fallBack);
  constexpr DWORD kNotices = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_SEND_REQUEST |
                             WINHTTP_CALLBACK_FLAG_RECEIVE_RESPONSE | WINHTTP_CALLBACK_FLAG_HANDLES |
                             WINHTTP_CALLBACK_FLAG_SECURE_FAILURE;
  WinHttpSetStatusCallback(session.get(), WinHttpExchange::OnStatus, kNotices, 0);
  return session;
}

std::unique_ptr<HttpClient> MakeHttpClient(WinHttpAge age) { return std::make_unique<WinHttpClient>(age); }

std::unique_ptr<HttpClient> MakeHttpClient() { return MakeHttpClient(WinHttpAge::OfSystem); }

}  // namespace platform
