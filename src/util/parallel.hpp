#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace util {

// Calls work(i) for every i below `count` on as many threads as there are processors, each with a `work` of
// its own from makeWork(). The first exception ends the run and is thrown again here.
template <class MakeWork>
void ForEachParallelWith(std::size_t count, MakeWork makeWork) {
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr failure;
  const auto run = [&] {
    try {
      auto work = makeWork();
      for (std::size_t i = next++; i < count; i = next++) work(i);
    } catch (...) {
      const std::lock_guard lock(mutex);
      if (!failure) failure = std::current_exception();
      next = count;
    }
  };
  {
    std::vector<std::jthread> threads;
    const std::size_t wanted = std::max(1u, std::thread::hardware_concurrency());
    for (std::size_t i = 1; i < std::min(wanted, count); ++i) threads.emplace_back(run);
    run();
  }
  if (failure) std::rethrow_exception(failure);
}

// The same with one `work` for all threads.
template <class Work>
void ForEachParallel(std::size_t count, Work work) {
  ForEachParallelWith(count, [&work] { return [&work](std::size_t i) { work(i); }; });
}

}  // namespace util
