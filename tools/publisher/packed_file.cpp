#include "publisher/packed_file.hpp"

#include <algorithm>
#include <vector>

#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "publisher/deflater.hpp"
#include "publisher/failure.hpp"
#include "update/inflater.hpp"
#include "update/packed_file.hpp"
#include "update/packed_format.hpp"

namespace publisher {
namespace {

constexpr std::size_t kPiece = 128 * 1024;

template <class Take>
Content ReadThrough(const std::string& path, Progress& progress, Take take) {
  return Naming(path, [&] {
    platform::InputFile file(path);
    platform::Digest digest(platform::DigestKind::Md5);
    std::vector<std::byte> piece(kPiece);
    Content content;
    while (const std::size_t count = file.Read(piece)) {
      const auto bytes = std::span(piece).first(count);
      digest.Update(bytes);
      take(bytes);
      content.size += count;
      progress.Add(count);
    }
    content.digest = digest.Hex();
    return content;
  });
}

}  // namespace

Content ContentOf(const std::string& path, Progress& progress) {
  return ReadThrough(path, progress, [](std::span<const std::byte>) {});
}

Content PackFile(const std::string& source, const std::string& target, Progress& progress) {
  const std::uint64_t size = Naming(source, [&] { return platform::InputFile(source).Size(); });
  if (size == 0) throw Failure(source + ": an empty file cannot be packed");
  if (size > update::kLargestPacked) throw Failure(source + ": a file of 2 GiB or more cannot be packed");
  platform::OutputFile file = Naming(target, [&] { return platform::OutputFile(target); });
  const auto write = [&](std::span<const std::byte> bytes) { Naming(target, [&] { file.Write(bytes); }); };
  Naming(target, [&] { file.Write(update::PackedHeaderFor(static_cast<std::uint32_t>(size))); });
  Deflater deflater(Deflater::Format::Zlib);
  const Content content =
      ReadThrough(source, progress, [&](std::span<const std::byte> bytes) { deflater.Feed(bytes, write); });
  deflater.Finish(write);
  if (content.size != size) throw Failure(source + ": it changed while it was being packed");
  Naming(target, [&] { file.Commit(); });
  return content;
}

void PackText(std::string_view bytes, const std::string& target) {
  std::string packed;
  const auto append = [&](std::span<const std::byte> piece) {
    packed.append(reinterpret_cast<const char*>(piece.data()), piece.size());
  };
  append(update::PackedHeaderFor(static_cast<std::uint32_t>(bytes.size())));
  Deflater deflater(Deflater::Format::Zlib);
  deflater.Feed(std::as_bytes(std::span(bytes)), append);
  deflater.Finish(append);
  Naming(target, [&] { platform::WriteWhole(target, packed); });
}

Content ContentOfPacked(const std::string& path) {
  return Naming(path, [&] {
    const std::int32_t claimed = update::ClaimedSize(path);
    if (claimed < 1) throw Failure(path + ": its size field is below 1");
    platform::InputFile file(path);
    file.Seek(update::kPackedHeaderSize);
    platform::Digest digest(platform::DigestKind::Md5);
    update::Inflater inflater;
    Content content;
    const auto outcome = inflater.Expand(
        update::Inflater::Format::Zlib, UINT64_MAX,
        [&](std::span<std::byte> into) { return file.Read(into); },
        [&](std::span<const std::byte> bytes) {
          digest.Update(bytes);
          content.size += bytes.size();
        },
        {});
    if (outcome == update::Inflater::Outcome::Damaged) throw Failure(path + ": it is damaged or cut short");
    std::byte more;
    if (inflater.Unused() > 0 || file.Read({&more, 1}) != 0)
      throw Failure(path + ": it goes on after its end");
    if (content.size != static_cast<std::uint64_t>(claimed)) {
      throw Failure(path + ": its size field says " + std::to_string(claimed) + " bytes, but it holds " +
                    std::to_string(content.size));
    }
    content.digest = digest.Hex();
    return content;
  });
}

}  // namespace publisher
