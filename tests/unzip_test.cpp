// What becomes of the game folder when an archive is unpacked over it: all of it is new, or nothing is.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <thread>

#include "base/relative_name.hpp"
#include "platform/files.hpp"
#include "support/archives.hpp"
#include "support/faulty_server.hpp"
#include "support/test_services.hpp"
#include "update/patch_failure.hpp"
#include "update/patch_journal.hpp"
#include "update/smodUnzip.hpp"
#include "update/staged_patch.hpp"

namespace {

using support::MakeZip;
using support::ZipItem;

using Files = std::map<std::string, std::string>;

struct UnzipTest : testing::Test, support::TestServices {
  UnzipTest() : TestServices("juego ñ") { platform::MakeFolders(folders.Scratch("")); }

  update::Unpacked Unpack(const std::vector<ZipItem>& items, const std::string& below = "") {
    folder.Put("juego ñ/p.zip", MakeZip(items));
    const update::Unpacked unpacked = unzip.Unzip(folders.AppPath + platform::kSeparator + "p.zip",
                                                  folders.AppPath + platform::kSeparator + below);
    platform::RemoveFile(folders.AppPath + platform::kSeparator + "p.zip");
    return unpacked;
  }

  Files Game() const {
    Files files;
    for (const platform::FoundFile& found : platform::ListTree(folders.AppPath))
      files[base::WithSlashes(found.path)] = folder.Get("juego ñ/" + found.path);
    return files;
  }
  // The folder of the staging folders may stay, since others may be making theirs in it.
  bool NothingLeftBehind() const {
    platform::TryRemoveEmptyFolder(update::StagingRoot(folders));
    return platform::ListFolder(folders.Scratch("")).empty();
  }

