#include "web/fetch_ahead.hpp"

#include <algorithm>
#include <chrono>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace web {
namespace {

constexpr std::chrono::milliseconds kPoll{20};  // how soon a stop is noticed

}  // namespace

FetchAhead::Item::~Item() {
  if (fetched_.kept) platform::TryRemoveFile(request.path);
}

bool FetchAhead::Item::Settle(std::unique_lock<std::mutex>& lock, const std::stop_token& stop) {
  const auto settled = [this] { return state_ == State::Done || state_ == State::Passed; };
  while (!settled() && !stop.stop_requested()) changed_.wait_for(lock, kPoll);
  return settled();
}

FetchedFile FetchAhead::Item::Wait(const std::string& path, const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  if (!Settle(lock, stop)) {
    stop_.request_stop();
    FetchedFile none;
    none.report.outcome.error = platform::HttpError::Cancelled;
    return none;
  }
  FetchedFile fetched = fetched_;
  if (!fetched.kept) return fetched;
  try {
    platform::RenameFile(request.path, path);
    fetched_.kept = false;
  } catch (const base::RuntimeError& error) {
    fetched.kept = false;
    fetched.report.own = error;
  }
  return fetched;
}

std::string FetchAhead::Item::WaitFetched(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  Settle(lock, stop);
  return fetched_.kept && fetched_.report.Good() ? request.path : std::string{};
}

bool FetchAhead::Item::Close() {
  const std::lock_guard lock(mutex_);
  if (state_ == State::Waiting) state_ = State::Passed;
  return state_ != State::Passed;
}

void FetchAhead::Drop() {
  for (const auto& item : items_) {
    if (!item) continue;
    item->Close();
    item->stop_.request_stop();
  }
  items_.clear();
}

void FetchAhead::Want(std::vector<FileRequest> next, const Limits& limits) {
  if (threads_.empty()) platform::RemoveTree(folder_);  // what a launcher that was killed has left
  if (!next.empty()) platform::MakeFolders(folder_);
  {
    const std::lock_guard lock(mutex_);
    limits_ = limits;
    blocked_ = false;
    std::deque<std::shared_ptr<Item>> wanted;
    for (FileRequest& request : next) {
      const auto same = [&](const auto& item) { return item && item->request.url == request.url; };
      const auto found = std::find_if(items_.begin(), items_.end(), same);
      if (found != items_.end()) {
        wanted.push_back(std::move(*found));
        continue;
      }
      request.path = folder_ + platform::kSeparator + std::to_string(++made_);
      request.most = limits.bytes;
      wanted.push_back(std::make_shared<Item>(std::move(request)));
    }
    Drop();
    items_ = std::move(wanted);
    while (threads_.size() < limits.connections && !items_.empty()) threads_.emplace_back([this] { Work(); });
  }
  more_.notify_all();
}

std::shared_ptr<FetchAhead::Item> FetchAhead::Claim(const std::string& url) {
  std::shared_ptr<Item> claimed;
  {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const auto& item) { return item->request.url == url; });
    if (found == items_.end()) return nullptr;
    claimed = std::move(*found);
    items_.erase(found);
  }
  more_.notify_all();
  return claimed->Close() ? claimed : nullptr;
}

void FetchAhead::Stop() {
  {
    const std::lock_guard lock(mutex_);
    Drop();
    stopping_ = true;
  }
  more_.notify_all();
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
  try {
    platform::RemoveTree(folder_);       // what a launcher that was killed has left there as well
  } catch (const base::RuntimeError&) {  // the next stop tries again
  }
  stopping_ = false;
}

std::shared_ptr<FetchAhead::Item> FetchAhead::Next() {
  std::size_t ahead = 0;
  std::uint64_t bytes = 0;
  for (const auto& item : items_) {
    const std::lock_guard lock(item->mutex_);
    switch (item->state_) {
      case Item::State::Passed:
        return nullptr;  // its turn comes first
      case Item::State::Fetching:
      case Item::State::Done:
        ++ahead;
        bytes += item->request.expected.size.value_or(item->received.total);
        break;
      case Item::State::Waiting:
        if (item->request.expected.size.value_or(0) > item->request.most) item->state_ = Item::State::Passed;
        if (item->state_ == Item::State::Passed) return nullptr;
        if (blocked_ || ahead >= limits_.files || bytes >= limits_.bytes) return nullptr;
        item->state_ = Item::State::Fetching;
        return item;
    }
  }
  return nullptr;
}

void FetchAhead::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    std::shared_ptr<Item> item;
    more_.wait(lock, [&] { return stopping_ || (item = Next()) != nullptr; });
    if (stopping_) return;
    lock.unlock();
    const bool good = Fetch(*item);
    lock.lock();
    blocked_ = blocked_ || (!good && !item->stop_.stop_requested());
  }
}

bool FetchAhead::Fetch(Item& item) {
  FetchedFile fetched = FetchFile(http_, item.request, item.received, item.stop_.get_token());
  const bool good = fetched.report.Good() && !fetched.report.disproved;
  {
    const std::lock_guard lock(item.mutex_);
    item.state_ = fetched.tooLarge ? Item::State::Passed : Item::State::Done;
    item.fetched_ = std::move(fetched);
  }
  item.changed_.notify_all();
  return good;
}

}  // namespace web
