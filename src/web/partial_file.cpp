#include "web/partial_file.hpp"

#include <charconv>

#include "base/runtime_error.hpp"
#include "base/text.hpp"

namespace web {
namespace {

constexpr std::uint64_t kSmallest = 1 << 20, kLargest = std::uint64_t{2} << 30;  // worth going on with, bytes
constexpr std::uint64_t kLongestOrigin = 8 * 1024;
constexpr std::size_t kReadPiece = 256 * 1024;

std::optional<std::uint64_t> Number(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = error == std::errc{} && end == text.data() + text.size() && !text.empty();
  return whole ? std::optional(value) : std::nullopt;
}

bool IsStrong(const std::string& validator) {
  return validator.size() > 2 && validator.front() == '"' && validator.back() == '"' &&
         validator.find_first_of("\r\n") == std::string::npos;
}

}  // namespace

PartialFile::PartialFile(std::string path, std::string url) : path_(std::move(path)), url_(std::move(url)) {
  platform::MakeFolders(platform::FolderOf(path_));
  const auto stamp = platform::StampOf(path_);
  origin_ = ReadOrigin();
  if (stamp && origin_ && stamp->size > 0 && stamp->size < origin_->size) {
    size_ = stamp->size;
  } else {
    Forget();
  }
}

PartialFile::~PartialFile() {
  file_.reset();
  if (origin_ && size_ > 0) return;
  platform::TryRemoveFile(path_);
  platform::TryRemoveFile(OriginPath());
}

std::optional<PartialFile::Origin> PartialFile::ReadOrigin() const {
  if (!platform::IsFile(OriginPath())) return std::nullopt;
  std::string text;
  try {
    text = platform::ReadWhole(OriginPath(), kLongestOrigin);
  } catch (const base::RuntimeError&) {  // then the file begins again
    return std::nullopt;
  }
  const auto lines = base::Split(text, '\n');
  if (lines.size() != 4 || lines[0] != url_) return std::nullopt;
  const auto size = Number(lines[2]);
  Origin origin{std::string(lines[1]), size.value_or(0)};
  return size && IsStrong(origin.validator) ? std::optional(origin) : std::nullopt;
}

PartialFile::Headers PartialFile::Conditions() const {
  if (size_ == 0) return {};
  return {{"Range", "bytes=" + std::to_string(size_) + "-"}, {"If-Range", origin_->validator}};
}

bool PartialFile::IsContinuedBy(const platform::HttpHead& head) const {
  if (size_ == 0) return false;
  const std::string tag = head.Header("etag");
  if (!tag.empty() && tag != origin_->validator) return false;
  return head.Header("content-range") == "bytes " + std::to_string(size_) + "-" +
                                             std::to_string(origin_->size - 1) + "/" +
                                             std::to_string(origin_->size);
}

void PartialFile::Continue() { file_.emplace(platform::NewFile::Continuing(path_)); }

void PartialFile::Restart(const platform::HttpHead& head) {
  Forget();
  file_.emplace(path_);
  const std::string validator = head.Header("etag");
  const std::uint64_t size = head.contentLength.value_or(0);
  const bool ranges = base::Contains(base::Lower(head.Header("accept-ranges")), "bytes");
  if (!ranges || !IsStrong(validator) || size < kSmallest || size > kLargest) return;
  origin_ = {validator, size};
  platform::OutputFile origin(OriginPath());
  origin.Write(url_ + "\n" + validator + "\n" + std::to_string(size) + "\n");
  origin.Commit(platform::OutputFile::Lasting::No);
}

void PartialFile::Write(std::span<const std::byte> bytes) {
  file_->Write(bytes);
  size_ += bytes.size();
}

void PartialFile::ReadInto(platform::Digest& digest) const {
  platform::InputFile file(path_);
  std::vector<std::byte> piece(kReadPiece);
  while (const std::size_t count = file.Read(piece)) digest.Update(std::span(piece).first(count));
}

void PartialFile::MoveTo(const std::string& target) {
  file_.reset();
  platform::RenameFile(path_, target);
  origin_.reset();
  size_ = 0;
}

void PartialFile::Forget() {
  file_.reset();
  origin_.reset();
  size_ = 0;
  platform::TryRemoveFile(path_);
  platform::TryRemoveFile(OriginPath());
}

}  // namespace web