  update::smodUnzip unzip{services};
};

TEST_F(UnzipTest, ReplacesOldFilesAndMakesFolders) {
  folder.Put("juego ñ/RECURSOS/MAPAS1/1.map", "viejo");
  folder.Put("juego ñ/RECURSOS/otro", "queda");
  const std::string large(3'000'000, 'g');
  const update::Unpacked unpacked = Unpack({{"RECURSOS/MAPAS1/1.map", "nuevo"},
                                            {"RECURSOS\\Mу́зыка\\España ñ.mid", large},
                                            {"vacía/dentro/", ""},
                                            {"vacío", ""}});
  EXPECT_TRUE(unpacked.done);
  EXPECT_EQ(unpacked.reason, "");
  EXPECT_TRUE(Game() == (Files{{"RECURSOS/MAPAS1/1.map", "nuevo"},
                               {"RECURSOS/Mу́зыка/España ñ.mid", large},
                               {"RECURSOS/otro", "queda"},
                               {"vacío", ""}}));
  EXPECT_TRUE(platform::IsFolder(folder / "juego ñ/vacía/dentro"));
  EXPECT_TRUE(NothingLeftBehind());
  EXPECT_TRUE(Unpack({{"Kelvarin.txt", "cliente"}}, "Bin" + platform::kSeparator).done);
  EXPECT_EQ(folder.Get("juego ñ/Bin/Kelvarin.txt"), "cliente");
}

TEST_F(UnzipTest, ArchivesThatArePreparedAndGivenUpAreInNobodysWay) {
  std::jthread preparing([&](const std::stop_token& stop) {
    while (!stop.stop_requested()) update::StagedPatch given(update::StagingRoot(folders), folders.AppPath);
  });
  for (int patch = 0; patch < 200; ++patch) ASSERT_EQ(Unpack({{"a", std::to_string(patch)}}).reason, "");
}

// An archive that is at fault is told from a machine that cannot take it.
TEST_F(UnzipTest, WhatFailsChangesNothingAndSaysWhy) {
  const struct {
    std::vector<ZipItem> items;
    bool archiveAtFault;
    std::string reason;
  } cases[] = {
      {{{"a", "x"}, {"n/b", "x", false, 1 << 11, 8, 0100644, 1}},
       true,
       "p.zip está dañado o no es un archivo ZIP"},
      {{{"a", "x"}, {"../b", "x"}}, true, "p.zip está dañado o no es un archivo ZIP"},
      {{{"n/a", "x"}, {"carpeta", "x"}}, false, "no se pudo reemplazar carpeta: en su lugar hay una carpeta"},
      {{{"n/a", "x"}, {"archivo/b", "x"}},
       false,
       "no se pudo reemplazar archivo: en su lugar hay un archivo"},
      {{{"n/a", "x"}, {"archivo/", ""}}, false, "no se pudo reemplazar archivo: en su lugar hay un archivo"},
  };
  folder.Put("juego ñ/archivo", "1");
  folder.Put("juego ñ/carpeta/c", "2");
  const Files before = Game();
  for (const auto& entry : cases) {
    const update::Unpacked unpacked = Unpack(entry.items);
    EXPECT_FALSE(unpacked.done);
    EXPECT_EQ(unpacked.reason, entry.reason);
    EXPECT_EQ(unpacked.ownFailure, !entry.archiveAtFault) << entry.reason;
    EXPECT_EQ(Game(), before) << entry.reason;
    EXPECT_FALSE(folder.Has("juego ñ/n")) << entry.reason;
    EXPECT_TRUE(NothingLeftBehind()) << entry.reason;
  }
  EXPECT_FALSE(unzip.Unzip(folders.AppPath + platform::kSeparator + "none.zip", folders.AppPath).done);
  EXPECT_TRUE(host.dialogs.shown.empty()) << "it is the caller's to tell";
}

TEST_F(UnzipTest, TheLaunchersOwnStateIsNoBusinessOfAnArchive) {
  for (const char* own :
       {"RECURSOS/INIT/AUMapas.ini", "recursos/init/update/Unzip/1/diario.txt", "Bin/MD5Update.ini",
        "RECURSOS\\UPDATE\\x.kvn", "bin/client.VBP", "Bin/CODIGOS/x"}) {
    EXPECT_FALSE(Unpack({{"bueno", "x"}, {own, "x"}}).done) << own;
  }
  EXPECT_EQ(Game(), Files());
  EXPECT_TRUE(Unpack({{"RECURSOS/INIT/AUdio.ini", "x"}, {"Bin/CODIGOS.txt", "x"}}).done);
}

TEST_F(UnzipTest, TheEndOfTheProgramLeavesTheGameAlone) {
  lifetime.End(0);
  const update::Unpacked unpacked = Unpack({{"a", std::string(40'000'000, 'x')}});
  EXPECT_FALSE(unpacked.done);
  EXPECT_EQ(unpacked.reason, "");
  EXPECT_EQ(Game(), Files());
  EXPECT_TRUE(NothingLeftBehind());
}

// Every state in which a kill can leave the moves, in the order in which they are made.
TEST_F(UnzipTest, WhateverMoveWasTheLastTheOldGameComesBack) {
  const std::string staging = folders.Scratch("Unzip") + platform::kSeparator + "7";
  const update::PatchMoves moves{{"n", "n/m"}, {"a", "n/m/b", "c"}};
  const std::vector<std::function<void()>> steps = {
      [&] { platform::MakeFolder(folder / "juego ñ/n"); },
      [&] { platform::MakeFolder(folder / "juego ñ/n/m"); },
      [&] { platform::RenameFile(folder / "juego ñ/a", update::OldFileOf(staging, 0)); },
      [&] { platform::RenameFile(update::NewFileOf(staging, 0), folder / "juego ñ/a"); },
      [&] { platform::RenameFile(update::NewFileOf(staging, 1), folder / "juego ñ/n/m/b"); },
      [&] { platform::RenameFile(folder / "juego ñ/c", update::OldFileOf(staging, 2)); },
      [&] { platform::RenameFile(update::NewFileOf(staging, 2), folder / "juego ñ/c"); },
      // From here on by a recovery that is killed as well, last file first.
      [&] { platform::RenameFile(folder / "juego ñ/c", update::NewFileOf(staging, 2)); },
      [&] { platform::RenameFile(update::OldFileOf(staging, 2), folder / "juego ñ/c"); },
      [&] { platform::RenameFile(folder / "juego ñ/n/m/b", update::NewFileOf(staging, 1)); },
  };
  const Files before = {{"a", "vieja a"}, {"c", "vieja c"}};
  for (std::size_t done = 0; done <= steps.size(); ++done) {
    platform::MakeFolders(staging);
    for (const auto& [name, bytes] : before) folder.Put("juego ñ/" + name, bytes);
    for (std::size_t i = 0; i < moves.files.size(); ++i)
      platform::WriteWhole(update::NewFileOf(staging, i), "nueva " + moves.files[i]);
    update::WriteJournal(staging, moves);
    for (std::size_t i = 0; i < done; ++i) steps[i]();
    EXPECT_EQ(update::RecoverInterruptedPatch(services), "");
    EXPECT_EQ(Game(), before) << "after " << done << " moves";
    EXPECT_FALSE(folder.Has("juego ñ/n")) << "after " << done << " moves";
    EXPECT_TRUE(NothingLeftBehind());
  }
}

TEST_F(UnzipTest, WhatIsAddedComesWithTheArchiveOrNotAtAll) {
  folder.Put("juego ñ/a", "vieja");
  folder.Put("juego ñ/p.zip", MakeZip({{"a", "nueva"}, {"b", "nueva"}}));
  const std::string archive = folder / "juego ñ/p.zip";
  const std::string counter = "RECURSOS/INIT/AUMapas.ini";
  const update::smodUnzip::Options options{.added = update::AddedFile{counter, "7\r\n"}};
  platform::MakeFolder(folder / "juego ñ/" + platform::NativePath(counter));
  const update::Unpacked refused = unzip.Unzip(archive, folders.AppPath, options);
  EXPECT_FALSE(refused.done);
  EXPECT_TRUE(refused.ownFailure);
  EXPECT_EQ(refused.reason, "no se pudo reemplazar " + counter + ": en su lugar hay una carpeta");
  EXPECT_EQ(folder.Get("juego ñ/a"), "vieja");
  EXPECT_FALSE(folder.Has("juego ñ/b"));
  EXPECT_TRUE(NothingLeftBehind());
  platform::TryRemoveEmptyFolder(folder / "juego ñ/" + platform::NativePath(counter));
  EXPECT_TRUE(unzip.Unzip(archive, folders.AppPath, options).done);
  EXPECT_EQ(folder.Get("juego ñ/a"), "nueva");
  EXPECT_FALSE(platform::IsFile(archive)) << "whoever is killed now never comes back to it";
  EXPECT_EQ(folder.Get("juego ñ/" + counter), "7\r\n");
}

// Its turn came before its transfer was begun, so it was fetched for itself.
TEST_F(UnzipTest, WhatNobodyFetchesAheadIsNotWaitedFor) {
  const std::string url = "http://mirror/p.zip", archive = folder / "juego ñ/p.zip";
  folder.Put("juego ñ/p.zip", MakeZip({{"a", "nueva"}}));
  web::FetchAhead ahead{*host.http, folders.Scratch("ahead")};
  const std::function<void()> ends[] = {[&] { EXPECT_EQ(ahead.Claim(url), nullptr); },
                                        [&] { ahead.Want({}, {}); }, [&] { ahead.Stop(); }};
  for (const auto& end : ends) {
    ahead.Want({{.url = url, .path = {}}}, {.files = 0});
    update::ArchivePreparation preparation(ahead.First(), folders);
    end();
    EXPECT_TRUE(unzip.Unzip(archive, folders.AppPath, {.prepared = &preparation}).done);
    EXPECT_EQ(folder.Get("juego ñ/a"), "nueva");
  }
}

TEST_F(UnzipTest, WhatIsPreparedCountsUnlessThisMachineWasAtFault) {
  const std::string zip = MakeZip({{"a", std::string(3'000'000, 'n')}}), archive = folder / "juego ñ/p.zip";
  const startup::Folders belowAFile(archive);
  const struct {
    const char* what;
    std::string prepared, there;
    const startup::Folders& into;
    bool done;
  } cases[] = {{"it is not expanded again", zip, "", folders, true},
               {"it is damaged", "no archive", zip, folders, false},
               {"it could not be expanded", zip, zip, belowAFile, true}};
  for (const auto& test : cases) {
    folder.Put("juego ñ/p.zip", test.there);
    support::FaultyServer server;
    server.On("/p.zip", support::Text(test.prepared));
    web::FetchAhead ahead{*host.http, folders.Scratch("ahead")};
    ahead.Want({{.url = server.Url("/p.zip"), .path = {}}}, {});
    update::ArchivePreparation preparation(ahead.First(), test.into);
    while (server.Count("/p.zip") == 0) std::this_thread::yield();
    EXPECT_TRUE(ahead.Claim(server.Url("/p.zip")));
    const update::Unpacked unpacked = unzip.Unzip(archive, folders.AppPath, {.prepared = &preparation});
    EXPECT_EQ(unpacked.done, test.done) << test.what << ": " << unpacked.reason;
    EXPECT_FALSE(unpacked.ownFailure) << test.what;
  }
}

TEST_F(UnzipTest, AJournalThatIsNotWholeMovesNothing) {
  const std::string staging = folders.Scratch("Unzip") + platform::kSeparator + "7";
  platform::MakeFolders(staging);
  update::WriteJournal(staging, {{"n"}, {"a", "b"}});
  const std::string name = platform::ListFolder(staging).at(0).name;
  const std::string whole = platform::ReadWhole(staging + platform::kSeparator + name, 1000);
  std::string climbing = whole;
  climbing.replace(climbing.find("archivo a"), 9, "archivo ../a");
  for (const std::string& torn : {whole.substr(0, whole.size() - 1), whole.substr(0, whole.size() / 2),
                                  std::string(), std::string(200, '\0'), whole + "x\n", climbing}) {
    folder.Put("juego ñ/a", "a");
    folder.Put("juego ñ/b", "b");
    platform::MakeFolders(staging);
    platform::WriteWhole(staging + platform::kSeparator + name, torn);
    EXPECT_EQ(update::RecoverInterruptedPatch(services), "");
    EXPECT_EQ(Game(), (Files{{"a", "a"}, {"b", "b"}})) << torn;
    EXPECT_TRUE(NothingLeftBehind());
  }
}

TEST(PatchFailure, SaysHowMuchIsMissing) {
  constexpr std::uint64_t kMega = 1024 * 1024;
  EXPECT_EQ(update::DiskFullFailure(10 * kMega, 3 * kMega).Description(), "disco lleno: faltan 7 MB");
  EXPECT_EQ(update::DiskFullFailure(10 * kMega + 1, 3 * kMega).Description(), "disco lleno: faltan 8 MB");
  EXPECT_EQ(update::DiskFullFailure(5, 3 * kMega).Description(), "disco lleno: faltan 1 MB");
}

TEST(PatchFailure, NamesTheFileAndWhoHoldsItOrWhatIsWrong) {
  const base::RuntimeError denied(base::ErrorNumber::PermissionDenied);
  EXPECT_EQ(update::TargetFailure("Bin/a.dll", denied, "Antivirus, Juego").Description(),
            "no se pudo reemplazar Bin/a.dll: lo usa Antivirus, Juego");
  EXPECT_EQ(update::TargetFailure("Bin/a.dll", denied, "").Description(),
            "no se pudo reemplazar Bin/a.dll: está en uso o falta el permiso");
}

}  // namespace
