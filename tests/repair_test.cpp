// What heals a damaged game: the check of every start with its record of proved files, and the repair.
#include <gtest/gtest.h>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "support/launcher_run.hpp"
#include "update/counter_store.hpp"

namespace {

using platform::DialogAnswer;
using Names = std::vector<std::string>;

constexpr const char* kLibrary = "Bin/Sub/nested.dll";
constexpr const char* kRecord = "Bin/MD5Update.ini";

// A game that is installed, checked once more, and so completely recorded.
struct InstalledGame : support::LauncherRun {
  explicit InstalledGame(const std::vector<support::ZipItem>& settings = {}) {
    mirror.AddPatch("Init", {{"RECURSOS/INIT/datos.ini", "datos"}});
    mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
    mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno nuevo"}, {"RECURSOS/MAPAS1/Año/ñ.map", "eñe"}});
    if (!settings.empty()) mirror.AddPatch("Init", settings);
    mirror.AddBinFile("KVN-DX8.exe", "el cliente");
    mirror.AddBinFile("Sub\\nested.dll", std::string(50'000, 'n'));
    mirror.AddBinFile("Sub\\otra.dll", std::string(3'000, 'o'));
    mirror.Publish();
    PlayOnce();
    for (const char* file : {"Bin/KVN-DX8.exe", kLibrary, "Bin/Sub/otra.dll"}) SetTime(file, 0);
    PlayOnce();
  }

  void PlayOnce() {
    mirror.server.Forget();
    Start();
    Play();
    UntilEnded();
  }
  void Repair() {
    machine.dialogs.answers = {DialogAnswer::Yes};
    Launched().MainWindow().cmdReiniciarUpdates.Click();
  }

  // One byte differs, the size does not.
  void Flip(const std::string& file, int day = 0) {
    std::string bytes = Get(file);
    bytes[bytes.size() / 2] ^= 1;
    Put(file, bytes);
    SetTime(file, day);
  }
};

const Names kNothingNew = {"OldAct/Update.ini", "NewAct2/Info.kvn"};
const Names kLibraryAgain = {"OldAct/Update.ini", "NewAct2/Info.kvn", "NewAct2/Bin/Sub/nested.dll.kvn"};

TEST(DigestRecord, AFileOfAnotherSizeOrTimeIsProvedAgainAndHealed) {
  InstalledGame run;
  EXPECT_EQ(run.mirror.Asked(), kNothingNew);
  const std::string record = run.Get(kRecord), good = run.Get(kLibrary);
  EXPECT_NE(record.find(" 50000 "), std::string::npos) << record;
  const struct {
    const char* what;
    std::function<void()> damage;
  } cases[] = {
      {"flipped, later", [&] { run.Flip(kLibrary, 1); }},
      {"cut, time kept", [&] { run.Put(kLibrary, good.substr(1)), run.SetTime(kLibrary, 0); }},
      {"deleted", [&] { platform::RemoveFile(run.PathOf(kLibrary)); }},
  };
  for (const auto& [what, damage] : cases) {
    damage();
    run.Put(kRecord, record);
    run.PlayOnce();
    EXPECT_EQ(run.mirror.Asked(), kLibraryAgain) << what;
    EXPECT_EQ(run.GameFiles(), run.mirror.Expected()) << what;
  }
  run.PlayOnce();
  run.SetTime(kLibrary, 5);
  run.PlayOnce();
  EXPECT_EQ(run.mirror.Asked(), kNothingNew) << "a good file of another time needs no download";
}

// The damage keeps size and time, so that only a record that is believed could hide it.
TEST(DigestRecord, ARecordThatIsNotWhollyItsOwnIsIgnored) {
  InstalledGame run;
  const std::string record = run.Get(kRecord);
  run.Flip(kLibrary);
  run.PlayOnce();
  EXPECT_EQ(run.mirror.Asked(), kNothingNew) << "a record with equal size and time is believed";
  run.Flip(kLibrary);  // good again

  const std::size_t nested = record.find("Sub/nested.dll"), line = record.rfind('\n', nested) + 1;
  ASSERT_NE(nested, std::string::npos);
  const std::string entry = record.substr(line, record.find('\n', nested) + 1 - line);
  std::string otherDigest = record;
  otherDigest[line] = otherDigest[line] == '0' ? '1' : '0';
  const std::string cases[] = {
      "",
      " \r\n",
      std::string("\0\0\0\0", 4),
      record.substr(0, record.size() / 2),
      record.substr(0, record.rfind("; total")),
      record + "x",
      base::Replaced(record, entry, entry + entry),
      base::Replaced(record, " 50000 ", " 50001 "),
      base::Replaced(record, " 50000 ", " 99999999999999999999999 "),
      base::Replaced(record, " 50000 ", " -50000 "),
      base::Replaced(record, "; total 3", "; total 4"),
      base::Replaced(record, "Sub/nested.dll", "Sub/otro.dll"),
      otherDigest,
  };
  for (const std::string& foreign : cases) {
    run.PlayOnce();  // a healed file is recorded with its new time
    run.SetTime(kLibrary, 0);
    run.Flip(kLibrary);
    run.Put(kRecord, foreign);
    run.PlayOnce();
    EXPECT_EQ(run.mirror.Asked(), kLibraryAgain) << foreign;
    EXPECT_EQ(run.GameFiles(), run.mirror.Expected()) << foreign;
  }
  platform::RemoveFile(run.PathOf(kRecord));
  platform::MakeFolder(run.PathOf(kRecord));
  run.PlayOnce();
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  EXPECT_TRUE(run.Launched().Life().Ending()) << "a record that cannot be written stops nobody";
}

TEST(Repair, ProvesEveryByteAndFetchesEveryPatchAgain) {
  InstalledGame run;
  run.Start();
  run.Launched().MainWindow().cmdReiniciarUpdates.Click();  // answered No
  EXPECT_EQ(run.Counter("Mapas"), "2\r\n");
  EXPECT_FALSE(run.Launched().MainWindow().tmrUpdates.On());
  EXPECT_TRUE(run.Launched().MainWindow().NewsTimer.On());
  EXPECT_EQ(run.machine.dialogs.shown.back().title, "¡ATENCIÓN! Lea con cuidado.");
  EXPECT_EQ(run.machine.dialogs.shown.back().text,
            "¿Estás seguro que deseas reiniciar los Updates para intentar reparar el juego?\r\nEste proceso "
            "puede tardar varios minutos.");

  run.Flip(kLibrary);  // as no other start would notice
  run.Put("Bin/KVN-DX8.exe", "el c");
  platform::RemoveFile(run.PathOf("Bin/Sub/otra.dll"));
  run.Flip("RECURSOS/MAPAS1/1.map");
  platform::RemoveTree(run.PathOf("RECURSOS/MAPAS1/Año"));
  run.Put("Bin/Sub/ajena/foreign.dll", "x");
  run.Put("RECURSOS/INIT/WavSilenced.ini", "[INIT]\r\nWAV12=1\r\n");
  const std::string settings = run.Get("RECURSOS/INIT/ConfigVideo.cfg") + "Ajena=\xF1\n";
  run.Put("RECURSOS/INIT/ConfigVideo.cfg", settings);

  run.mirror.server.Forget();
  run.Repair();
  for (const char* category : update::kCategories) EXPECT_EQ(run.Counter(category), "0\r\n");
  EXPECT_EQ(run.Get(kRecord), " \r\n");
  EXPECT_FALSE(run.Launched().MainWindow().NewsTimer.On());
  run.UntilEnded();
  auto expected = run.mirror.Expected();
  expected["RECURSOS/INIT/WavSilenced.ini"] = "[INIT]\r\nWAV12=1\r\n";
  EXPECT_EQ(run.GameFiles(), expected);
  EXPECT_EQ(run.Get("RECURSOS/INIT/ConfigVideo.cfg"), settings);
  EXPECT_EQ(run.mirror.Asked().size(), 8u);  // the list, three patches, the index, three files
  EXPECT_EQ(run.Counter("Mapas"), "2\r\n");
  run.PlayOnce();
  EXPECT_EQ(run.mirror.Asked(), kNothingNew);
}

TEST(Repair, SettingsThatAPatchBringsArePutBack) {
  InstalledGame run({support::ZipItem{"RECURSOS/INIT/WavSilenced.ini", "[INIT]\r\nWAV7=1\r\n"}});
  run.Put("RECURSOS/INIT/WavSilenced.ini", "[INIT]\r\nWAV12=1\r\n");
  run.Start();
  run.Repair();
  run.UntilEnded();
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
}

TEST(Repair, AFailurePartWayNamesItsLineAndKeepsWhatIsWritten) {
  InstalledGame run;
  run.Start();
  platform::RemoveTree(run.PathOf("RECURSOS/INIT"));
  run.Repair();
  EXPECT_EQ(run.Get(kRecord), " \r\n");
  EXPECT_TRUE(
      run.Shown("Error: Error 76 (Path not found) en el procedimiento cmdReiniciarUpdates_Click del "
                "modulo Formulario frmMain en la línea 40 reporta esto mediante el soporte WEB en "
                "http://soporte.example/"))
      << run.machine.dialogs.shown.back().text;
  EXPECT_FALSE(run.Launched().MainWindow().tmrUpdates.On());
}

}  // namespace
