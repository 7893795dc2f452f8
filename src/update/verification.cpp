#include "update/verification.hpp"

#include <algorithm>

#include "util/clsHashing.hpp"
#include "util/runtime_error.hpp"

namespace update {
namespace {

constexpr unsigned kMostWorkers = 4;  // beyond that the disk is the limit
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

void Verification::Work(std::stop_token stop) {
  while (!stop.stop_requested()) {
    std::size_t mine = 0;
    {
      const std::lock_guard lock(mutex_);
      if (next_ == targets_.size()) return;
      mine = next_++;
    }
    FileProof proof = Prove(targets_[mine], stop);
    bool wake = false;
    {
      const std::lock_guard lock(mutex_);
      proofs_[mine] = std::move(proof);
      wake = mine == awaited_;
    }
    if (wake) events_.Wake();
  }
}

FileProof Verification::Prove(const Target& target, std::stop_token stop) const {
  if (target.inBin.empty()) return {};
  try {
    const auto before = platform::StampOf(target.path);
    if (!before) return {};
    if (auto known = record_.Find(target.inBin, *before)) return {std::move(*known), before};
    FileProof proof{util::clsHashing().MD5File(target.path, stop), before};
    if (platform::StampOf(target.path) != before) proof.stamp.reset();
    return proof;
  } catch (const util::RuntimeError&) {
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
