#include <gtest/gtest.h>

#include <set>

#include "platform/files.hpp"
#include "support/recording_screen.hpp"
#include "support/test_services.hpp"
#include "ui/frmOpciones.hpp"

namespace {

using GC = settings::GameConfig;
using Texts = std::vector<std::string>;

constexpr const char* kFile = "RECURSOS/INIT/ConfigVideo.cfg";
constexpr const char* kStems[] = {"cerrar", "teclas",   "donar", "manual",  "mapa", "reglamento",
                                  "web",    "mensajes", "check", "default", "mas",  "menos"};

// A list of a real window may report each selection, be it the player's or not.
struct EagerScreen : support::RecordingScreen {
  ui::Area Bounds(const controls::Window& window) override {
    return window.Name() == "frmMain" ? ui::Area{100, 50, 1000, 610} : ui::Area{0, 0, 860, 600};
  }
  void Changed(const controls::Window& window, const controls::Control& control, std::string_view property,
               const std::string& value) override {
    RecordingScreen::Changed(window, control, property, value);
    if (!eager || property != "ListIndex") return;
    static_cast<controls::ComboBox*>(window.Find(control.Name()))->Change();
  }
  using RecordingScreen::Changed;
  bool eager = false;
};

struct OptionsWindowTest : testing::Test, support::TestServices {
  OptionsWindowTest() {
    folder.Put(kFile, "[INIT]\r\nVERSION=1.0.03\r\nFPS=1000\r\nMaxVideoMemory=52428800\r\nVIDEO_MODE=2\r\n");
    folder.Put("RECURSOS/INIT/WavSilenced.ini", "[INIT]\r\nWAV1=1\r\n");
    for (const char* stem : kStems) {
      for (const char* state : {"_n", "_a", "_c"}) {
        folder.Put(std::string("RECURSOS/GRAFICOS/Opciones/") + stem + state + ".jpg", "x");
      }
    }
    deployment.web = "http://web.example";
    deployment.social = "http://social.example";
    gameIni.LoadGameConfig();
    sounds.Load();
    frmMain.Visible = true;
  }

  void Show() { form.Show(frmMain); }
  template <class Kind = controls::Control>
  Kind& Get(const std::string& name) {
    return dynamic_cast<Kind&>(*form.Window.Find(name));
  }
  void Click(const std::string& name) { Get(name).Click(); }
  void Choose(controls::ComboBox& list, int index) {
    list.Select(index);
    list.Change();
  }
  void Type(const std::string& text) {
    form.Window.cmbWavsList.Text = text;
    form.Window.cmbWavsList.KeyUp();
  }
  std::string Stored(const std::string& key, const char* file = "ConfigVideo.cfg") {
    return host.profiles->GetVar(folders.InitDir + file, "INIT", key);
  }
  std::string PictureOf(const std::string& name) {
    return platform::BaseNameOf(Get<controls::ImageControl>(name).Picture);
  }
  std::string CaptionOf(const std::string& name) { return Get<controls::Label>(name).Caption; }

