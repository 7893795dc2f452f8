#include "update/packed_file.hpp"

#include <array>
#include <span>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "update/inflater.hpp"

namespace update {
namespace {

constexpr std::size_t kHeaderSize = 4;
constexpr std::uint64_t kBestRatio = 1032;  // no deflate stream expands further (zlib's technical details)

[[noreturn]] void Damaged() { throw base::RuntimeError(base::ErrorNumber::InvalidFileFormat); }

std::int32_t ReadClaim(platform::InputFile& file) {
  std::array<std::byte, kHeaderSize> header{};
  std::size_t got = 0;
  while (got < header.size()) {
    const std::size_t more = file.Read(std::span(header).subspan(got));
    if (more == 0) return 0;
    got += more;
  }
  std::uint32_t claim = 0;
  for (std::size_t i = 0; i < header.size(); ++i)
    claim |= std::to_integer<std::uint32_t>(header[i]) << (8 * i);
  return static_cast<std::int32_t>(claim);
}

}  // namespace

std::int32_t ClaimedSize(const std::string& source) {
  platform::InputFile file(source);
  return ReadClaim(file);
}

void ExpandPackedFile(const std::string& source, const std::string& destination, std::stop_token stop,
                      platform::OutputFile::Lasting lasting) {
  platform::InputFile file(source);
  const std::int32_t claim = ReadClaim(file);
  if (claim < 1) Damaged();
  const std::uint64_t packed = file.Size() - kHeaderSize;
  if (static_cast<std::uint64_t>(claim) > packed * kBestRatio) Damaged();
  platform::OutputFile target(destination);
  const Inflater::Outcome outcome = Inflater().Expand(
      Inflater::Format::Zlib, static_cast<std::uint64_t>(claim),
      [&](std::span<std::byte> into) { return file.Read(into); },
      [&](std::span<const std::byte> bytes) { target.Write(bytes); }, stop);
  if (outcome == Inflater::Outcome::Damaged) Damaged();
  if (outcome != Inflater::Outcome::Stopped) target.Commit(lasting);
}

}  // namespace update
