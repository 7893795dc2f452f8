#pragma once

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/event_loop.hpp"
#include "platform/files.hpp"
#include "startup/lifetime.hpp"
#include "update/digest_record.hpp"

namespace update {

// What is known of one file after it was looked at.
struct FileProof {
  std::string digest;                        // empty: missing or not readable
  bool recorded = false;                     // the record vouched for it; nothing was read
  std::optional<platform::FileStamp> stamp;  // of the bytes digested; none when they changed meanwhile
};

// Digests of many files, computed on worker threads ahead of the interface thread, which takes them in order.
// A file that `record` vouches for is not read. Nothing passed in is touched by others while this lives.
class Verification {
 public:
  struct Target {
    std::string path;   // full
    std::string inBin;  // its name in the record; empty targets are passed over
  };

  Verification(std::vector<Target> targets, const DigestRecord& record, platform::EventLoop& events,
               const startup::Lifetime& lifetime);
  ~Verification();  // stops the workers promptly

  // The proof of a target, events being handled until it is there; an empty one when the program ends.
  FileProof Take(std::size_t index);

 private:
  void Work(std::stop_token stop);
  FileProof Prove(const Target& target, std::stop_token stop) const;

  const std::vector<Target> targets_;
  const DigestRecord& record_;
  platform::EventLoop& events_;
  const startup::Lifetime& lifetime_;
  std::mutex mutex_;
  std::size_t next_ = 0;
  std::size_t awaited_ = 0;
  std::vector<std::optional<FileProof>> proofs_;
  std::vector<std::jthread> workers_;  // last: joined before what they use goes away
};

}  // namespace update
