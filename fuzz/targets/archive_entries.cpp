#include <fuzzer/FuzzedDataProvider.h>

#include "base/relative_name.hpp"
#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"
#include "support/archives.hpp"
#include "update/smodUnzip.hpp"

namespace {

constexpr std::size_t kMostItems = 8, kLongestName = 40, kLargestFile = 200;

support::ZipItem ItemFrom(FuzzedDataProvider& input) {
  support::ZipItem item{input.ConsumeRandomLengthString(kLongestName)};
  item.bytes = input.ConsumeRandomLengthString(kLargestFile);
  item.stored = input.ConsumeBool();
  const auto fault = input.ConsumeIntegralInRange<std::uint8_t>(0, 15);
  const auto amount = input.ConsumeIntegral<std::uint8_t>();
  if (fault == 1) item.flags = amount;
  if (fault == 2) item.method = amount;
  if (fault == 3) item.unixMode = amount % 2 ? 0120777 : 0100755;
  if (fault == 4) item.crcError = amount;
  if (fault == 5) item.localName = input.ConsumeRandomLengthString(kLongestName);
  if (fault == 6) item.extra = input.ConsumeRandomLengthString(kLongestName);
  if (fault == 7) item.claimedSizeError = static_cast<std::int8_t>(amount);
  if (fault == 8) item.localSizeError = static_cast<std::int8_t>(amount);
  if (fault == 9) item.localFlags = amount;
  return item;
}

}  // namespace

// An archive that is whole but for what the input makes wrong, so that more than its directory is reached.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  std::vector<support::ZipItem> items;
  while (input.remaining_bytes() > 0 && items.size() < kMostItems) items.push_back(ItemFrom(input));

  fuzz::GameWorld world;
  world.folder.Put("archive.zip", support::MakeZip(items));
  const auto before = world.Files();
  update::smodUnzip unzip(world.services);
  if (!unzip.Unzip(world.folder / "archive.zip", world.folders.AppPath).done) {
    world.RequireUntouched(before);
    return 0;
  }
  world.RequireOutsideUntouched(before);
  for (const auto& item : items) {
    const bool plain = item.flags == support::ZipItem{}.flags && item.extra.empty();
    if (!plain || item.name.find_last_of("/\\") + 1 == item.name.size()) continue;
    fuzz::Require(world.folder.Get("game/" + base::WithSlashes(item.name)) == item.bytes,
                  "a file is what was packed");
  }
  std::size_t declared = 0, written = 0;
  for (const auto& item : items) declared += item.bytes.size();
  for (const auto& [name, bytes] : world.Files()) {
    if (!before.contains(name) || before.at(name) != bytes) written += bytes.size();
  }
  fuzz::Require(written <= declared, "no more is written than was declared");
  return 0;
}
