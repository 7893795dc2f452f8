#include "platform/win32/winhttp_exchange.hpp"

#include <algorithm>
#include <charconv>
#include <mutex>
#include <optional>

#include "base/text.hpp"
#include "platform/win32/system_error.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::uint64_t kQuickMs = 20;
constexpr std::int64_t kAddressShare = 40;  // percent of the limit for connecting

struct Notice {
  DWORD error = ERROR_SUCCESS;
  DWORD value = 0;  // bytes available or read
};

// What a code means before and after the connection stands.
struct Translation {
  DWORD code;
  HttpError connecting, connected;
};

constexpr Translation Always(DWORD code, HttpError error) { return {code, error, error}; }

constexpr Translation kTranslations[] = {
    Always(ERROR_WINHTTP_INVALID_URL, HttpError::BadUrl),
    Always(ERROR_WINHTTP_UNRECOGNIZED_SCHEME, HttpError::BadUrl),
    Always(ERROR_WINHTTP_NAME_NOT_RESOLVED, HttpError::CannotConnect),
    Always(ERROR_WINHTTP_CANNOT_CONNECT, HttpError::CannotConnect),
    Always(ERROR_WINHTTP_LOGIN_FAILURE, HttpError::CannotConnect),
    {ERROR_WINHTTP_TIMEOUT, HttpError::CannotConnect, HttpError::Stalled},
    {ERROR_WINHTTP_CONNECTION_ERROR, HttpError::CannotConnect, HttpError::CutShort},
    Always(ERROR_WINHTTP_SECURE_FAILURE, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_CHANNEL_ERROR, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_INVALID_CERT, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_INVALID_CA, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_CERT_CN_INVALID, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_CERT_DATE_INVALID, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_CERT_REV_FAILED, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_CERT_REVOKED, HttpError::Insecure),
    Always(ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE, HttpError::Insecure),
    Always(ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED, HttpError::Insecure),
};

// The cause behind "a security error occurred", the one that the player can mend first.
DWORD CauseOf(DWORD flags) {
  constexpr std::pair<DWORD, DWORD> kCauses[] = {
      {WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID, ERROR_WINHTTP_SECURE_CERT_DATE_INVALID},
      {WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA, ERROR_WINHTTP_SECURE_INVALID_CA},
      {WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID, ERROR_WINHTTP_SECURE_CERT_CN_INVALID},
      {WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED, ERROR_WINHTTP_SECURE_CERT_REVOKED},
      {WINHTTP_CALLBACK_STATUS_FLAG_CERT_REV_FAILED, ERROR_WINHTTP_SECURE_CERT_REV_FAILED},
      {WINHTTP_CALLBACK_STATUS_FLAG_CERT_WRONG_USAGE, ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE},
      {WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CERT, ERROR_WINHTTP_SECURE_INVALID_CERT},
      {WINHTTP_CALLBACK_STATUS_FLAG_SECURITY_CHANNEL_ERROR, ERROR_WINHTTP_SECURE_CHANNEL_ERROR},
  };
  for (const auto& [flag, code] : kCauses) {
    if (flags & flag) return code;
  }
  return ERROR_WINHTTP_SECURE_FAILURE;
}

}  // namespace

// What WinHTTP's threads and the caller's share. WinHTTP may go on using it after the caller has given up, so
// it holds itself until the request's handle is really closed.
struct Mailbox {
  void Post(const Notice& notice) {
    {
      const std::lock_guard lock(mutex);
      waiting = notice;
    }
    SetEvent(event.get());
  }
  void PostConnected() {
    {
      const std::lock_guard lock(mutex);
      connected = true;
    }
    SetEvent(event.get());
  }

  void NoteReceived(DWORD bytes) {
    const std::lock_guard lock(mutex);
    ended = bytes == 0;
    received += bytes;
  }
  bool Ended() {
    const std::lock_guard lock(mutex);
    return ended;
  }
  void NoteInsecure(DWORD flags) {
    const std::lock_guard lock(mutex);
    insecure |= flags;
  }
  DWORD Insecure() {
    const std::lock_guard lock(mutex);
    return insecure;
  }

