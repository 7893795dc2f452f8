#include "update/packed_file.hpp"

#include <algorithm>
#include <span>
#include <vector>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "update/inflater.hpp"
#include "update/packed_format.hpp"

namespace update {
namespace {

constexpr std::size_t kPiece = 128 * 1024;
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

// Expands at most `claim` bytes into `take`; true when the stream ended, false when the claim was reached
// before.
template <class Take>
bool Expand(platform::InputFile& file, std::uint64_t claim, std::stop_token stop, Take take) {
  std::vector<std::byte> input(kPiece), output(kPiece);
  Inflater inflater(Inflater::Format::Zlib);
  bool holdsOutput = false;
  std::uint64_t left = claim;
  while (!stop.stop_requested()) {
    if (inflater.NeedsInput() && !holdsOutput) {
      const std::size_t got = file.Read(input);
      if (got == 0) Damaged();
      inflater.Feed(std::span(input).first(got));
    }
    // One byte of room beyond the claim shows whether the stream goes on.
    const std::size_t room = static_cast<std::size_t>(std::min<std::uint64_t>(left + 1, output.size()));
    std::size_t produced = 0;
    const auto status = inflater.Expand(std::span(output).first(room), produced);
    if (status == Inflater::Status::Corrupt) Damaged();
    const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(produced, left));
    take(std::span(output).first(wanted));
    left -= wanted;
    if (produced > wanted) return false;
    if (status == Inflater::Status::End) return true;
    holdsOutput = produced == room;
  }
  return false;
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
  const std::uint64_t packed = file.Size() - kPackedHeaderSize;
  if (static_cast<std::uint64_t>(claim) > packed * kBestRatio) Damaged();
  platform::OutputFile target(destination);
  Expand(file, static_cast<std::uint64_t>(claim), stop,
         [&](std::span<const std::byte> bytes) { target.Write(bytes); });
  if (!stop.stop_requested()) target.Commit(lasting);
}

}  // namespace update
