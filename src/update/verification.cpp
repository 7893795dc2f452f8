#include "update/verification.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <type_traits>
#include <unordered_map>

#include "base/runtime_error.hpp"
#include "util/md5_lanes.hpp"

namespace update {
namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kMostWorkers = 8;
constexpr std::size_t kMostLanes = 16;
constexpr std::size_t kMostClaimed = 64;
constexpr std::size_t kMostAtOnce = 256;  // proofs handed on together
constexpr std::size_t kClaimsLeft = 4;    // of each worker at the present pace, so that all end together
constexpr auto kPublishEvery = std::chrono::milliseconds(4);
constexpr std::uint32_t kWaitMs = 100;

// The folder part with its closing "/", and the rest.
std::pair<std::string_view, std::string_view> Parts(std::string_view name) {
  const std::size_t size = name.rfind('/') + 1;
  return {name.substr(0, size), name.substr(size)};
}

std::size_t WorkerCount() { return std::clamp(std::thread::hardware_concurrency(), 1u, kMostWorkers); }

}  // namespace

// Digests files side by side. Proofs are handed on a few at a time, since waking the interface thread costs
// more than proving a small file.
class Verification::Worker : public util::Md5Messages {
 public:
  Worker(Verification& all, std::stop_token stop) : all_(all), stop_(std::move(stop)) {}

  void Run(std::size_t lanes) {
    util::DigestSideBySide(*this, lanes, stop_);
    all_.Publish(proofs_);
  }

  bool Next(std::size_t lane) override {
    while (!stop_.stop_requested()) {
      while (at_ < files_.size()) {
        PublishInTime();
        if (Open(open_[lane], files_[at_++])) return true;
        proofs_.emplace_back(open_[lane].index, FileProof{});
      }
      if (!proofs_.empty()) all_.Publish(proofs_);  // claiming may wait
      files_ = all_.Claim();
      at_ = 0;
      if (files_.empty()) return false;
    }
    return false;
  }

  std::size_t Read(std::size_t lane, std::span<std::byte> into) override {
    PublishInTime();
    OpenFile& file = open_[lane];
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(file.left, into.size()));
    if (wanted == 0) return 0;
    const std::size_t got = Quietly(file, [&] { return file.input->Read(into.first(wanted)); });
    file.left = got == 0 ? 0 : file.left - got;
    return got;
  }

  void Finish(std::size_t lane, const util::Md5Digest& digest) override {
    OpenFile& file = open_[lane];
    const platform::FileStamp after = Quietly(file, [&] { return file.input->Stamp(); });
    FileProof proof;
    if (file.readable && after.size == file.before.size) {
      proof.digest = digest;
      if (after == file.before) proof.stamp = after;
    }
    file.input.reset();
    proofs_.emplace_back(file.index, std::move(proof));
  }

 private:
  struct OpenFile {
    std::optional<platform::InputFile> input;
    std::uint32_t index = 0;
    platform::FileStamp before;
    std::uint64_t left = 0;  // bytes to read
    bool readable = false;
  };

  // What `action` gives, or nothing when the file cannot be read (any further).
  template <class Action>
  static std::invoke_result_t<Action> Quietly(OpenFile& file, Action action) {
    try {
      return action();
    } catch (const base::RuntimeError&) {
      file.readable = false;
      return {};
    }
  }

  bool Open(OpenFile& file, std::uint32_t index) {
    file.index = index;
    file.readable = true;
    file.before = Quietly(file, [&] {
      file.input.emplace(all_.PathOf(index));
      return file.input->Opened();
    });
    file.left = file.before.size;
    return file.readable;
  }

  void PublishInTime() {
    if (proofs_.empty() || Clock::now() < published_ + kPublishEvery) return;
    all_.Publish(proofs_);
    published_ = Clock::now();
  }

  Verification& all_;
  const std::stop_token stop_;
  Indices files_;
  std::size_t at_ = 0;
  std::array<OpenFile, kMostLanes> open_;
  Proofs proofs_;
  Clock::time_point published_ = Clock::now();
};

Verification::Verification(std::string folder, std::size_t count, NameOf nameOf, const DigestRecord& record,
                           platform::EventLoop& events, const startup::Lifetime& lifetime)
    : folder_(std::move(folder)),
      nameOf_(std::move(nameOf)),
      record_(record),
      events_(events),
      lifetime_(lifetime),
      proofs_(count),
      known_(count) {
  PlanLooks();
  // A few long files are better shared out than digested all by the first worker.
  const std::size_t share = (unproved_.size() + toLookAt_.size() + WorkerCount() - 1) / WorkerCount();
  const std::size_t lanes = std::clamp<std::size_t>(share, 1, std::min(util::Md5LaneCount(), kMostLanes));
  for (std::size_t i = 0; i < WorkerCount(); ++i)
    workers_.emplace_back([this, lanes](std::stop_token stop) { Worker(*this, std::move(stop)).Run(lanes); });
}

Verification::~Verification() {
  for (std::jthread& worker : workers_) worker.request_stop();
}