  std::mutex mutex;
  std::optional<Notice> waiting;  // there is never more than one call under way
  bool connected = false;
  std::uint64_t received = 0;  // bytes from the network
  bool ended = false;          // the server has closed: the last piece from the network held no byte
  DWORD insecure = 0;          // WINHTTP_CALLBACK_STATUS_FLAG_*: why the secure channel was refused
  unique_event event{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
  std::vector<std::byte> buffer = std::vector<std::byte>(kPiece);
  std::shared_ptr<Mailbox> self;
};

WinHttpExchange::WinHttpExchange(WinHttpSession& session, const HttpRequest& request, TransferLimits& limits)
    : session_(session), request_(request), limits_(limits), mailbox_(std::make_shared<Mailbox>()) {}

WinHttpExchange::~WinHttpExchange() = default;

void CALLBACK WinHttpExchange::OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* information,
                                        DWORD size) {
  auto* mailbox = reinterpret_cast<Mailbox*>(context);
  if (!mailbox) return;  // a session's or server's handle
  switch (status) {
    case WINHTTP_CALLBACK_STATUS_SENDING_REQUEST:
      return mailbox->PostConnected();
    case WINHTTP_CALLBACK_STATUS_RESPONSE_RECEIVED:
      return mailbox->NoteReceived(information ? *static_cast<const DWORD*>(information) : 1);
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
      return mailbox->Post({});
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
      return mailbox->Post({.value = *static_cast<const DWORD*>(information)});
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
      return mailbox->Post({.value = size});
    case WINHTTP_CALLBACK_STATUS_SECURE_FAILURE:
      return mailbox->NoteInsecure(information ? *static_cast<const DWORD*>(information) : 0);
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
      return mailbox->Post({.error = static_cast<const WINHTTP_ASYNC_RESULT*>(information)->dwError});
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING: {
      const std::shared_ptr<Mailbox> last = std::move(mailbox->self);
      return;
    }
  }
}

bool WinHttpExchange::Open(const std::string& url, const Proxy& proxy) {
  const std::wstring address = Wide(url);
  URL_COMPONENTS parts{};
  parts.dwStructSize = sizeof parts;
  parts.dwSchemeLength = parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength =
      static_cast<DWORD>(-1);
  if (!WinHttpCrackUrl(address.c_str(), static_cast<DWORD>(address.size()), 0, &parts)) return false;
  const std::wstring host(parts.lpszHostName, parts.dwHostNameLength);
  const std::wstring target = std::wstring(parts.lpszUrlPath, parts.dwUrlPathLength)
                                  .append(parts.lpszExtraInfo, parts.dwExtraInfoLength);
  const bool secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
  server_.reset(
      WinHttpConnect(session_.Through(proxy, secure ? L"https" : L"http"), host.c_str(), parts.nPort, 0));
  if (!server_) return false;
  const DWORD flags =
      WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY | (secure ? WINHTTP_FLAG_SECURE : 0);
  const wchar_t* anything[] = {L"*/*", nullptr};
  exchange_.reset(WinHttpOpenRequest(server_.get(), L"GET", target.c_str(), nullptr, WINHTTP_NO_REFERER,
                                     anything, flags));
  return static_cast<bool>(exchange_);
}

void WinHttpExchange::SetOptions() {
  const HINTERNET handle = exchange_.get();
  auto context = reinterpret_cast<DWORD_PTR>(mailbox_.get());
  if (WinHttpSetOption(handle, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context)) {
    mailbox_->self = mailbox_;
  }
  DWORD never = WINHTTP_OPTION_REDIRECT_POLICY_NEVER;  // every hop is judged by the caller
  WinHttpSetOption(handle, WINHTTP_OPTION_REDIRECT_POLICY, &never, sizeof never);
  DWORD disabled = WINHTTP_DISABLE_COOKIES;
  WinHttpSetOption(handle, WINHTTP_OPTION_DISABLE_FEATURE, &disabled, sizeof disabled);
  // One address of a host may use up less than half of the caller's limit, so that a second one is tried
  // when the first is dead. The other limits only end what the caller has given up waiting for.
  const int limit = static_cast<int>(std::min<std::uint32_t>(request_.connectLimitMs, MAXLONG / 2));
  const int stall = static_cast<int>(std::min<std::uint32_t>(request_.stallLimitMs, MAXLONG / 2) + 1000);
  WinHttpSetTimeouts(handle, limit + 1000,
                     static_cast<int>(std::max<std::int64_t>(limit * kAddressShare / 100, 1)), stall, stall);
}

