#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "base/text.hpp"
#include "settings/modGameIni.hpp"
#include "support/test_services.hpp"

namespace {

constexpr const char* kFile = "RECURSOS/INIT/ConfigVideo.cfg";
const std::string kHead = "[INIT]\r\nVERSION=1.0.03\r\n";

using GC = settings::GameConfig;
using Values = std::map<std::string, std::string>;

// `text` with every {key} replaced by its value.
std::string Filled(std::string text, const Values& values) {
  for (const auto& [key, value] : values) text = base::Replaced(text, "{" + key + "}", value);
  return text;
}

struct GameConfigTest : testing::Test, support::TestServices {
  GameConfigTest() { folder.Put("RECURSOS/INIT/here", ""); }

  std::string Stored(const std::string& key) { return host.profiles->GetVar(folder / kFile, "INIT", key); }
  void Load(const std::string& bytes) {
    folder.Put(kFile, bytes);
    gameIni.LoadGameConfig();
  }

  settings::modGameIni gameIni{*host.profiles, folders, recorder};
};

// A file as players have them: written by the client and by hand, over years, with whatever line ends.
constexpr const char* kLived =
    "; Configuraci\xF3n de Kelvarin \x97 no tocar\r\n"
    "\r\n"
    "[OTRA]\n"
    "FPS=15\n"
    "IntervalMessages=si\n"
    "[init]\r\n"
    "MaxInterfaces=2\r\n"
    "CreditoInterfaz2={CreditoInterfaz2}\r\n"
    "CreditoInterfaz0={CreditoInterfaz0}\n"
    "CreditoInterfaz1=\r\n"
    "  Sangrada = un valor con = y ; dentro\r\n"
    "; Se\xF1or\xEDo de los Mares\n"
    "VERSION=1.0.03\r\n"
    "fps={FPS}\r\n"
    "SoundVolume={SoundVolume}\r\n"
    "MusicVolume=35\n"
    "VIDEO_MODE=2\r\n"
    "ChatType={ChatType}\r\n"
    "FreqencyLag={FreqencyLag}\r\n"
    "OptimizarRendimiento=-1\r\n"
    "\n"
    "NameSaved=\xD1"
    "and\xFA\r\n"
    "RememberPassword={RememberPassword}\r\n"
    "IntervalMessages={IntervalMessages}\r\nEffect_Arrows=0\r\nEffect_Die=1\r\nEffect_Time=0\r\n"
    "Effect_Text=1\r\nMusic_Activated=0\r\nFullScreenResolution=1\r\nSound_Activated=1\r\n"
    "Sound3D_Activated={Sound3D_Activated}\r\nAmbientSounds=0\r\nNormaliceSounds=1\r\nInvertSounds=1\r\n"
    "Effect_Filter=0\r\nEffect_Clic_Spells=1\r\nEffect_Cast_Spells=1\r\nGuild_Chat_OnScreen=1\r\n"
    "MiniMapa=0\r\nEffect_Keys=1\r\nMaxVideoMemory={MaxVideoMemory}\r\nEffect_Nicks=1\r\nCacheMap1=1\r\n"
    "CacheMap2=0\r\nCacheMap3=1\r\nInterfaceID=2\r\n"
    "Teclado=ES\r\n"
    "una l\xEDnea que no es nada\r\n"
    "[ULTIMA]\r\n"
    "clave=\x80uro";

TEST_F(GameConfigTest, RoundTripChangesOnlyTheKeysOfTheRecord) {
  const Values before = {{"CreditoInterfaz0", "Dise\xF1o: \xC1gueda"},
                         {"CreditoInterfaz2", "M\xFAsica = Jos\xE9; coro"},
                         {"FPS", "249.5 cuadros"},
                         {"SoundVolume", "250"},
                         {"ChatType", "2"},
                         {"FreqencyLag", "1"},
                         {"RememberPassword", "-1"},
                         {"IntervalMessages", "0"},
                         {"Sound3D_Activated", "no"},
                         {"MaxVideoMemory", "0"}};
  Values after = before;
  for (const auto& [key, value] : Values{{"FPS", "250"},
                                         {"SoundVolume", "100"},
                                         {"ChatType", "1"},
                                         {"FreqencyLag", "0"},
                                         {"RememberPassword", "1"},
                                         {"IntervalMessages", "1"},
                                         {"Sound3D_Activated", "0"},
                                         {"MaxVideoMemory", "209715200"}}) {
    after[key] = value;
  }
  Load(Filled(kLived, before));
  EXPECT_EQ(gameIni.Config().NameSaved, "Ñandú");
  EXPECT_EQ(gameIni.Config().ChatType, 2);
  EXPECT_TRUE(gameIni.Config().OptimizarRendimiento);
  EXPECT_EQ(folder.Get(kFile), Filled(kLived, before)) << "loading writes nothing";
  gameIni.Set(&GC::IntervalMessages, true);
  gameIni.SaveGameConfig(gameIni.Config());
  EXPECT_EQ(folder.Get(kFile), Filled(kLived, after));
  gameIni.SaveGameConfig(gameIni.Config());
  EXPECT_EQ(folder.Get(kFile), Filled(kLived, after)) << "a second save changes nothing";
  EXPECT_TRUE(host.dialogs.shown.empty());
}

TEST_F(GameConfigTest, ValuesAreReadAsNumbersAndWrittenPlain) {
  const struct {
    const char *key, *inFile, *saved;
  } cases[] = {
      {"Effect_Arrows", "0.2", "1"},
      {"FreqencyLag", "1", "0"},
      {"SoundVolume", "101", "100"},
      {"FPS", "0.5", "100"},
      {"FPS", "2.5", "2"},
      {"MaxVideoMemory", "-3", "209715200"},
      {"VIDEO_MODE", "255.4", "255"},
      {"NameSaved", "\"entre comillas\"", "entre comillas"},
  };
  for (const auto& [key, inFile, saved] : cases) {
    Load(kHead + key + "=" + inFile + "\r\n");
    gameIni.SaveGameConfig(gameIni.Config());
    EXPECT_EQ(Stored(key), saved) << key << "=" << inFile;
  }
  EXPECT_TRUE(host.dialogs.shown.empty());
}

TEST_F(GameConfigTest, WithoutFileAllFactoryValuesAreWrittenInOrder) {
  gameIni.Set(&GC::FPS, 15);
  gameIni.LoadGameConfig();
  EXPECT_EQ(gameIni.Config(), settings::GameConfig{});
  const std::string lines = base::Replaced(folder.Get(kFile), "\r\n", "\n");
  EXPECT_EQ(lines,
            "[INIT]\nIntervalMessages=0\nEffect_Arrows=1\nEffect_Die=0\nEffect_Time=0\nEffect_Text=0\n"
            "Version=1.0.03\nMusic_Activated=1\nFullScreenResolution=0\nSound_Activated=1\n"
            "Sound3D_Activated=1\nAmbientSounds=1\nNormaliceSounds=1\nInvertSounds=0\nSoundVolume=100\n"
            "MusicVolume=100\nVIDEO_MODE=0\nEffect_Filter=1\nEffect_Clic_Spells=0\nEffect_Cast_Spells=0\n"
            "Guild_Chat_OnScreen=0\nChatType=0\nFreqencyLag=0\nMiniMapa=1\nEffect_Keys=0\nFPS=100\n"
            "MaxVideoMemory=209715200\nNameSaved=\nRememberPassword=0\nEffect_Nicks=0\nCacheMap1=0\n"
            "CacheMap2=0\nCacheMap3=0\nInterfaceID=0\nMaxInterfaces=0\nCreditoInterfaz0=\n");
}

TEST_F(GameConfigTest, AnotherVersionIsReplacedByFactoryValues) {
  for (const char* version : {"1.0.02", "", "1.0.030", "v1.0.03"}) {
    Load(std::string("[INIT]\r\nVERSION=") + version +
         "\r\nRememberPassword=5\r\nFPS=15\r\nMaxInterfaces=2\r\nInterfaceID=1\r\nCreditoInterfaz0=a\r\n"
         "CreditoInterfaz2=c\r\nOptimizarRendimiento=1\r\nAjena=7\r\n");
    settings::GameConfig expected;
    expected.RememberPassword = true;
    expected.CreditoInterfaz = {"", "", "c"};
    EXPECT_EQ(gameIni.Config(), expected) << version;
    const Values stored = {{"Version", "1.0.03"},
                           {"RememberPassword", "1"},
                           {"FPS", "100"},
                           {"MaxInterfaces", "0"},
                           {"CreditoInterfaz0", ""},
                           {"CreditoInterfaz2", "c"},
                           {"OptimizarRendimiento", "1"},
                           {"Ajena", "7"}};
    for (const auto& [key, value] : stored) EXPECT_EQ(Stored(key), value) << version << " " << key;
  }
}

TEST_F(GameConfigTest, NumberOutOfRangeEndsTheReadingWithAReport) {
  const struct {
    const char *key, *inFile, *line;
  } cases[] = {{"SoundVolume", "40000", "140"}, {"ChatType", "-1", "320"}, {"InterfaceID", "1e99", "340"}};
  for (const auto& [key, inFile, line] : cases) {
    host.dialogs.shown.clear();
    const std::string bytes =
        std::string("[INIT]\r\nVERSION=0\r\nIntervalMessages=1\r\nOptimizarRendimiento=1\r\n") + key + "=" +
        inFile + "\r\n";
    folder.Put(kFile, bytes);
    settings::modGameIni fresh(*host.profiles, folders, recorder);
    fresh.LoadGameConfig();
    ASSERT_EQ(host.dialogs.shown.size(), 1u) << key;
    EXPECT_EQ(
        host.dialogs.shown[0].text,
        std::string("Error: Error 6 (Overflow) procedimiento LoadGameConfig Módulo modGameIni línea: ") +
            line);
    EXPECT_TRUE(fresh.Config().IntervalMessages) << "read before the failure";
    EXPECT_FALSE(fresh.Config().OptimizarRendimiento) << "not reached";
    EXPECT_EQ(folder.Get(kFile), bytes) << "the version was not compared";
  }
}

TEST_F(GameConfigTest, SaveAfterAStoppedLoadKeepsWhatWasNeitherReadNorSet) {
  const std::string stopped =
      "[INIT]\r\nNameSaved=\xD1"
      "and\xFA\r\nVERSION=1.0.03\r\nIntervalMessages={IntervalMessages}\r\nVIDEO_MODE={VIDEO_MODE}\r\n"
      "Effect_Filter= -1 ; s\xED\nFPS={FPS}\r\nRememberPassword=1\r\nCreditoInterfaz0=autora\r\n"
      "MaxInterfaces=3\r\nEffect_Nicks={Effect_Nicks}\r\n";
  const Values before = {
      {"IntervalMessages", "0"}, {"VIDEO_MODE", "300"}, {"FPS", "100 cuadros"}, {"Effect_Nicks", "-1"}};
  Load(Filled(stopped, before));
  ASSERT_EQ(host.dialogs.shown.size(), 1u);
  Values after = before;
  const auto saved = [&](const char* key, const char* value) {
    after[key] = value;
    gameIni.SaveGameConfig(gameIni.Config());
    const std::string text = folder.Get(kFile), kept = Filled(stopped, after);
    EXPECT_EQ(text.substr(0, kept.size()), kept);
    return text.substr(std::min(text.size(), kept.size()));
  };
  gameIni.Set(&GC::IntervalMessages, true);
  const std::string read = saved("IntervalMessages", "1");
  EXPECT_EQ(std::count(read.begin(), read.end(), '\n'), 13) << "what was read and was not in the file";
  EXPECT_EQ(read.find("Credito"), std::string::npos);
  gameIni.Set(&GC::FPS, 100);
  EXPECT_EQ(saved("FPS", "100"), read) << "chosen, though the record held it already";
  gameIni.Set(&GC::Effect_Nicks, true);
  EXPECT_EQ(saved("Effect_Nicks", "1"), read);
  gameIni.Set(&GC::VIDEO_MODE, 2);
  EXPECT_EQ(saved("VIDEO_MODE", "2"), read);
  gameIni.LoadGameConfig();
  EXPECT_EQ(host.dialogs.shown.size(), 1u) << "the number was put right";
}

TEST_F(GameConfigTest, CreditLinesThatWereNotReadStayInTheFile) {
  Load(kHead +
       "MaxInterfaces=200\r\nInterfaceID=300\r\nCreditoInterfaz0=coro\r\nCreditoInterfaz7=autora\r\n");
  EXPECT_EQ(host.dialogs.shown.size(), 1u);
  gameIni.SaveGameConfig(gameIni.Config());
  EXPECT_EQ(host.dialogs.shown.size(), 1u);
  EXPECT_EQ(Stored("CreditoInterfaz0") + Stored("CreditoInterfaz7"), "coroautora");
  EXPECT_EQ(Stored("MaxInterfaces"), "200");
}

}  // namespace
