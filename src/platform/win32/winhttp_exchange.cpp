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

struct Notice {
  DWORD error = ERROR_SUCCESS;
  DWORD value = 0;  // bytes available or read
};

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

  std::mutex mutex;
  std::optional<Notice> waiting;  // there is never more than one call under way
  bool connected = false;
  std::uint64_t received = 0;  // bytes from the network
  bool ended = false;          // the server has closed: the last piece from the network held no byte
  unique_event event{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
  std::vector<std::byte> buffer = std::vector<std::byte>(kPiece);
  std::shared_ptr<Mailbox> self;
};

TransferLimits::TransferLimits(const HttpRequest& request, std::stop_token stop)
    : request_(request),
      speed_(request.stallLimitMs),
      wholeDeadline_(request.wholeLimitMs == 0 ? UINT64_MAX : GetTickCount64() + request.wholeLimitMs),
      stop_(std::move(stop)),
      stopped_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      onStop_(stop_, EventSetter{stopped_.get()}) {}

void TransferLimits::BeginHop() {
  connected_ = false;
  connectDeadline_ = GetTickCount64() + request_.connectLimitMs;
}

void TransferLimits::Connected() {
  if (connected_) return;
  connected_ = true;
  speed_.Restart();
}

HttpError TransferLimits::Sleep(const unique_event& event) {
  if (stop_.stop_requested()) return HttpError::Cancelled;
  const std::uint64_t phaseDeadline = connected_ ? speed_.Deadline() : connectDeadline_;
  const std::uint64_t deadline = std::min(phaseDeadline, wholeDeadline_);
  const std::uint64_t now = GetTickCount64();
  if (now >= deadline) {
    return !connected_ && phaseDeadline == deadline ? HttpError::CannotConnect : HttpError::Stalled;
  }
  const HANDLE handles[] = {event.get(), stopped_.get()};
  WaitForMultipleObjects(2, handles, FALSE,
                         static_cast<DWORD>(std::min<std::uint64_t>(deadline - now, MAXLONG)));
  return HttpError::None;
}

WinHttpExchange::WinHttpExchange(HINTERNET session, const HttpRequest& request, TransferLimits& limits)
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
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
      return mailbox->Post({.error = static_cast<const WINHTTP_ASYNC_RESULT*>(information)->dwError});
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING: {
      const std::shared_ptr<Mailbox> last = std::move(mailbox->self);
      return;
    }
  }
}

bool WinHttpExchange::Open(const std::string& url) {
  const std::wstring address = Wide(url);
  URL_COMPONENTS parts{};
  parts.dwStructSize = sizeof parts;
  parts.dwSchemeLength = parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength =
      static_cast<DWORD>(-1);
  if (!WinHttpCrackUrl(address.c_str(), static_cast<DWORD>(address.size()), 0, &parts)) return false;
  const std::wstring host(parts.lpszHostName, parts.dwHostNameLength);
  const std::wstring target = std::wstring(parts.lpszUrlPath, parts.dwUrlPathLength)
                                  .append(parts.lpszExtraInfo, parts.dwExtraInfoLength);
  server_.reset(WinHttpConnect(session_, host.c_str(), parts.nPort, 0));
  if (!server_) return false;
  const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY |
                      (parts.nScheme == INTERNET_SCHEME_HTTPS ? WINHTTP_FLAG_SECURE : 0);
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
  // Only to end what the caller has given up waiting for; the caller's own limits come first.
  const int connect = static_cast<int>(std::min<std::uint32_t>(request_.connectLimitMs, MAXLONG / 2) + 1000);
  const int stall = static_cast<int>(std::min<std::uint32_t>(request_.stallLimitMs, MAXLONG / 2) + 1000);
  WinHttpSetTimeouts(handle, connect, connect, stall, stall);
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
  systemError_ = code;
  switch (code) {
    case ERROR_WINHTTP_INVALID_URL:
    case ERROR_WINHTTP_UNRECOGNIZED_SCHEME:
      return HttpError::BadUrl;
    case ERROR_WINHTTP_NAME_NOT_RESOLVED:
    case ERROR_WINHTTP_CANNOT_CONNECT:
      return HttpError::CannotConnect;
    case ERROR_WINHTTP_TIMEOUT:
      return limits_.IsConnected() ? HttpError::Stalled : HttpError::CannotConnect;
    case ERROR_WINHTTP_SECURE_FAILURE:
    case ERROR_WINHTTP_SECURE_CHANNEL_ERROR:
    case ERROR_WINHTTP_SECURE_INVALID_CERT:
    case ERROR_WINHTTP_SECURE_INVALID_CA:
    case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_REV_FAILED:
    case ERROR_WINHTTP_SECURE_CERT_REVOKED:
    case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE:
    case ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED:
      return HttpError::Insecure;
    case ERROR_WINHTTP_CONNECTION_ERROR:
      return limits_.IsConnected() ? HttpError::CutShort : HttpError::CannotConnect;
    default:
      return headDone_ ? HttpError::CutShort : HttpError::Other;
  }
}

HttpOutcome WinHttpExchange::Outcome(HttpError error, int status) const {
  HttpOutcome outcome{error, status};
  if (error == HttpError::None || systemError_ == ERROR_SUCCESS) return outcome;
  outcome.systemError = systemError_;
  outcome.systemText = SystemErrorText(systemError_, GetModuleHandleW(L"winhttp.dll"));
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

HttpError WinHttpExchange::Send(const std::string& url) {
  limits_.BeginHop();
  if (!Open(url)) return HttpError::BadUrl;
  SetOptions();
  HttpError error = AddHeaders();
  if (error != HttpError::None) return error;
  DWORD ignored = 0;
  error =
      Finish(WinHttpSendRequest(exchange_.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0,
                                0, reinterpret_cast<DWORD_PTR>(mailbox_.get())),
             ignored);
  if (error != HttpError::None) return error;
  error = Finish(WinHttpReceiveResponse(exchange_.get(), nullptr), ignored);
  if (error != HttpError::None) return error;
  TakeHead();
  // A length that is no number leaves open where the body ends (RFC 9112, 6.3).
  const bool nonsense = !head_.contentLength && !head_.Header("content-length").empty();
  return nonsense && !IsChunked() ? HttpError::Other : HttpError::None;
}

void WinHttpExchange::TakeHead() {
  DWORD status = 0, size = sizeof status;
  WinHttpQueryHeaders(exchange_.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                      WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX);
  head_.status = static_cast<int>(status);
  size = 0;
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
  const std::uint64_t start = GetTickCount64();
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
  eager_ = !eager_ && takesAll && GetTickCount64() - start <= kQuickMs;
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
    const std::uint64_t start = GetTickCount64();
    if (!sink.Write(std::span(mailbox_->buffer).first(count))) return HttpError::Refused;
    limits_.Excuse(GetTickCount64() - start);
  }
  // A body in chunks says itself where it ends; one that the server ended by closing was not complete.
  const bool cut = counted ? delivered_ != *head_.contentLength : IsChunked() && mailbox_->Ended();
  return cut ? HttpError::CutShort : HttpError::None;
}

}  // namespace platform
