#include "update/packed_file.hpp"

#include <functional>
#include <optional>
#include <span>

#include "base/runtime_error.hpp"
#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "update/inflater.hpp"
#include "update/packed_format.hpp"

namespace update {
namespace {

constexpr std::uint64_t kBestRatio = 1032;  // no deflate stream expands further (zlib's technical details)

[[noreturn]] void Damaged() { throw base::RuntimeError(base::ErrorNumber::InvalidFileFormat); }

std::int32_t ReadClaim(platform::InputFile& file) {
  PackedHeader header{};
  std::size_t got = 0;
  while (got < header.size()) {
    const std::size_t more = file.Read(std::span(header).subspan(got));
    if (more == 0) return 0;
    got += more;
  }
  return SizeIn(header);
}

// Hands the content out in pieces; false when it was not the one asked for or `stop` was requested.
bool ExpandProving(const std::string& source, std::stop_token stop, const std::string& md5,
                   const std::function<void(std::uint64_t)>& begin,
                   const std::function<void(std::span<const std::byte>)>& take) {
  platform::InputFile file(source);
  const std::int32_t claim = ReadClaim(file);
  if (claim < 1) Damaged();
  const std::uint64_t packed = file.Size() - kPackedHeaderSize;
  if (static_cast<std::uint64_t>(claim) > packed * kBestRatio) Damaged();
  begin(static_cast<std::uint64_t>(claim));
  platform::Digest digest(platform::DigestKind::Md5);
  const Inflater::Outcome outcome = Inflater().Expand(
      Inflater::Format::Zlib, static_cast<std::uint64_t>(claim),
      [&](std::span<std::byte> into) { return file.Read(into); },
      [&](std::span<const std::byte> bytes) {
        take(bytes);
        if (!md5.empty()) digest.Update(bytes);
      },
      stop);
  if (outcome == Inflater::Outcome::Damaged) Damaged();
  return outcome != Inflater::Outcome::Stopped && (md5.empty() || digest.Hex() == md5);
}

}  // namespace

std::int32_t ClaimedSize(const std::string& source) {
  platform::InputFile file(source);
  return ReadClaim(file);
}

bool ExpandPackedFile(const std::string& source, const std::string& destination, std::stop_token stop,
                      const Expansion& how) {
  std::optional<platform::OutputFile> target;
  const auto begin = [&](std::uint64_t size) {
    platform::RequireSpace(platform::FolderOf(destination), size);
    target.emplace(destination);
  };
  const auto write = [&](std::span<const std::byte> bytes) { target->Write(bytes); };
  if (!ExpandProving(source, stop, how.md5, begin, write)) return false;
  target->Commit(how.lasting);
  return true;
}

bool PackedFileHolds(const std::string& source, const std::string& md5, std::stop_token stop) {
  try {
    return ExpandProving(
        source, stop, md5, [](std::uint64_t) {}, [](std::span<const std::byte>) {});
  } catch (const base::RuntimeError&) {
    return false;
  }
}

}  // namespace update