HttpError WinHttpExchange::AddHeaders() {
  for (const auto& [name, value] : request_.headers) {
    const std::wstring line = Wide(name + ": " + value);
    if (!WinHttpAddRequestHeaders(exchange_.get(), line.c_str(), static_cast<DWORD>(line.size()),
                                  WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE)) {
      return HttpError::Other;
    }
  }
  return HttpError::None;
}

HttpError WinHttpExchange::ErrorOf(DWORD code) {
  if (code == ERROR_WINHTTP_SECURE_FAILURE) code = CauseOf(mailbox_->Insecure());
  systemError_ = code;
  for (const Translation& entry : kTranslations) {
    if (entry.code == code) return limits_.IsConnected() ? entry.connected : entry.connecting;
  }
  return headDone_ ? HttpError::CutShort : HttpError::Other;
}

HttpOutcome WinHttpExchange::Outcome(HttpError error, int before) const {
  HttpOutcome outcome{error, head_.status != 0 ? head_.status : before};
  if (error == HttpError::None || systemError_ == ERROR_SUCCESS) return outcome;
  outcome.systemError = systemError_;
  outcome.systemText = SystemErrorText(systemError_, GetModuleHandleW(L"winhttp.dll"));
  if (error == HttpError::Insecure && !session_.HasTls12()) outcome.systemText.insert(0, "TLS 1.2: ");
  return outcome;
}

// Waits for the end of the call that was just made; `value` is what it tells.
HttpError WinHttpExchange::Finish(BOOL started, DWORD& value) {
  if (!started) return ErrorOf(GetLastError());
  for (;;) {
    std::optional<Notice> notice;
    {
      const std::lock_guard lock(mailbox_->mutex);
      if (mailbox_->connected) limits_.Connected();
      notice = std::exchange(mailbox_->waiting, std::nullopt);
      const std::uint64_t received = std::max(mailbox_->received, delivered_);
      limits_.Count(received - counted_);
      counted_ = received;
    }
    if (notice) {
      value = notice->value;
      return notice->error == ERROR_SUCCESS ? HttpError::None : ErrorOf(notice->error);
    }
    const HttpError limit = limits_.Sleep(mailbox_->event);
    if (limit != HttpError::None) return limit;
  }
}

HttpError WinHttpExchange::Prepare(const std::string& url) {
  Proxy proxy;
  const HttpError error =
      session_.Proxies() ? session_.Proxies()->Find(url, limits_, proxy) : HttpError::None;
  if (error != HttpError::None) return error;
  limits_.BeginHop();
  if (!Open(url, proxy)) return HttpError::BadUrl;
  SetOptions();
  return AddHeaders();
}

HttpError WinHttpExchange::Ask() {
  DWORD ignored = 0;
  const HttpError error =
      Finish(WinHttpSendRequest(exchange_.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0,
                                0, reinterpret_cast<DWORD_PTR>(mailbox_.get())),
             ignored);
  if (error != HttpError::None) return error;
  return Finish(WinHttpReceiveResponse(exchange_.get(), nullptr), ignored);
}

// Answers a proxy as the user who is logged on; false when it wants another kind of proof.
bool WinHttpExchange::LogOnToProxy() {
  DWORD offered = 0, first = 0, target = 0;
  if (!WinHttpQueryAuthSchemes(exchange_.get(), &offered, &first, &target)) return false;
  for (const DWORD scheme : {DWORD{WINHTTP_AUTH_SCHEME_NEGOTIATE}, DWORD{WINHTTP_AUTH_SCHEME_NTLM}}) {
    if (!(offered & scheme)) continue;
    return WinHttpSetCredentials(exchange_.get(), WINHTTP_AUTH_TARGET_PROXY, scheme, nullptr, nullptr,
                                 nullptr) != 0;
  }
  return false;
}

