// Which key a launcher follows, and what it believes of its own record under it.
#include <gtest/gtest.h>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/deployment.hpp"
#include "support/signed_run.hpp"

namespace {

using support::SignedRun;

constexpr const char* kNoKey =
    "En Deployment.ini falta PublicKey, la clave con la que se firmaba este juego.";
constexpr const char* kOtherKey =
    "La clave PublicKey de Deployment.ini no es la que firmaba este juego, ni la que esa anunció.";
constexpr const char* kBadKey = "La clave PublicKey de Deployment.ini no se puede usar.";
constexpr const char* kClient = "Bin/KVN-DX8.exe";

bool Installs(SignedRun& run) {
  run.machine.processes.started.clear();
  run.PlayOnce();
  return run.ClientStarted();
}

void SignWithNext(SignedRun& run, std::uint64_t version, const support::Signer& by, const std::string& next) {
  update::SignedFile file = run.Version(version);
  file.nextKey = next;
  run.mirror.Sign(by, file);
}

TEST(TrustKey, AKeyThatWasFollowedOnceDoesNotGoInSilence) {
  const struct {
    const char *what, *key, *why;
  } cases[] = {
      {"missing", "", kNoKey},
      {"blank", "\"\"", kBadKey},
      {"another one", nullptr, kOtherKey},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    SignedRun run;
    ASSERT_TRUE(Installs(run));
    const support::Signer other;
    run.Deploy({run.mirror.Url()}, test.key ? test.key : other.PublicKey());
    run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/3.map", "malo"}});
    run.mirror.Publish();
    run.mirror.Sign(other, run.Version(9));
    const auto before = run.Everything();
    EXPECT_FALSE(Installs(run));
    EXPECT_EQ(run.Everything(), before);
    EXPECT_EQ(run.Status(), test.why);
    EXPECT_EQ(run.mirror.server.Count(run.mirror.PathOf("Signed.txt")), 0u);
    EXPECT_EQ(run.mirror.server.Count(run.mirror.PathOf("OldAct/Update.ini")), 0u);
  }
}

TEST(TrustKey, AKeyThatCannotBeUsedIsNotNone) {
  for (const char* key : {"abc", "\"\"", "MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE"}) {
    SCOPED_TRACE(key);
    SignedRun run;
    run.Deploy({run.mirror.Url()}, key);
    const auto before = run.Everything();
    EXPECT_FALSE(Installs(run));
    EXPECT_EQ(run.Everything(), before);
    EXPECT_EQ(run.Status(), kBadKey);
    EXPECT_NE(run.Log().find("TRUST/PublicKey no es una clave"), std::string::npos) << "told at the start";
  }
}

TEST(TrustKey, ADeploymentFileThatCannotBeReadTakesNothing) {
  SignedRun run;
  platform::RemoveFile(run.PathOf("Deployment.ini"));
  platform::MakeFolder(run.PathOf("Deployment.ini"));
  const auto before = run.GameFiles();
  run.PlayOnce("/UPDATES");
  EXPECT_EQ(run.Launched().Life().ExitStatus(), 1);
  EXPECT_EQ(run.GameFiles(), before);
  EXPECT_NE(run.Log().find("Deployment.ini no se puede leer"), std::string::npos) << run.Log();
  EXPECT_TRUE(run.mirror.Asked().empty());
  const startup::Deployment deployment =
      startup::LoadDeployment(*run.machine.profiles, run.PathOf("Deployment.ini"));
  EXPECT_FALSE(deployment.AnyUsable()) << "the built-in ones are for where there is no file";
}

// Players get the new Deployment.ini while the operator still signs with the old key, and later he does not.
TEST(TrustKey, AKeyChangesToTheOneThatItAnnounced) {
  SignedRun run;
  const support::Signer next;
  SignWithNext(run, 8, run.signer, next.PublicKey());
  ASSERT_TRUE(Installs(run));
  run.Deploy({run.mirror.Url()}, next.PublicKey());
  EXPECT_TRUE(Installs(run)) << "still signed with the old key";
  SignWithNext(run, 9, run.signer, "");
  EXPECT_TRUE(Installs(run)) << "an announcement is not taken back by silence";
  run.mirror.Sign(next, run.Version(10));
  EXPECT_TRUE(Installs(run)) << "signed with the new key";
  run.mirror.Sign(run.signer, run.Version(11));
  EXPECT_FALSE(Installs(run)) << "the old key is no longer followed";
  EXPECT_EQ(run.Status(), SignedRun::kNoneCounts + std::string("la firma no es la del juego."));
  run.Deploy({run.mirror.Url()}, run.signer.PublicKey());
  EXPECT_FALSE(Installs(run)) << "nor can it come back";
  EXPECT_EQ(run.Status(), kOtherKey);
}

TEST(TrustKey, AnotherFolderIsNotAffected) {
  SignedRun run;
  ASSERT_TRUE(Installs(run));
  SignedRun other;
  other.Deploy({other.mirror.Url()}, "");
  EXPECT_TRUE(Installs(other));
}

// As an unsigned patch could have brought it: a client that is not the published one, and a record in which
// its size and time stand beside the digest that the index names.
struct ForgedClient : SignedRun {
  void Forge() {
    const std::string record = game + "/Bin/MD5Update.ini", line = LineOf(kClientName);
    folder.Put(game + "/" + kClient, "un cliente malo, más largo");
    SetTime(kClient, 1);
    const auto stamp = platform::StampOf(folder / (game + "/" + kClient)).value();
    const std::string forged = line.substr(0, line.find(' ')) + " " + std::to_string(stamp.size) + " " +
                               std::to_string(stamp.modified) + " " + kClientName;
    folder.Put(record, base::Replaced(folder.Get(record), line, forged));
  }
  std::string LineOf(const std::string& name) const {
    const std::string record = folder.Get(game + "/Bin/MD5Update.ini");
    const std::size_t end = record.find(name) + name.size();
    const std::size_t begin = record.rfind('\n', end - 1) + 1;
    return record.substr(begin, end - begin);
  }
  const std::string kClientName = "KVN-DX8.exe";
};

TEST(TrustKey, AForgedRecordProvesNothing) {
  for (const char* with : {"a key", "none"}) {
    SCOPED_TRACE(with);
    ForgedClient run;
    if (std::string_view(with) == "none") run.Deploy({run.mirror.Url()}, "");
    ASSERT_TRUE(Installs(run));
    ASSERT_TRUE(Installs(run));
    const std::string good = run.Get(kClient);
    run.Forge();
    ASSERT_NE(run.Get(kClient), good);
    EXPECT_TRUE(Installs(run));
    EXPECT_EQ(run.Get(kClient), good);
  }
}

// What was proved without a key may have been brought by anybody. The damage keeps size and time, so that
// only a record that is believed could hide it.
TEST(TrustKey, TheFirstRunWithAKeyProvesEverythingAnew) {
  SignedRun run;
  run.Deploy({run.mirror.Url()}, "");
  ASSERT_TRUE(Installs(run));
  run.SetTime(kClient, 0);
  ASSERT_TRUE(Installs(run));
  const std::string good = run.Get(kClient);
  std::string bad = good;
  bad.back() ^= 1;
  run.Put(kClient, bad);
  run.SetTime(kClient, 0);
  ASSERT_TRUE(Installs(run));
  ASSERT_EQ(run.Get(kClient), bad) << "the record is believed";
  run.Deploy({run.mirror.Url()});
  EXPECT_TRUE(Installs(run));
  EXPECT_EQ(run.Get(kClient), good);
}

}  // namespace
