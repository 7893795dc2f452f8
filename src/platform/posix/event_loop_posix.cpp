#include "platform/posix/event_loop_posix.hpp"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include "platform/machine.hpp"
#include "platform/posix/system_error.hpp"

namespace platform {
namespace {

// A line longer than this is handed over in pieces, so that endless input cannot fill the memory.
constexpr std::size_t kLongestLine = 64 * 1024;
constexpr std::size_t kMostLines = 1000;  // read ahead

bool Readable(int fd) {
  pollfd one{fd, POLLIN, 0};
  return poll(&one, 1, 0) > 0;
}

}  // namespace

PosixEventLoop::PosixEventLoop(Clock& clock) : timers_(clock), wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!wake_) RaiseErrno(errno);
}

void PosixEventLoop::ReadLines(int input, std::function<bool(const std::string&)> onLine) {
  input_ = input;
  onLine_ = std::move(onLine);
}

void PosixEventLoop::DoEvents() {
  beforeEvents_();
  ReadInput();
  // Only what has come by now: a handler that is fed without pause must not keep the timers from firing.
  for (std::size_t pending = lines_.size(); pending > 0 && !lines_.empty(); --pending) {
    const std::string line = std::move(lines_.front());
    lines_.pop_front();
    if (!onLine_(line)) break;
  }
  timers_.FireDue();
}

void PosixEventLoop::WaitEvents(std::uint32_t limitMs) {
  beforeEvents_();
  std::uint64_t limit = lines_.empty() ? limitMs : 0;
  if (const auto next = timers_.UntilNext()) limit = std::min(limit, *next);
  std::array<pollfd, 2> sources = {pollfd{wake_.get(), POLLIN, 0}, pollfd{input_, POLLIN, 0}};
  poll(sources.data(), sources.size(), static_cast<int>(std::min<std::uint64_t>(limit, INT_MAX)));
  eventfd_t ignored;
  eventfd_read(wake_.get(), &ignored);
  DoEvents();
}

void PosixEventLoop::Wake() { eventfd_write(wake_.get(), 1); }

void PosixEventLoop::ReadInput() {
  if (input_ < 0 || lines_.size() >= kMostLines || !Readable(input_)) return;
  std::array<char, 4096> piece;
  const ssize_t count = read(input_, piece.data(), piece.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count > 0) {
    unfinished_.append(piece.data(), static_cast<std::size_t>(count));
    TakeLines();
    return;
  }
  input_ = -1;
  if (!unfinished_.empty()) lines_.push_back(std::move(unfinished_));
  unfinished_.clear();
}

void PosixEventLoop::TakeLines() {
  std::size_t start = 0;
  for (std::size_t end; (end = unfinished_.find('\n', start)) != std::string::npos; start = end + 1) {
    const bool carriageReturn = end > start && unfinished_[end - 1] == '\r';
    lines_.push_back(unfinished_.substr(start, end - start - (carriageReturn ? 1 : 0)));
  }
  unfinished_.erase(0, start);
  if (unfinished_.size() < kLongestLine) return;
  lines_.push_back(std::move(unfinished_));
  unfinished_.clear();
}

void PosixEventLoop::GiveBack(std::deque<std::string> lines) {
  lines_.insert(lines_.begin(), lines.begin(), lines.end());
  Wake();
}

std::unique_ptr<EventLoop> MakeEventLoop(Clock& clock) { return std::make_unique<PosixEventLoop>(clock); }

}  // namespace platform
