#include "update/digest_record.hpp"

#include <algorithm>

#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"
#include "util/sha256.hpp"

namespace {

const std::string kSecret = "a secret", kName = "game/Bin/MD5Update.ini", kProbe = "probe";
const platform::FileStamp kFirst{1, 1}, kSecond{2, 2};

update::DigestRecord Loaded(const fuzz::GameWorld& world, const std::string& text) {
  world.folder.Put(kName, text);
  update::DigestRecord record(update::RecordFile(world.folders), kSecret);
  record.Load();
  return record;
}

// What the record's file holds once this proof came into it.
std::string SavedWith(const fuzz::GameWorld& world, update::DigestRecord record,
                      const platform::FileStamp& stamp) {
  record.Remember(kProbe, stamp, {});
  record.Save([](const std::string&) { fuzz::Require(false, "a record can be written"); });
  return world.folder.Get(kName);
}

}  // namespace

// The input is what was sealed: also what an installation of another version may have left.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(fuzz::Text(data, size));
  if (!text.ends_with('\n')) text += '\n';
  static const fuzz::GameWorld world;
  fuzz::Require(Loaded(world, text).Empty(), "nothing counts without this installation's seal");
  const std::string sealed = text + "; sello " + util::Sha256(kSecret + util::Sha256(kSecret + text)) + "\n";
  const update::DigestRecord record = Loaded(world, sealed);
  if (record.Empty() || record.Find(kProbe, kFirst)) return 0;
  const std::string once = SavedWith(world, record, kFirst);
  const auto lines = [](const std::string& of) { return std::count(of.begin(), of.end(), '\n'); };
  fuzz::Require(lines(once) <= lines(sealed) + 1, "each proof has a line of its own");
  fuzz::Require(Loaded(world, once).Find(kProbe, kFirst).has_value(), "what is written is read again");
  const std::string other = SavedWith(world, Loaded(world, once), kSecond);
  fuzz::Require(SavedWith(world, Loaded(world, other), kFirst) == once, "what is read is written in one way");
  return 0;
}
