#include <windows.h>
// after windows.h, which it builds on
#include <shlwapi.h>

#include "base/url.hpp"
#include "platform/machine.hpp"
#include "platform/win32/wide.hpp"
#include "platform/win32/winhttp_exchange.hpp"

namespace platform {
namespace {

constexpr int kMostRedirects = 10;
constexpr wchar_t kUserAgent[] = L"KelvarinLauncher/" LAUNCHER_VERSION;

unique_internet OpenSession() {
  const auto open = [](DWORD proxy) {
    return unique_internet(
        WinHttpOpen(kUserAgent, proxy, WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
  };
  unique_internet session = open(WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY);
  if (!session) {
    // Windows 7: it knows no automatic proxy, and of the secure protocols in use today only when told.
    session = open(WINHTTP_ACCESS_TYPE_DEFAULT_PROXY);
    DWORD protocols = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
    WinHttpSetOption(session.get(), WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols, sizeof protocols);
  }
  constexpr DWORD kNotices = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_SEND_REQUEST |
                             WINHTTP_CALLBACK_FLAG_RECEIVE_RESPONSE | WINHTTP_CALLBACK_FLAG_HANDLES;
  WinHttpSetStatusCallback(session.get(), WinHttpExchange::OnStatus, kNotices, 0);
  return session;
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
  HttpOutcome Get(const HttpRequest& request, HttpSink& sink, std::stop_token stop) override {
    TransferLimits limits(request, std::move(stop));
    std::string url = base::ResolvedUrl(request.url);
    if (url.empty()) return {HttpError::BadUrl};
    int status = 0;
    for (int followed = 0; followed <= kMostRedirects; ++followed) {
      WinHttpExchange exchange(session_.get(), request, limits);
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
  unique_internet session_ = OpenSession();
};

}  // namespace

std::unique_ptr<HttpClient> MakeHttpClient() { return std::make_unique<WinHttpClient>(); }

}  // namespace platform
