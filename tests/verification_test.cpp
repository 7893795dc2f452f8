#include <gtest/gtest.h>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "support/archives.hpp"
#include "support/test_services.hpp"
#include "update/verification.hpp"

namespace {

using update::FileProof;
using update::Verification;

struct VerificationTest : testing::Test, support::TestServices {
  VerificationTest() : TestServices("juego") { platform::MakeFolders(folders.BinDir); }

  std::string PathOf(const std::string& name) const {
    return folders.BinDir + platform::kSeparator + platform::NativePath(name);
  }
  std::unique_ptr<Verification> Start(const std::vector<std::string>& names) {
    const auto nameOf = [&names](std::size_t i) { return std::string_view(names[i]); };
    return std::make_unique<Verification>(folders.BinDir, names.size(), nameOf, record, *host.events,
                                          lifetime);
  }
  // Nothing where there is none.
  static std::string Hex(const FileProof& proof) { return proof.digest ? proof.digest->Hex() : ""; }
  void Put(const std::string& name, const std::string& bytes) { folder.Put("juego/Bin/" + name, bytes); }

  update::DigestRecord record{folders.BinDir + platform::kSeparator + "MD5Update.ini", "sello"};
};

TEST_F(VerificationTest, ProvesFilesOfEveryKindInOrder) {
  std::vector<std::string> names, digests;  // empty: none
  for (int i = 0; i < 400; ++i) {
    const std::string name = "carpeta " + std::to_string(i % 7) + "/ñ" + std::to_string(i);
    const std::string bytes(static_cast<std::size_t>(i % 50 == 49 ? 1'500'000 + i : i * i % 5000),
                            static_cast<char>(i));
    names.push_back(name);
    digests.emplace_back();
    if (i % 10 == 3) continue;  // missing
    if (i % 10 == 4) {
      platform::MakeFolders(PathOf(name));  // a folder in its place
    } else if (i % 10 == 5) {
      Put(name, bytes);
      names.back().clear();  // of no interest
    } else {
      Put(name, bytes);
      digests.back() = support::Md5Of(bytes);
    }
  }
  const auto verification = Start(names);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const FileProof proof = verification->Take(i);
    EXPECT_EQ(Hex(proof), digests[i]) << i;
    EXPECT_FALSE(proof.recorded);
    EXPECT_EQ(proof.stamp, digests[i].empty() ? std::nullopt : platform::StampOf(PathOf(names[i]))) << i;
  }
}

// Folders that come back later in the index are looked at once for all their files.
TEST_F(VerificationTest, ReadsOnlyWhatTheRecordDoesNotVouchFor) {
  const auto recorded =
      *util::Md5Digest::FromHex(std::string(32, 'a'));  // not the true one, to show who said it
  std::vector<std::string> names;
  for (int i = 0; i < 300; ++i) {
    const std::string name = (i % 5 == 0 ? "" : "ñ" + std::to_string(i % 5) + "/") + std::to_string(i);
    Put(name, "x" + name);
    names.push_back(name);
    auto stamp = *platform::StampOf(PathOf(name));
    if (i % 3 == 1) stamp.size += 1;
    if (i % 3 == 2) stamp.modified += 1;
    record.Remember(name, stamp, recorded);
  }
  record.Save([](const std::string& text) { ADD_FAILURE() << text; });
  platform::RemoveFile(PathOf(names[0]));
  names.push_back("nadie/nada");
  const auto verification = Start(names);
  EXPECT_EQ(Hex(verification->Take(0)), "");
  EXPECT_EQ(Hex(verification->Take(300)), "");
  for (std::size_t i = 1; i < 300; ++i) {
    const FileProof proof = verification->Take(i);
    EXPECT_EQ(proof.recorded, i % 3 == 0) << i;
    EXPECT_EQ(Hex(proof), i % 3 == 0 ? recorded.Hex() : support::Md5Of("x" + names[i])) << i;
    EXPECT_EQ(proof.stamp, platform::StampOf(PathOf(names[i]))) << i;
  }
}

TEST_F(VerificationTest, TheEndOfTheProgramEndsItsWaits) {
  Put("grande", std::string(50'000'000, 'x'));
  const std::vector<std::string> names(200, "grande");
  const auto verification = Start(names);
  lifetime.End(0);
  EXPECT_EQ(Hex(verification->Take(names.size() - 1)), "");
}

}  // namespace
