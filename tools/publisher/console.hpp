#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>

namespace publisher {

// Where a command speaks: results on `out`, everything else on `err`.
struct Console {
  std::ostream& out;
  std::ostream& err;
  bool terminal = false;  // `err` is a terminal, so a line can be written over
};

// How far a long piece of work is. On a terminal one line that is written over and wiped at the end;
// elsewhere a line every ten seconds, so that short work stays silent. Safe to use from several threads.
class Progress {
 public:
  Progress(Console& console, std::string what, std::uint64_t totalBytes);
  ~Progress();
  Progress(const Progress&) = delete;

  void Add(std::uint64_t bytes);

 private:
  void Print();

  Console& console_;
  const std::string what_;
  const std::uint64_t total_;
  std::mutex mutex_;
  std::uint64_t done_ = 0;
  bool printed_ = false;
  std::chrono::steady_clock::time_point due_;
};

}  // namespace publisher
