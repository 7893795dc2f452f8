#include "update/packed_file.hpp"

#include <zlib.h>

#include <algorithm>
#include <vector>

#include "fuzz/support/game_world.hpp"
#include "fuzz/support/judged_index.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/files.hpp"
#include "support/archives.hpp"
#include "update/modCompression.hpp"
#include "update/packed_format.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

constexpr std::size_t kLargestContent = 1 << 16;  // that is mutated; bytes

// What the stream behind the header holds, as far as it goes.
std::vector<std::uint8_t> ContentOf(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> content(kLargestContent);
  z_stream stream{};
  inflateInit(&stream);
  stream.next_in = const_cast<Bytef*>(data);
  stream.avail_in = static_cast<uInt>(size);
  stream.next_out = content.data();
  stream.avail_out = static_cast<uInt>(content.size());
  inflate(&stream, Z_SYNC_FLUSH);
  content.resize(stream.total_out);
  inflateEnd(&stream);
  return content;
}

}  // namespace

// Most changes are made to the content, since nearly every change to a stream breaks its checksum.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
  if (seed % 4 == 0 || size <= update::kPackedHeaderSize) return LLVMFuzzerMutate(data, size, most);
  std::vector<std::uint8_t> content =
      ContentOf(data + update::kPackedHeaderSize, size - update::kPackedHeaderSize);
  const std::size_t old = content.size(), room = std::min(old + 4096, kLargestContent);
  content.resize(room);
  content.resize(LLVMFuzzerMutate(content.data(), old, room));
  const std::string packed = support::MakePacked(fuzz::Text(content.data(), content.size()));
  if (packed.size() > most) return LLVMFuzzerMutate(data, size, most);
  std::copy(packed.begin(), packed.end(), data);
  if (seed % 4 == 1) LLVMFuzzerMutate(data, update::kPackedHeaderSize, update::kPackedHeaderSize);
  return packed.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::GameWorld world;
  world.folder.Put("packed.kvn", fuzz::Text(data, size));
  const std::string source = world.folder / "packed.kvn", target = world.folder / "game/Bin/old.dat";
  const auto before = world.Files();
  update::modCompression compression(world.services);
  if (!compression.Descomprimir(source, target)) {
    world.RequireUntouched(before);
    return 0;
  }
  world.RequireOutsideUntouched(before);
  const std::string content = world.folder.Get("game/Bin/old.dat");
  fuzz::Require(world.Files().size() == before.size(), "an expanded file leaves nothing beside it");
  const std::int32_t claimed = update::ClaimedSize(source);
  fuzz::Require(content.size() <= static_cast<std::size_t>(claimed), "no more is written than was declared");
  fuzz::Require(update::PackedFileHolds(source, support::Md5Of(content), {}),
                "what was expanded is what it holds");
  fuzz::JudgeIndex(target);
  return 0;
}
