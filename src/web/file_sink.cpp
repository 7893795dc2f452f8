#include "web/file_sink.hpp"

#include <algorithm>

#include "base/runtime_error.hpp"

namespace web {
namespace {

constexpr int kPart = 206;
constexpr std::uint64_t kLongestPage = 64 * 1024;  // read to its end, so that the connection can be kept

}  // namespace

void FileSink::Begin(const platform::HttpHead& head) {
  const bool success = head.status >= 200 && head.status < 300;
  page_ = !success && (options_.expected.Any() || part_);
  if (page_) received_.total = head.contentLength.value_or(0);
  if (page_ || (options_.successOnly && !success)) return;
  const bool goesOn = head.status == kPart && part_;
  const std::uint64_t earlier = goesOn ? part_->Size() : 0;
  const std::uint64_t announced = earlier + head.contentLength.value_or(0);
  const std::uint64_t size = options_.expected.size.value_or(announced);
  otherContent_ = earlier > size || (head.contentLength && announced != size);
  tooLarge_ = options_.most != UINT64_MAX && (size == 0 || size > options_.most);
  if (otherContent_ || tooLarge_) return;
  received_.total = size;
  platform::RequireSpace(platform::FolderOf(path_), size - std::min(size, earlier));
  if (!options_.expected.sha256.empty()) digest_.emplace(platform::DigestKind::Sha256);
  if (part_) {
    storingPart_ = BeginPart(head);
  } else {
    file_.emplace(path_, options_.existing);
  }
}

// False when it is a part of something else than what lies here.
bool FileSink::BeginPart(const platform::HttpHead& head) {
  if (head.status != kPart) {
    part_->Restart(head);
    return true;
  }
  if (!part_->IsContinuedBy(head)) return false;
  if (digest_) part_->ReadInto(*digest_);
  part_->Continue();
  received_.earlier = part_->Size();
  received_.bytes = part_->Size();
  return true;
}

void FileSink::Drop() {
  file_.reset();
  if (storingPart_) part_->Forget();
  storingPart_ = false;
}

bool FileSink::Write(std::span<const std::byte> bytes) {
  if (page_) {
    received_.bytes += bytes.size();
    return received_.bytes <= kLongestPage;
  }
  if (!Storing()) return false;
  if (options_.expected.size && bytes.size() > *options_.expected.size - received_.bytes) {
    otherContent_ = true;
    Drop();
    return false;
  }
  try {
    file_ ? file_->Write(bytes) : part_->Write(bytes);
  } catch (const base::RuntimeError& error) {
    Drop();  // its piece makes room again, so that what is missing can be told
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
  if (!Storing()) return false;
  const Expected& expected = options_.expected;
  otherContent_ =
      (expected.size && *expected.size != received_.bytes) || (digest_ && digest_->Hex() != expected.sha256);
  if (otherContent_) {
    Drop();
    return false;
  }
  file_ ? file_->Commit(lasting) : part_->MoveTo(path_);
  storingPart_ = false;
  return true;
}

}  // namespace web
