#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
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

  bool Has(const util::Md5Digest& wanted) const { return digest == wanted; }
};

// Digests of many files, computed on worker threads ahead of the interface thread, which takes them in order.
// First every folder is looked at once for the files that `record` vouches for, which are not read; then the
// others are read, several side by side on each thread.
class Verification {
 public:
  // Of a file below `folder` as the record has it; empty when the file is to be passed over. Asked on several
  // threads at once.
  using NameOf = std::function<std::string_view(std::size_t index)>;

  // What is passed in by reference, and what the names stand on, is touched by nobody until the last proof
  // was taken or this is gone.
  Verification(std::string folder, std::size_t count, NameOf nameOf, const DigestRecord& record,
               platform::EventLoop& events, const startup::Lifetime& lifetime);
  ~Verification();  // stops the workers promptly

  // The proof of a file, events being handled until it is there; an empty one when the program ends. May be
  // asked for again.
  FileProof Take(std::size_t index);

  // The same without waiting; nothing while it is not there.
  std::optional<FileProof> Peek(std::size_t index);

 private:
  class Worker;
  using Indices = std::vector<std::uint32_t>;
  using Proofs = std::vector<std::pair<std::uint32_t, FileProof>>;

  // A proof in half the room; what is known of it stands elsewhere.
  struct Kept {
    util::Md5Digest digest;
    platform::FileStamp stamp;
  };
  enum Known : std::uint8_t { kProved = 1, kDigest = 2, kRecorded = 4, kStamp = 8 };

  void PlanLooks();
  void Keep(std::size_t index, const FileProof& proof);
  FileProof KeptProof(std::size_t index) const;
  Indices ClaimFolder();  // files of one folder; both are to be called with the mutex locked
  Indices ClaimUnproved();
  Indices LookUp(const Indices& files);  // publishes what the record vouches for; the others
  Indices Claim();                       // the next files to read; empty when there are none left
  void Publish(Proofs& proofs);          // empties it
  std::string PathOf(std::uint32_t index) const;

  const std::string folder_;
  const NameOf nameOf_;
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
  std::vector<Kept> proofs_;
  std::vector<std::uint8_t> known_;    // of each of them
  std::vector<std::jthread> workers_;  // last: joined before what they use goes away
};

}  // namespace update