  EagerScreen screen;
  settings::modGameIni gameIni{*host.profiles, folders, recorder};
  settings::SoundTable sounds{*host.profiles, folders};
  controls::Window frmMain{"frmMain", "Launcher - Kelvarin"};
  ui::SettingsServices with{services, screen, gameIni, sounds};
  ui::frmOpciones form{with};
};

TEST_F(OptionsWindowTest, OpensFilledCentredAndOnce) {
  const std::string before = folder.Get(kFile);
  screen.eager = true;
  Show();
  EXPECT_EQ(folder.Get(kFile), before) << "loading writes nothing";
  EXPECT_EQ(form.Window.Caption.Get(), "Opciones - Kelvarin");
  EXPECT_EQ(form.Window.cmbFPS.Entries(), (Texts{"1000", "500", "250", "150", "100", "50", "15"}));
  EXPECT_EQ(form.Window.cmbMemory.Entries(), (Texts{"1048576000", "524288000", "419430400", "314572800",
                                                    "209715200", "157286400", "104857600", "52428800"}));
  EXPECT_EQ(form.Window.cmbVideo_Mode.Entries(), (Texts{"Sofware", "Hardware", "Mixed"}));
  EXPECT_EQ(form.Window.cmbWavsList.Entries().size(), 305u);
  EXPECT_EQ(
      form.Window.cmbFPS.Text.Get() + form.Window.cmbMemory.Text.Get() + form.Window.cmbVideo_Mode.Text.Get(),
      "100052428800Mixed");
  EXPECT_EQ(CaptionOf("lblMemory"), "50 MB");
  EXPECT_EQ(form.Window.txtCantMensajes.Text.Get(), "9");
  EXPECT_EQ(PictureOf("chkSilenciarWav"), "check_c") << "sound 1 is muted";
  Show();
  EXPECT_EQ(screen.Matching("Attach"), Texts{"Attach frmOpciones"});
  EXPECT_EQ(screen.Matching("MoveTo"), Texts{"MoveTo frmOpciones 120,30"});
  EXPECT_EQ(screen.Count("Foreground frmOpciones"), 2);
}

TEST_F(OptionsWindowTest, EveryCheckTogglesItsKeyAndItsPictureAndTellsWhatItMeans) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"chkCarteles", "(chkCarteles)", "IntervalMessages"},
      {"chkCast", "(chkCast)", "Effect_Cast_Spells"},
      {"chkClick", "(chkClick)", "Effect_Clic_Spells"},
      {"chkFiltro", "(chkFiltro)", "Effect_Filter"},
      {"chkMiniMap", "(chkMiniMap)", "MiniMapa"},
      {"chkSound", "(chkSound)", "Sound_Activated"},
      {"chkMusic", "(chkMusic)", "Music_Activated"},
      {"chkSound3DEffects", "(chkSound3DEffects)", "Sound3D_Activated"},
      {"chkAmbientSounds", "(chkAmbientSounds)", "AmbientSounds"},
      {"chkNormaliceSounds", "(chkNormaliceSounds)", "NormaliceSounds"},
      {"chkInvertSound", "(chkInvertSound)", "InvertSounds"},
      {"chkChangeResolution", "lblPantallaCompleta", "FullScreenResolution"},
      {"chkEffect_Time", "lblTimeEffect", "Effect_Time"},
      {"chkDieEffect", "lblDieEffect", "Effect_Die"},
      {"chkArrowEffect", "lblArrowEffect", "Effect_Arrows"},
      {"chkTextEffect", "lblTextEffect", "Effect_Text"},
  };
  std::set<std::string> texts;
  std::string key, whileShown;
  host.dialogs.onShow = [&](const support::ShownDialog& dialog) {
    texts.insert(dialog.text);
    whileShown = Stored(key);
  };
  Show();
  for (const auto& [control, caption, stored] : cases) {
    key = stored;
    for (const char* clicked : {control, caption}) {
      const bool expected = Stored(key) != "1";
      whileShown.clear();
      Click(clicked);
      EXPECT_EQ(Stored(key), expected ? "1" : "0") << clicked;
      EXPECT_EQ(PictureOf(control), expected ? "check_c" : "check_n") << clicked;
      EXPECT_EQ(Get<controls::ImageControl>(control).Checked, expected) << clicked;
      EXPECT_NE(whileShown, Stored(key)) << "the message comes before the save";
    }
  }
  EXPECT_EQ(texts.size(), 8u) << "two of each of the first four";
  EXPECT_EQ(host.dialogs.shown.size(), 8u);
}

TEST_F(OptionsWindowTest, VolumesStepByFiveBetweenTheirEnds) {
  Show();
  const struct {
    const char* button;
    int before;
    const char* after;
  } cases[] = {{"Plus", 98, "100"}, {"Plus", 30, "35"}, {"Less", 3, "0"}, {"Less", -32768, "0"}};
  for (const auto& [button, before, after] : cases) {
    gameIni.Set(&GC::MusicVolume, before);
    gameIni.Set(&GC::SoundVolume, static_cast<std::int16_t>(before));
    for (const std::string kind : {"Sound", "Music"}) {
      Click(std::string("img") + button + kind + "Volume");
      EXPECT_EQ(Stored(kind + "Volume"), after) << button << kind << before;
      EXPECT_EQ(CaptionOf("lbl" + kind + "Volume"), std::string(after) + "%");
    }
  }
  gameIni.Set(&GC::MusicVolume, 150);
  Click("chkMusic");
  EXPECT_EQ(Stored("MusicVolume") + CaptionOf("lblMusicVolume"), "100100%");
}

TEST_F(OptionsWindowTest, OptimisedPerformanceSwitchesEffectsOffForGood) {
  for (auto field :
       {&GC::Effect_Die, &GC::Effect_Keys, &GC::Effect_KeysUnstored, &GC::Effect_Time, &GC::Effect_Text})
    gameIni.Set(field, true);
  Click("chkOptimizedOptions");
  EXPECT_FALSE(gameIni.Config().OptimizarRendimiento) << "deaf until the window is loaded";
  Show();
  for (const char* value : {"1", "0"}) {
    Click(value[0] == '1' ? "chkOptimizedOptions" : "lblPerformance");
    EXPECT_EQ(Stored("OptimizarRendimiento"), value);
    EXPECT_EQ(Stored("FPS"), "70");
    EXPECT_EQ(form.Window.cmbFPS.ListIndex, -1);
    for (const char* key : {"Effect_Die", "Effect_Keys", "Effect_Arrows", "Effect_Time"}) {
      EXPECT_EQ(Stored(key), "0") << key;
    }
    EXPECT_FALSE(gameIni.Config().Effect_KeysUnstored);
    EXPECT_EQ(Stored("Effect_Text"), "1");
    for (const char* check : {"chkDieEffect", "chkArrowEffect", "chkEffect_Time"}) {
      EXPECT_EQ(PictureOf(check), "check_n") << check;
    }
    EXPECT_EQ(PictureOf("chkOptimizedOptions"), value[0] == '1' ? "check_c" : "check_n");
    ASSERT_EQ(host.dialogs.shown.size(), 1u);
  }
  EXPECT_TRUE(host.dialogs.shown[0].text.starts_with("Se se han desactivado la mayoría de los efectos."));
}

