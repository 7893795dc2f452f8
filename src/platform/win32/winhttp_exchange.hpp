#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <winhttp.h>

#include <memory>
#include <stop_token>
#include <string>

#include "platform/http_client.hpp"
#include "platform/win32/handles.hpp"

namespace platform {

struct InternetTraits : base::NullIsNone<HINTERNET> {
  static void Close(Type handle) { WinHttpCloseHandle(handle); }
};
using unique_internet = base::UniqueHandle<InternetTraits>;

struct Mailbox;

// When an answer has become too slow: fewer than one byte a second over the limit.
class SpeedWatch {
 public:
  explicit SpeedWatch(std::uint32_t limitMs)
      : limitMs_(limitMs), enough_(limitMs < 1000 ? 1 : limitMs / 1000), start_(GetTickCount64()) {}
  void Restart() {
    start_ = GetTickCount64();
    bytes_ = 0;
  }
  void Count(std::uint64_t bytes) {
    bytes_ += bytes;
    if (bytes_ >= enough_) Restart();
  }
  void Excuse(std::uint64_t ms) { start_ += ms; }  // time that was not the server's
  std::uint64_t Deadline() const { return start_ + limitMs_; }

 private:
  std::uint32_t limitMs_;
  std::uint64_t enough_;  // bytes that buy another full limit
  std::uint64_t start_;
  std::uint64_t bytes_ = 0;
};

struct EventSetter {
  HANDLE event;
  void operator()() const { SetEvent(event); }
};

// The limits of one HttpRequest over all its hops, and the thread's one place to sleep in.
class TransferLimits {
 public:
  TransferLimits(const HttpRequest& request, std::stop_token stop);

  void BeginHop();   // connecting starts
  void Connected();  // the request is on its way
  bool IsConnected() const { return connected_; }
  void Count(std::uint64_t bytes) { speed_.Count(bytes); }
  void Excuse(std::uint64_t ms) { speed_.Excuse(ms); }

  // Sleeps until `event` is set, a limit is reached or a little time has passed; tells the limit, or the
  // stop, that was there before it slept.
  HttpError Sleep(const unique_event& event);

 private:
  const HttpRequest& request_;
  SpeedWatch speed_;
  std::uint64_t wholeDeadline_;
  std::uint64_t connectDeadline_ = 0;
  bool connected_ = false;
  std::stop_token stop_;
  unique_event stopped_;
  std::stop_callback<EventSetter> onStop_;  // gone before the event that it sets
};

// One request over one hop, run by WinHTTP's threads, waited for by the caller's.
class WinHttpExchange {
 public:
  WinHttpExchange(HINTERNET session, const HttpRequest& request, TransferLimits& limits);
  ~WinHttpExchange();
  WinHttpExchange(const WinHttpExchange&) = delete;

  HttpError Send(const std::string& url);
  const HttpHead& Head() const { return head_; }
  HttpError ReadBody(HttpSink& sink);
  // `error` together with what WinHTTP said of it.
  HttpOutcome Outcome(HttpError error, int status) const;

  static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* information,
                                DWORD size);

 private:
  bool Open(const std::string& url);
  void SetOptions();
  HttpError AddHeaders();
  HttpError ReadPiece(DWORD& count);
  HttpError Finish(BOOL started, DWORD& value);
  HttpError ErrorOf(DWORD code);
  void TakeHead();
  bool IsChunked() const { return !head_.Header("transfer-encoding").empty(); }

  HINTERNET session_;
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
