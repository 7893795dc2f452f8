#include "web/file_sink.hpp"

#include <algorithm>

#include "base/runtime_error.hpp"

namespace web {
namespace {

constexpr std::uint64_t kLongestPage = 64 * 1024;  // read to its end, so that the connection can be kept

}  // namespace

void FileSink::Begin(const platform::HttpHead& head) {
  const bool success = head.status >= 200 && head.status < 300;
  page_ = !success && options_.expected.Any();
  if (page_ || (options_.successOnly && !success)) return;
  const std::uint64_t announced = head.contentLength.value_or(0);
  const std::uint64_t size = options_.expected.size.value_or(announced);
  otherContent_ = head.contentLength && announced != size;
  if (otherContent_) return;
  received_.total = size;
  platform::RequireSpace(platform::FolderOf(path_), size);
  file_.emplace(path_, options_.existing);
  if (!options_.expected.sha256.empty()) digest_.emplace(platform::DigestKind::Sha256);
}

bool FileSink::Write(std::span<const std::byte> bytes) {
  if (page_) {
    received_.bytes += bytes.size();
    return received_.bytes <= kLongestPage;
  }
  if (!file_) return false;
  if (options_.expected.size && bytes.size() > *options_.expected.size - received_.bytes) {
    otherContent_ = true;
    file_.reset();
    return false;
  }
  try {
    file_->Write(bytes);
  } catch (const base::RuntimeError& error) {
    file_.reset();  // its piece makes room again, so that what is missing can be told
    if (error.Is(base::ErrorNumber::DiskFull)) {
      platform::RequireSpace(platform::FolderOf(path_),
                             std::max<std::uint64_t>(received_.total, received_.bytes));
    }
    throw;
  }
  if (digest_) digest_->Update(bytes);
  received_.bytes += bytes.size();
  return true;
}

bool FileSink::Commit(platform::OutputFile::Lasting lasting) {
  if (!file_) return false;
  const Expected& expected = options_.expected;
  otherContent_ =
      (expected.size && *expected.size != received_.bytes) || (digest_ && digest_->Hex() != expected.sha256);
  if (otherContent_) {
    file_.reset();
    return false;
  }
  file_->Commit(lasting);
  return true;
}

}  // namespace web
