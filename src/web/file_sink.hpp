#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "platform/http_client.hpp"
#include "web/expected.hpp"
#include "web/partial_file.hpp"

namespace web {

// Counted on the working thread, shown on the interface thread.
struct Received {
  std::atomic<std::uint64_t> bytes = 0;    // of the file, those that came before included
  std::atomic<std::uint64_t> earlier = 0;  // came before, in a transfer that was interrupted
  std::atomic<std::uint64_t> total = 0;    // as announced, 0 when it is not known
};

// Streams a body into a file, which is made when the answer begins: without an answer there is none. What the
// file system refuses is raised. Of an answer that is not what was expected nothing is kept: it ends at the
// first byte too many, and a page in the place of the file is read, as far as it is short, and dropped.
class FileSink : public platform::HttpSink {
 public:
  struct Options {
    platform::OutputFile::Existing existing = platform::OutputFile::Existing::Refuse;
    bool successOnly = false;  // a page with a status other than 2xx ends the transfer
    Expected expected{};
    std::uint64_t most = UINT64_MAX;  // bytes; a larger file, or one that does not say, is not taken
  };

  // `path` and `received` outlive the sink. With `part` the bytes are gathered there, and what came stays
  // there when the transfer is interrupted.
  FileSink(const std::string& path, const Options& options, Received& received, PartialFile* part = nullptr)
      : path_(path), options_(options), received_(received), part_(part) {}

  void Begin(const platform::HttpHead& head) override;
  bool Write(std::span<const std::byte> bytes) override;

  // Whether there is a file now. To be called once, after a whole answer.
  bool Commit(platform::OutputFile::Lasting lasting);
  // Whether what came is something else than what was expected.
  bool OtherContent() const { return otherContent_; }
  // Whether it was not taken because it is larger than the most.
  bool TooLarge() const { return tooLarge_; }

 private:
  bool BeginPart(const platform::HttpHead& head);
  bool Storing() const { return file_ || storingPart_; }
  void Drop();  // what was stored

  const std::string& path_;
  const Options options_;
  Received& received_;
  PartialFile* const part_;  // not owned
  bool storingPart_ = false;
  std::optional<platform::OutputFile> file_;
  std::optional<platform::Digest> digest_;
  bool page_ = false;  // comes in the place of what was expected
  bool otherContent_ = false;
  bool tooLarge_ = false;
};

}  // namespace web
