#include "publisher/console.hpp"

#include <algorithm>
#include <utility>

namespace publisher {
namespace {

constexpr auto kTerminalPace = std::chrono::milliseconds(200);
constexpr auto kLogPace = std::chrono::seconds(10);

std::chrono::steady_clock::duration Pace(const Console& console) {
  return console.terminal ? std::chrono::steady_clock::duration(kTerminalPace) : kLogPace;
}

std::string Megabytes(std::uint64_t bytes) { return std::to_string((bytes + 500'000) / 1'000'000); }

}  // namespace

Progress::Progress(Console& console, std::string what, std::uint64_t totalBytes)
    : console_(console),
      what_(std::move(what)),
      total_(totalBytes),
      due_(std::chrono::steady_clock::now() + Pace(console)) {}

Progress::~Progress() {
  if (printed_ && console_.terminal) console_.err << "\r\033[K" << std::flush;
}

void Progress::Add(std::uint64_t bytes) {
  const std::lock_guard lock(mutex_);
  done_ += bytes;
  const auto now = std::chrono::steady_clock::now();
  if (now < due_) return;
  due_ = now + Pace(console_);
  Print();
}

void Progress::Print() {
  printed_ = true;
  const std::uint64_t percent = total_ == 0 ? 100 : std::min<std::uint64_t>(100, done_ * 100 / total_);
  console_.err << (console_.terminal ? "\r\033[K" : "") << what_ << ": " << percent << "% ("
               << Megabytes(done_) << " of " << Megabytes(total_) << " MB)" << (console_.terminal ? "" : "\n")
               << std::flush;
}

}  // namespace publisher
