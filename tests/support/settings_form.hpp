#pragma once

#include "support/test_services.hpp"
#include "ui/frmOpciones.hpp"

namespace support {

// The windows of the settings over a game folder as it stands.
struct SettingsForm {
  SettingsForm(TestServices& world, ui::Screen& screen)
      : gameIni(*world.host.profiles, world.folders, world.recorder),
        sounds(*world.host.profiles, world.folders),
        with{world.services, screen, gameIni, sounds},
        form(with) {
    gameIni.LoadGameConfig();
    sounds.Load();
  }

  settings::modGameIni gameIni;
  settings::SoundTable sounds;
  ui::SettingsServices with;
  ui::frmOpciones form;
};

}  // namespace support
