#include "publisher/live_mirror.hpp"

#include "base/text.hpp"
#include "base/url.hpp"
#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "publisher/cache_rules.hpp"
#include "publisher/failure.hpp"
#include "publisher/header_rules.hpp"

namespace publisher {
namespace {

constexpr int kGood = 200, kPart = 206, kNotModified = 304, kMissing = 404, kGone = 410;
constexpr std::uint64_t kLargestIndex = 64u << 20;
constexpr const char* kNoSuchFile = "OldAct/Init/no-such-patch.zip";
constexpr const char* kServersQuery = "?op=complete";

// Launchers name the scripts from two folders above the files.
std::string AddressOf(const std::string& url, const std::string& name) {
  const std::string path = base::UrlPath(name);
  if (!name.starts_with("web/")) return url + path;
  return base::ResolvedUrl(url + "../../" + path) + (name == names::kServers ? kServersQuery : "");
}

// Writes a body to a file and takes its digest on the way.
class FileSink : public platform::HttpSink {
 public:
  explicit FileSink(const std::string& path) : path_(path) {}

  void Begin(const platform::HttpHead& begun) override {
    head = begun;
    file_.emplace(path_);
    digest_.emplace(platform::DigestKind::Sha256);
  }
  bool Write(std::span<const std::byte> bytes) override {
    file_->Write(bytes);
    digest_->Update(bytes);
    return true;
  }
  std::string Finish() {
    if (!file_) return {};
    file_->Commit(platform::OutputFile::Lasting::No);
    return digest_->Hex();
  }

  platform::HttpHead head;

 private:
  const std::string path_;
  std::optional<platform::OutputFile> file_;
  std::optional<platform::Digest> digest_;
};

std::string WordsOf(const platform::HttpOutcome& outcome) {
  struct Words {
    platform::HttpError error;
    const char* text;
  };
  static constexpr Words kWords[] = {
      {platform::HttpError::BadUrl, "the address is no good"},
      {platform::HttpError::CannotConnect, "there is no connection"},
      {platform::HttpError::Insecure, "its certificate is not accepted"},
      {platform::HttpError::RefusedRedirect, "it sends launchers on to where they do not go"},
      {platform::HttpError::Stalled, "it stops sending"},
      {platform::HttpError::CutShort, "it is cut short"},
  };
  std::string text = "it cannot be fetched";
  for (const Words& words : kWords) {
    if (words.error == outcome.error) text = words.text;
  }
  return outcome.systemText.empty() ? text : text + " (" + outcome.systemText + ")";
}

}  // namespace

struct LiveMirror::Answer {
  platform::HttpHead head;
  LocalCopy body;
  std::string digest;  // SHA-256 of the body
};

LiveMirror::LiveMirror(std::string url, std::map<std::string, std::string> elsewhere, Findings& findings)
    : url_(std::move(url)),
      elsewhere_(std::move(elsewhere)),
      findings_(findings),
      client_(platform::MakeHttpClient()) {}

std::string LiveMirror::Called(const std::string& name) const {
  const auto found = elsewhere_.find(name);
  return found != elsewhere_.end() ? found->second : AddressOf(url_, name);
}

// Failure when no whole answer came.
LiveMirror::Answer LiveMirror::Ask(const std::string& name, Headers headers) {
  const std::string path = scratch_ / std::to_string(++fetched_);
  FileSink sink(path);
  const platform::HttpOutcome outcome =
      client_->Get({.url = Called(name), .headers = std::move(headers)}, sink, {});
  if (!outcome.Complete()) throw Failure(WordsOf(outcome));
  LocalCopy body(path, LocalCopy::Kind::Fetched);
  std::string digest = sink.Finish();
  return {sink.head, std::move(body), std::move(digest)};
}

std::optional<LocalCopy> LiveMirror::Fetch(const std::string& name) {
  Answer answer = Ask(name, {});
  if (answer.head.status == kMissing || answer.head.status == kGone) return std::nullopt;
  if (answer.head.status != kGood)
    throw Failure("it is answered with status " + std::to_string(answer.head.status));
  JudgeHead(answer.head, KindOf(name), Called(name), findings_);
  const std::lock_guard lock(mutex_);
  digests_[name] = answer.digest;
  return std::move(answer.body);
}

void LiveMirror::CheckManners() {
  const auto check = [&](const std::string& name, void (LiveMirror::*how)(const std::string&)) {
    findings_.Judge(Called(name), {}, [&] { (this->*how)(name); });
  };
  check(kNoSuchFile, &LiveMirror::CheckMissing);
  for (const char* name : {names::kOnline, names::kUpdateList, names::kIndex}) {
    check(name, &LiveMirror::CheckUnchanged);
  }
  check(names::kIndex, &LiveMirror::CheckParts);
}

void LiveMirror::CheckMissing(const std::string& name) {
  const int status = Ask(name, {}).head.status;
  if (status == kMissing || status == kGone) return;
  throw Failure("there is no such file, but it is answered with status " + std::to_string(status));
}

void LiveMirror::CheckUnchanged(const std::string& name) {
  const Answer answer = Ask(name, {});
  const std::string tag = answer.head.Header("etag"), date = answer.head.Header("last-modified");
  if (answer.head.status != kGood || (tag.empty() && date.empty())) return;
  const bool byTag = !tag.empty();
  const Answer again = Ask(name, {{byTag ? "If-None-Match" : "If-Modified-Since", byTag ? tag : date}});
  if (again.head.status == kNotModified) return;
  findings_.Warning(Called(name) + ": it is sent again though it has not changed");
}

void LiveMirror::CheckParts(const std::string& name) {
  const Answer whole = Ask(name, {});
  const std::string tag = whole.head.Header("etag");
  if (whole.head.status != kGood) return;
  const auto range = std::pair<std::string, std::string>("Range", "bytes=1-2");
  const Answer part = Ask(name, {range});
  if (part.head.status != kPart) {
    return findings_.Warning(Called(name) +
                             ": no part of it can be had, so interrupted downloads start again");
  }
  const std::string wanted = platform::ReadWhole(whole.body.Path(), kLargestIndex).substr(1, 2);
  if (platform::ReadWhole(part.body.Path(), kLargestIndex) != wanted)
    throw Failure("another part of it is sent than was asked for");
  if (tag.empty()) return;
  if (Ask(name, {range, {"If-Range", "\"another\""}}).head.status == kPart) {
    throw Failure(
        "a part is sent though the file is another one (If-Range), so resumed downloads would be mixed");
  }
}

std::map<std::string, std::string> LiveMirror::Digests() const {
  const std::lock_guard lock(mutex_);
  return digests_;
}

}  // namespace publisher