HttpError WinHttpExchange::Send(const std::string& url) {
  HttpError error = Prepare(url);
  if (error != HttpError::None) return error;
  for (bool loggedOn = false;; loggedOn = true) {
    error = Ask();
    if (error != HttpError::None) return error;
    if (Status() != HTTP_STATUS_PROXY_AUTH_REQ) break;
    if (loggedOn || !LogOnToProxy()) {
      head_.status = HTTP_STATUS_PROXY_AUTH_REQ;
      return ErrorOf(ERROR_WINHTTP_LOGIN_FAILURE);
    }
  }
  TakeHead();
  // A length that is no number leaves open where the body ends (RFC 9112, 6.3).
  const bool nonsense = !head_.contentLength && !head_.Header("content-length").empty();
  return nonsense && !IsChunked() ? HttpError::Other : HttpError::None;
}

int WinHttpExchange::Status() const {
  DWORD status = 0, size = sizeof status;
  WinHttpQueryHeaders(exchange_.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                      WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX);
  return static_cast<int>(status);
}

void WinHttpExchange::TakeHead() {
  head_.status = Status();
  DWORD size = 0;
  WinHttpQueryHeaders(exchange_.get(), WINHTTP_QUERY_RAW_HEADERS_CRLF, WINHTTP_HEADER_NAME_BY_INDEX, nullptr,
                      &size, WINHTTP_NO_HEADER_INDEX);
  std::wstring raw(size / sizeof(wchar_t), L'\0');
  WinHttpQueryHeaders(exchange_.get(), WINHTTP_QUERY_RAW_HEADERS_CRLF, WINHTTP_HEADER_NAME_BY_INDEX,
                      raw.data(), &size, WINHTTP_NO_HEADER_INDEX);
  const std::string lines = Narrow(raw.c_str());
  for (const std::string_view line : base::Split(lines, '\n')) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;  // the status line
    std::string_view value = line.substr(colon + 1);
    if (value.ends_with('\r')) value.remove_suffix(1);
    head_.headers.emplace_back(base::Lower(line.substr(0, colon)), base::Trim(value));
  }
  const std::string length = head_.Header("content-length");
  std::uint64_t announced = 0;
  const auto [end, error] = std::from_chars(length.data(), length.data() + length.size(), announced);
  if (error == std::errc{} && end == length.data() + length.size()) head_.contentLength = announced;
  headDone_ = true;
}

// One piece of the body into the buffer; `count` is 0 at the end.
//
// WinHttpReadData may wait until the buffer is full, so normally only what is there is asked for. While
// pieces come quickly every other one is a whole buffer. Never two of these in a row: with something left
// over from the one before, Wine fills the buffer on the calling thread, which could not be stopped
// meanwhile.
HttpError WinHttpExchange::ReadPiece(DWORD& count) {
  const std::uint64_t start = AwakeMs();
  const auto room = static_cast<DWORD>(mailbox_->buffer.size());
  DWORD wanted = room;
  count = 0;
  if (!eager_) {
    const HttpError error = Finish(WinHttpQueryDataAvailable(exchange_.get(), nullptr), wanted);
    if (error != HttpError::None || wanted == 0) return error;
  }
  const bool takesAll = wanted <= room;
  const HttpError error = Finish(
      WinHttpReadData(exchange_.get(), mailbox_->buffer.data(), std::min(wanted, room), nullptr), count);
  eager_ = !eager_ && takesAll && AwakeMs() - start <= kQuickMs;
  delivered_ += count;
  return error;
}

HttpError WinHttpExchange::ReadBody(HttpSink& sink) {
  const bool hasBody = head_.status != 204 && head_.status != 304;
  const bool counted = hasBody && head_.contentLength && !IsChunked();
  for (;;) {
    DWORD count = 0;
    const HttpError error = ReadPiece(count);
    if (error != HttpError::None) return error;
    if (count == 0) break;
    if (counted && delivered_ > *head_.contentLength) return HttpError::CutShort;
    const std::uint64_t start = AwakeMs();
    if (!sink.Write(std::span(mailbox_->buffer).first(count))) return HttpError::Refused;
    limits_.Excuse(AwakeMs() - start);
  }
  // A body in chunks says itself where it ends; one that the server ended by closing was not complete.
  const bool cut = counted ? delivered_ != *head_.contentLength : IsChunked() && mailbox_->Ended();
  return cut ? HttpError::CutShort : HttpError::None;
}

}  // namespace platform
