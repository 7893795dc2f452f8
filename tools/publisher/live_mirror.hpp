#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/http_client.hpp"
#include "publisher/checked_files.hpp"
#include "publisher/findings.hpp"
#include "publisher/scratch_folder.hpp"

namespace publisher {

// A mirror as launchers reach it. Every file is fetched over HTTP, and what the mirror says beside it is
// judged.
class LiveMirror : public CheckedFiles {
 public:
  // `url`: what the files are asked below, absolute and ending in "/". `elsewhere`: complete addresses of
  // those that launchers ask at another place.
  LiveMirror(std::string url, std::map<std::string, std::string> elsewhere, Findings& findings);

  std::string Called(const std::string& name) const override;
  std::optional<LocalCopy> Fetch(const std::string& name) override;
  std::uint64_t SizeOf(const std::string&) const override { return 0; }

  // How the mirror answers a request for what is not there, for what has not changed, and for a part.
  void CheckManners();

  // SHA-256 of everything that was fetched whole, by name.
  std::map<std::string, std::string> Digests() const;

 private:
  using Headers = std::vector<std::pair<std::string, std::string>>;
  struct Answer;

  Answer Ask(const std::string& name, Headers headers);
  void CheckMissing(const std::string& name);
  void CheckUnchanged(const std::string& name);
  void CheckParts(const std::string& name);

  const std::string url_;
  const std::map<std::string, std::string> elsewhere_;
  Findings& findings_;
  const ScratchFolder scratch_;
  std::atomic<int> fetched_{0};
  const std::unique_ptr<platform::HttpClient> client_;
  mutable std::mutex mutex_;  // of digests_
  std::map<std::string, std::string> digests_;
};

}  // namespace publisher
