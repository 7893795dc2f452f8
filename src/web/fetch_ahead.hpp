#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "platform/http_client.hpp"
#include "web/file_fetch.hpp"

namespace web {

// Fetches files that will be wanted soon, in their order, on threads of its own, so that the line is busy
// while the present file is being made use of. Everything is called on the interface thread but Wait.
class FetchAhead {
 public:
  struct Limits {
    std::size_t files = 4;           // fetched or on their way, and not claimed
    std::uint64_t bytes = 64 << 20;  // of all of them; a larger file is left to its turn
    unsigned connections = 1;        // at the same time
  };

  // One file on its way. Its file goes with it unless it is handed on.
  class Item {
   public:
    explicit Item(FileRequest wanted) : request(std::move(wanted)) {}
    ~Item();
    Item(const Item&) = delete;

    // Waits, on a working thread, until it is there or `stop` is requested, and gives it the name `path`. One
    // that is too large to be fetched ahead, as only its answer told, is left to be fetched for itself.
    FetchedFile Wait(const std::string& path, const std::stop_token& stop);

    // Waits, on a working thread, for the file under the name that it has until Wait gives it another one;
    // empty when it did not come as it should, when it has got another name, when it is claimed or forgotten
    // before it was begun, or when `stop` is requested.
    std::string WaitFetched(const std::stop_token& stop);

    const FileRequest request;
    Received received;

   private:
    friend class FetchAhead;
    enum class State { Waiting, Fetching, Done, Passed };
    bool Close();  // from now on nobody begins it; whether somebody has
    bool Settle(std::unique_lock<std::mutex>& lock, const std::stop_token& stop);  // false: by `stop`

    State state_ = State::Waiting;
    FetchedFile fetched_;
    std::stop_source stop_;
    std::mutex mutex_;
    std::condition_variable changed_;
  };

  FetchAhead(platform::HttpClient& http, std::string folder) : http_(http), folder_(std::move(folder)) {}
  ~FetchAhead() { Stop(); }

  // The file that is wanted next, which stays here; null when there is none.
  std::shared_ptr<Item> First() const { return items_.empty() ? nullptr : items_.front(); }

  // From now on exactly these are fetched, as far as the limits allow; what is there or on its way stays when
  // it is among them. After one that failed no other is begun before the next call. `path` of the requests is
  // not looked at.
  void Want(std::vector<FileRequest> next, const Limits& limits);

  // The item of an address, which is the caller's from now on; null when it was not begun or is too large.
  std::shared_ptr<Item> Claim(const std::string& url);

  // Forgets everything; returns when no transfer is under way any longer. To be called when no claimed item
  // is waited for.
  void Stop();

 private:
  void Work();
  std::shared_ptr<Item> Next();  // to be fetched now; null when there is none. With the mutex locked
  bool Fetch(Item& item);        // whether it came as it should
  void Drop();                   // all items. With the mutex locked

  platform::HttpClient& http_;
  const std::string folder_;
  std::mutex mutex_;
  std::condition_variable more_;
  std::deque<std::shared_ptr<Item>> items_;  // unclaimed, in their order
  Limits limits_;
  bool blocked_ = false;  // one failed
  bool stopping_ = false;
  std::uint64_t made_ = 0;
  std::vector<std::thread> threads_;
};

}  // namespace web
