// A test that does not come to its end is named and ends the run, instead of standing still for as long as
// somebody waits for the whole.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

namespace {

// Several times what the longest test takes on a machine that is busy with other work.
constexpr auto kLimit = std::chrono::minutes(10);

class TimeLimit : public testing::EmptyTestEventListener {
 public:
  void OnTestProgramStart(const testing::UnitTest&) override {
    watching_ = std::jthread([this](std::stop_token over) { Watch(over); });
  }
  void OnTestStart(const testing::TestInfo& test) override {
    const std::lock_guard lock(mutex_);
    running_ = std::string(test.test_suite_name()) + "." + test.name();
    begun_ = std::chrono::steady_clock::now();
  }
  void OnTestProgramEnd(const testing::UnitTest&) override { watching_ = {}; }

 private:
  void Watch(std::stop_token over) {
    std::unique_lock lock(mutex_);
    while (std::chrono::steady_clock::now() < begun_ + kLimit) {
      if (woken_.wait_until(lock, over, begun_ + kLimit, [] { return false; }); over.stop_requested()) return;
    }
    std::fprintf(stderr, "[  FAILED  ] %s has no end\n", running_.c_str());
    std::fflush(stderr);
    // A crash: what catches it tells where every thread was.
    __builtin_trap();
  }

  std::mutex mutex_;
  std::condition_variable_any woken_;  // by the end of the tests alone
  std::string running_;
  std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
  std::jthread watching_;
};

[[maybe_unused]] const bool kAppended = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new TimeLimit);  // which owns it from here on
  return true;
}();

}  // namespace