// Without a record every file is read, in order; with one, folders are looked at in the order in which they
// first appear.
void Verification::PlanLooks() {
  Indices& files = record_.Empty() ? unproved_ : toLookAt_;
  files.reserve(proofs_.size());
  for (std::uint32_t i = 0; i < proofs_.size(); ++i) {
    if (nameOf_(i).empty()) {
      Keep(i, {});
    } else {
      files.push_back(i);
    }
  }
  std::unordered_map<std::string_view, std::size_t> ranks;
  for (const std::uint32_t i : toLookAt_) ranks.try_emplace(Parts(nameOf_(i)).first, ranks.size());
  const auto rank = [&](std::uint32_t i) { return ranks.find(Parts(nameOf_(i)).first)->second; };
  const auto before = [&](std::uint32_t a, std::uint32_t b) { return rank(a) < rank(b); };
  if (!std::is_sorted(toLookAt_.begin(), toLookAt_.end(), before))
    std::stable_sort(toLookAt_.begin(), toLookAt_.end(), before);
}

std::string Verification::PathOf(std::uint32_t index) const {
  return folder_ + platform::kSeparator + platform::NativePath(nameOf_(index));
}

Verification::Indices Verification::ClaimFolder() {
  const auto first = toLookAt_.begin() + static_cast<std::ptrdiff_t>(looked_);
  const std::string_view folder = Parts(nameOf_(*first)).first;
  const auto last = std::find_if(first, toLookAt_.end(),
                                 [&](std::uint32_t i) { return Parts(nameOf_(i)).first != folder; });
  looked_ += static_cast<std::size_t>(last - first);
  return Indices(first, last);
}

Verification::Indices Verification::ClaimUnproved() {
  const std::size_t left = unproved_.size() - claimed_;
  const std::size_t count = std::clamp<std::size_t>(left / (WorkerCount() * kClaimsLeft), 1, kMostClaimed);
  const auto first = unproved_.begin() + static_cast<std::ptrdiff_t>(claimed_);
  claimed_ += count;
  return Indices(first, first + static_cast<std::ptrdiff_t>(count));
}

Verification::Indices Verification::LookUp(const Indices& files) {
  std::vector<std::string_view> names;
  for (const std::uint32_t i : files) names.push_back(Parts(nameOf_(i)).second);
  const std::string path = PathOf(files.front());
  const auto stamps = platform::StampsOf(platform::FolderOf(path), names);
  Indices others;
  Proofs proofs;
  for (std::size_t at = 0; at < files.size(); ++at) {
    if (proofs.size() == kMostAtOnce) Publish(proofs);
    const std::optional<platform::FileStamp>& stamp = stamps[at];
    auto known = stamp ? record_.Find(nameOf_(files[at]), *stamp) : std::nullopt;
    if (stamp && !known) {
      others.push_back(files[at]);
    } else {
      proofs.emplace_back(files[at], FileProof{known, known.has_value(), stamp});
    }
  }
  Publish(proofs);
  return others;
}

Verification::Indices Verification::Claim() {
  std::unique_lock lock(mutex_);
  for (;;) {
    if (looked_ < toLookAt_.size()) {
      const Indices files = ClaimFolder();
      ++looking_;
      lock.unlock();
      const Indices others = LookUp(files);
      lock.lock();
      --looking_;
      unproved_.insert(unproved_.end(), others.begin(), others.end());
      more_.notify_all();
    } else if (claimed_ < unproved_.size()) {
      return ClaimUnproved();
    } else if (looking_ == 0) {
      return {};
    } else {
      more_.wait(lock);
    }
  }
}

void Verification::Keep(std::size_t index, const FileProof& proof) {
  proofs_[index] = {proof.digest.value_or(util::Md5Digest{}), proof.stamp.value_or(platform::FileStamp{})};
  known_[index] = static_cast<std::uint8_t>(kProved | (proof.digest ? kDigest : 0) |
                                            (proof.recorded ? kRecorded : 0) | (proof.stamp ? kStamp : 0));
}

FileProof Verification::KeptProof(std::size_t index) const {
  const auto& [digest, stamp] = proofs_[index];
  const auto is = [known = known_[index]](Known what) { return (known & what) != 0; };
  return {is(kDigest) ? std::optional(digest) : std::nullopt, is(kRecorded),
          is(kStamp) ? std::optional(stamp) : std::nullopt};
}

void Verification::Publish(Proofs& proofs) {
  bool wake = false;
  {
    const std::lock_guard lock(mutex_);
    for (auto& [index, proof] : proofs) {
      wake = wake || index == awaited_;
      Keep(index, proof);
    }
  }
  proofs.clear();
  if (wake) events_.Wake();
}

std::optional<FileProof> Verification::Peek(std::size_t index) {
  const std::lock_guard lock(mutex_);
  return known_[index] ? std::optional(KeptProof(index)) : std::nullopt;
}

FileProof Verification::Take(std::size_t index) {
  for (;;) {
    {
      const std::lock_guard lock(mutex_);
      awaited_ = index;
      if (known_[index]) return KeptProof(index);
    }
    if (lifetime_.Ending()) return {};
    events_.WaitEvents(kWaitMs);
  }
}

}  // namespace update
