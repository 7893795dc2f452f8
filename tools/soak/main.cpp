// Installs a game again and again among everything that goes wrong; bench/soak runs it.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.hpp"
#include "soak/installation.hpp"

namespace {

struct Options {
  std::string launcher, client, folder;
  int count = 0, jobs = 1;
  std::uint64_t seed = 0;
};

// The totals of all installations.
class Totals {
 public:
  void Add(std::uint64_t seed, const soak::Course& course) {
    const std::lock_guard lock(mutex_);
    ++done_;
    std::printf("%4d  seed %llu: %s\n", done_, static_cast<unsigned long long>(seed), Words(course).c_str());
    std::fflush(stdout);
    for (const auto& [fault, times] : course.faults) all_.faults[fault] += times;
    all_.kills += course.kills;
    all_.fullDisks += course.fullDisks;
    all_.starts += course.starts;
    all_.again += course.again;
    all_.seconds += course.seconds;
    all_.limitedFiles = all_.limitedFiles || course.limitedFiles;
    if (!course.lost.empty()) lost_ += " " + std::to_string(seed);
  }

  // Whether nothing was lost.
  bool Tell() const {
    std::printf("%d installations: %s\n", done_, Words(all_).c_str());
    if (all_.limitedFiles)
      std::printf("No file system may be mounted here: files of limited size stood in for full disks.\n");
    std::printf(lost_.empty() ? "lost: 0\n" : "lost: seeds%s\n", lost_.c_str());
    return lost_.empty();
  }

 private:
  static std::string Words(const soak::Course& course) {
    std::string words;
    for (const auto& [fault, times] : course.faults) words += fault + " " + std::to_string(times) + ", ";
    char rest[200];
    std::snprintf(rest, sizeof rest, "killed %d, disk full %d, starts %d (%d again), %.1f s", course.kills,
                  course.fullDisks, course.starts, course.again, course.seconds);
    return words + rest + (course.lost.empty() ? "" : "  LOST: " + course.lost);
  }

  std::mutex mutex_;
  int done_ = 0;
  soak::Course all_;
  std::string lost_;
};

soak::Course Installed(const soak::Setting& setting, std::uint64_t seed) {
  try {
    return soak::Install(setting, std::to_string(seed), soak::Dice(seed));
  } catch (const std::exception& error) {
    soak::Course course;
    course.lost = error.what();
    return course;
  }
}

bool Soak(const Options& options) {
  const soak::Game game(options.folder, platform::ReadWhole(options.client, 1 << 20));
  const soak::Setting setting = soak::Measured({game, options.launcher, options.folder});
  std::printf("A game of %zu files, installed undisturbed in %.1f s.\n", game.second.size(),
              static_cast<double>(setting.time.count()) / 1000);
  Totals totals;
  std::atomic<int> next = 0;
  std::vector<std::jthread> workers;
  for (int i = 0; i < options.jobs; ++i) {
    workers.emplace_back([&] {
      for (int number = next++; number < options.count; number = next++) {
        const std::uint64_t seed = options.seed + static_cast<std::uint64_t>(number);
        totals.Add(seed, Installed(setting, seed));
      }
    });
  }
  workers.clear();
  return totals.Tell();
}

}  // namespace

int main(int count, char** words) {
  if (count != 7) return 2;
  try {
    return Soak({words[1], words[2], words[3], std::atoi(words[4]), std::atoi(words[5]),
                 std::strtoull(words[6], nullptr, 10)})
               ? 0
               : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 1;
  }
}
