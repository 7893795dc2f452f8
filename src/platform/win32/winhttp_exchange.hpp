#pragma once

#include <memory>
#include <string>

#include "platform/http_client.hpp"
#include "platform/win32/transfer_limits.hpp"
#include "platform/win32/winhttp_session.hpp"

namespace platform {

struct Mailbox;

// One request over one hop, run by WinHTTP's threads, waited for by the caller's.
class WinHttpExchange {
 public:
  WinHttpExchange(WinHttpSession& session, const HttpRequest& request, TransferLimits& limits);
  ~WinHttpExchange();
  WinHttpExchange(const WinHttpExchange&) = delete;

  HttpError Send(const std::string& url);
  const HttpHead& Head() const { return head_; }
  HttpError ReadBody(HttpSink& sink);
  // `error` together with what WinHTTP said of it; `before` is the status of the hop before this one.
  HttpOutcome Outcome(HttpError error, int before) const;

  static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* information,
                                DWORD size);

 private:
  HttpError Prepare(const std::string& url);
  bool Open(const std::string& url, const Proxy& proxy);
  void SetOptions();
  HttpError AddHeaders();
  HttpError Ask();
  bool LogOnToProxy();
  int Status() const;
  HttpError ReadPiece(DWORD& count);
  HttpError Finish(BOOL started, DWORD& value);
  HttpError ErrorOf(DWORD code);
  void TakeHead();
  bool IsChunked() const { return !head_.Header("transfer-encoding").empty(); }

  WinHttpSession& session_;
  const HttpRequest& request_;
  TransferLimits& limits_;
  std::shared_ptr<Mailbox> mailbox_;
  unique_internet server_;
  unique_internet exchange_;  // closed before the server it talks to
  HttpHead head_;
  DWORD systemError_ = ERROR_SUCCESS;  // of the last call that failed
  bool headDone_ = false;
  std::uint64_t delivered_ = 0;  // bytes of the body
  std::uint64_t counted_ = 0;    // bytes that limits_ knows of
  bool eager_ = false;           // the next piece is a whole buffer
};

}  // namespace platform
