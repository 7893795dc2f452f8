#include "update/verification.hpp"

#include <algorithm>

#include "base/runtime_error.hpp"
#include "util/clsHashing.hpp"

namespace update {
namespace {

constexpr unsigned kMostWorkers = 4;  // beyond that the disk is the limit
constexpr std::size_t kBatch = 16;
constexpr std::uint32_t kWaitMs = 100;

}  // namespace

Verification::Verification(std::vector<Target> targets, const DigestRecord& record,
                           platform::EventLoop& events, const startup::Lifetime& lifetime)
    : targets_(std::move(targets)),
      record_(record),
      events_(events),
      lifetime_(lifetime),
      proofs_(targets_.size()) {
  const unsigned count = std::clamp(std::thread::hardware_concurrency(), 1u, kMostWorkers);
  for (unsigned i = 0; i < count; ++i) workers_.emplace_back([this](std::stop_token stop) { Work(stop); });
}

Verification::~Verification() {
  for (std::jthread& worker : workers_) worker.request_stop();
}

// Files that the record vouches for take microseconds each, far less than it costs to wake the interface
// thread, so a batch of them wakes it once; one that was read wakes it at once.
void Verification::Work(std::stop_token stop) {
  while (!stop.stop_requested()) {
    std::size_t first = 0, last = 0;
    {
      const std::lock_guard lock(mutex_);
      if (next_ == targets_.size()) return;
      first = next_;
      next_ = last = std::min(first + kBatch, targets_.size());
    }
    for (std::size_t i = first; i < last && !stop.stop_requested(); ++i) {
      FileProof proof = Prove(targets_[i], stop);
      bool wake = false;
      {
        const std::lock_guard lock(mutex_);
        wake = (!proof.recorded || i + 1 == last) && awaited_ >= first && awaited_ <= i;
        proofs_[i] = std::move(proof);
      }
      if (wake) events_.Wake();
    }
  }
}

FileProof Verification::Prove(const Target& target, std::stop_token stop) const {
  if (target.inBin.empty()) return {};
  try {
    const auto before = platform::StampOf(target.path);
    if (!before) return {};
    if (auto known = record_.Find(target.inBin, *before)) return {std::move(*known), true, before};
    FileProof proof{util::clsHashing().MD5File(target.path, stop), false, before};
    if (platform::StampOf(target.path) != before) proof.stamp.reset();
    return proof;
  } catch (const base::RuntimeError&) {
    return {};
  }
}

FileProof Verification::Take(std::size_t index) {
  for (;;) {
    {
      const std::lock_guard lock(mutex_);
      awaited_ = index;
      if (proofs_[index]) return std::move(*proofs_[index]);
    }
    if (lifetime_.Ending()) return {};
    events_.WaitEvents(kWaitMs);
  }
}

}  // namespace update