TEST_F(OptionsWindowTest, ResetAsksAndPutsBackItsOwnSet) {
  const settings::GameConfig& config = gameIni.Config();
  for (const auto off : {&GC::Effect_Arrows, &GC::Effect_Filter, &GC::Music_Activated, &GC::Sound_Activated,
                         &GC::Sound3D_Activated}) {
    gameIni.Set(off, false);
  }
  for (const auto on : {&GC::Effect_Die, &GC::Effect_Nicks, &GC::MiniMapa, &GC::FullScreenResolution}) {
    gameIni.Set(on, true);
  }
  gameIni.Set(&GC::SoundVolume, 35);
  Show();
  const settings::GameConfig before = config;
  Click("imgDefaultOptions");
  EXPECT_EQ(config, before) << "answered No";
  EXPECT_EQ(host.dialogs.shown[0].text,
            "¿Estás seguro que deseas reiniciar la configuración de TODO el juego?");
  EXPECT_EQ(host.dialogs.shown[0].buttons, platform::DialogButtons::RiskyYesNo);
  host.dialogs.answers = {platform::DialogAnswer::Yes};
  Click("imgDefaultOptions");
  settings::GameConfig expected = before;
  expected.Effect_Arrows = expected.Effect_Filter = expected.Music_Activated = expected.Sound_Activated =
      expected.Sound3D_Activated = true;
  expected.Effect_Die = expected.Effect_Nicks = expected.MiniMapa = false;
  expected.FPS = 100;
  EXPECT_EQ(config, expected) << "volume, memory, video mode and resolution stay";
  EXPECT_EQ(
      form.Window.cmbFPS.Text.Get() + form.Window.cmbMemory.Text.Get() + form.Window.cmbVideo_Mode.Text.Get(),
      "100209715200Sofware");
  for (const char* on : {"chkArrowEffect", "chkFiltro", "chkMusic", "chkSound", "chkSound3DEffects",
                         "chkDieEffect", "chkMiniMap"}) {
    EXPECT_EQ(PictureOf(on), "check_c") << on << ", the last two not refreshed";
  }
}

TEST_F(OptionsWindowTest, SoundsAreMutedByNumber) {
  const char* const file = "WavSilenced.ini";
  Show();
  Type("12");
  EXPECT_EQ(PictureOf("chkSilenciarWav"), "check_n");
  Click("chkSilenciarWav");
  EXPECT_EQ(Stored("WAV12", file), "1");
  EXPECT_EQ(PictureOf("chkSilenciarWav"), "check_c");
  for (const char* none : {"abc", "", "0", "-1", "306", "1e300", "13"}) {
    Type(none);
    EXPECT_EQ(PictureOf("chkSilenciarWav"), "check_n") << none;
  }
  Choose(form.Window.cmbWavsList, 11);
  EXPECT_EQ(PictureOf("chkSilenciarWav"), "check_c") << "the player came back to 12";
  Click("(chkSilenciarWav)");
  EXPECT_EQ(Stored("WAV12", file), "0");
  Type("306");
  Click("chkSilenciarWav");
  Type("306");
  EXPECT_EQ(PictureOf("chkSilenciarWav"), "check_n") << "no such sound";
  EXPECT_TRUE(host.dialogs.shown.empty());
}

TEST_F(OptionsWindowTest, LinksOpenThePagesOfTheSite) {
  Show();
  for (const char* link : {"imgManual", "imgReglamento", "imgDonar", "imgWeb", "imgMapa", "Label3"})
    Click(link);
  EXPECT_EQ(host.shell.pages,
            (Texts{"http://web.example/manual", "http://web.example/web/index.php?op=Reglamento",
                   "http://web.example/web/index.php?op=Donaciones", "http://web.example/"}));
  EXPECT_EQ(host.shell.folders, Texts(4, folder.Path() + platform::NativePath("\\..")));
}

TEST_F(OptionsWindowTest, MissingPicturesAreReportedOnceAndTheWindowWorks) {
  platform::RemoveTree(folder / "RECURSOS/GRAFICOS");
  Show();
  ASSERT_EQ(host.dialogs.shown.size(), 1u);
  EXPECT_EQ(
      host.dialogs.shown[0].text,
      "Error: Error 53 (File not found) procedimiento Form_Load Formulario frmOpciones línea: 30 por favor "
      "reportelo en nuestra página de Facebook:, http://social.example");
  EXPECT_TRUE(form.Window.Visible);
  Click("chkMiniMap");
  EXPECT_EQ(Stored("MiniMapa"), "1");
  EXPECT_TRUE(form.Window.chkMiniMap.Checked);
  form.Unload();
  Show();
  EXPECT_EQ(host.dialogs.shown.size(), 1u);
}

}  // namespace
