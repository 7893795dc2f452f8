#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "platform/http_client.hpp"

namespace web {

// A file that comes from a server and, when its transfer is interrupted, is gone on with by the next one, be
// it after a new start (RFC 9110: Range and If-Range). What came lies in one file, and beside it stands of
// what it is the beginning: the address, the server's strong validator and the whole size. A server that
// offers neither ranges nor such a validator, or a small file, begins again.
class PartialFile {
 public:
  using Headers = std::vector<std::pair<std::string, std::string>>;

  // `path`: where the bytes lie, in a folder of its own; what lies there of another address is dropped.
  PartialFile(std::string path, std::string url);
  ~PartialFile();  // removes what cannot be gone on with
  PartialFile(const PartialFile&) = delete;

  std::uint64_t Size() const { return size_; }
  Headers Conditions() const;  // of a request that goes on; empty when there is nothing to go on with

  // Whether this head of a 206 continues exactly what lies here.
  bool IsContinuedBy(const platform::HttpHead& head) const;
  void Continue();                               // its bytes follow
  void Restart(const platform::HttpHead& head);  // bytes from the first one on follow
  void Write(std::span<const std::byte> bytes);
  void ReadInto(platform::Digest& digest) const;  // what lies here

  void MoveTo(const std::string& target);  // 58 when the name is taken
  void Forget();

 private:
  struct Origin {
    std::string validator;
    std::uint64_t size = 0;
  };
  std::optional<Origin> ReadOrigin() const;
  std::string OriginPath() const { return path_ + ".txt"; }

  const std::string path_, url_;
  std::uint64_t size_ = 0;  // bytes that lie here
  std::optional<Origin> origin_;
  std::optional<platform::NewFile> file_;
};

}  // namespace web
