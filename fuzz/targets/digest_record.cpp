#include "update/digest_record.hpp"

#include <sstream>

#include "base/text.hpp"
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

// Reads the lines of a record that was taken, as the standard library does.
void JudgeProofs(const std::string& text, const update::DigestRecord& record) {
  std::istringstream lines(text.substr(text.find('\n')));
  std::string digest, name;
  platform::FileStamp stamp;
  while (lines >> digest >> stamp.size >> stamp.modified && std::getline(lines.ignore(), name)) {
    if (name.ends_with('\r')) name.pop_back();
    const auto found = record.Find(name, stamp);
    fuzz::Require(found && found->Hex() == digest, "each proof counts as it stands there");
  }
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
  const std::string text(fuzz::Text(data, size));
  static const fuzz::GameWorld world;
  fuzz::Require(Loaded(world, text).Empty(), "nothing counts without this installation's seal");
  const std::string sealed = text + "; sello " + util::Sha256(kSecret + util::Sha256(kSecret + text)) + "\n";
  const update::DigestRecord record = Loaded(world, sealed);
  if (record.Empty() || base::Contains(text, kProbe)) return 0;
  JudgeProofs(text, record);
  const std::string once = SavedWith(world, record, kFirst);
  JudgeProofs(text, Loaded(world, once));
  const std::string other = SavedWith(world, Loaded(world, once), kSecond);
  fuzz::Require(SavedWith(world, Loaded(world, other), kFirst) == once, "what is read is written in one way");
  return 0;
}
