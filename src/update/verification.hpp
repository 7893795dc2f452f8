#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/event_loop.hpp"
#include "platform/files.hpp"
#include "startup/lifetime.hpp"
#include "update/digest_record.hpp"
#include "util/md5_digest.hpp"

namespace update {

// What is known of one file after it was looked at.
struct FileProof {
  std::optional<util::Md5Digest> digest;     // none: missing, not readable, or it changed in size meanwhile
  bool recorded = false;                     // the record vouched for it; nothing was read
  std::optional<platform::FileStamp> stamp;  // of the bytes digested; none when they changed meanwhile

  // Whether the file has this digest, 32 characters in lower case.
  bool Has(std::string_view hex) const { return digest && digest == util::Md5Digest::FromHex(hex); }
};

// Digests of many files, computed on worker threads ahead of the interface thread, which takes them in order.
// First every folder is looked at once for the files that `record` vouches for, which are not read; then the
// others are read, several side by side on each thread.
class Verification {
 public:
  // `names`: of files below `folder` as the record has them; those that are empty are passed over. What is
  // passed in by reference, and what the names stand on, is touched by nobody while this lives.
  Verification(std::string folder, std::vector<std::string_view> names, const DigestRecord& record,
               platform::EventLoop& events, const startup::Lifetime& lifetime);
  ~Verification();  // stops the workers promptly

  // The proof of a file, events being handled until it is there; an empty one when the program ends.
  FileProof Take(std::size_t index);

 private:
  class Worker;
  using Indices = std::vector<std::uint32_t>;
  using Proofs = std::vector<std::pair<std::uint32_t, FileProof>>;

  void PlanLooks();
  Indices ClaimFolder();  // files of one folder; both are to be called with the mutex locked
  Indices ClaimUnproved();
  Indices LookUp(const Indices& files);  // publishes what the record vouches for; the others
  Indices Claim();                       // the next files to read; empty when there are none left
  void Publish(Proofs& proofs);          // empties it
  std::string PathOf(std::uint32_t index) const;

  const std::string folder_;
  const std::vector<std::string_view> names_;
  const DigestRecord& record_;
  platform::EventLoop& events_;
  const startup::Lifetime& lifetime_;
  std::mutex mutex_;
  std::condition_variable more_;
  Indices toLookAt_;  // those of a folder together
  std::size_t looked_ = 0;
  std::size_t looking_ = 0;  // workers that are at it
  Indices unproved_;         // to be read
  std::size_t claimed_ = 0;
  std::size_t awaited_ = 0;
  std::vector<std::optional<FileProof>> proofs_;
  std::vector<std::jthread> workers_;  // last: joined before what they use goes away
};

}  // namespace update
