#pragma once

#include <functional>
#include <string>

#include "controls/main_window.hpp"
#include "startup/procedure.hpp"
#include "startup/services.hpp"
#include "ui/FrmSysTrays.hpp"
#include "ui/clsGraphicalButton.hpp"
#include "ui/screen.hpp"
#include "web/download_state.hpp"

namespace ui {

// How the main window behaves: set-up, hover texts, dragging, hiding in the notification area, and closing.
class frmMain {
 public:
  // What other modules do for the window; every one is set, and called on the interface thread.
  struct Actions {
    std::function<void()> LoadGameConfig;
    std::function<void()> RestoreHosts;
    std::function<void()> SwitchURL;
    std::function<void()> ComenzarActualizacion;
    std::function<bool()> ServerListEmpty;
    std::function<void()> GetServersList;
    std::function<void()> Iniciar;           // the play button was pressed while it was enabled
    std::function<void()> ReiniciarUpdates;  // the repair button was pressed
    std::function<void()> ShowOptions;
    std::function<void()> UnloadOptions;
    std::function<void()> ClearNotify;  // the news pop-up goes and is not shown again
    std::function<void()> CloseLauncher;
    std::function<bool(const std::string& Url, const std::string& LocalFilename)> DownloadFile;
  };

  // Shows nothing before Form_Load. `window` outlives this object and delivers no event afterwards.
  frmMain(const startup::Services& services, const web::Hosts& hosts, Screen& screen,
          controls::MainWindow& window, Actions actions);
  ~frmMain();
  frmMain(const frmMain&) = delete;

  // The whole set-up, host selection and server list included; returns early when the program ends meanwhile.
  // `showWindow`: false in update-only mode and for a start together with the system.
  void Form_Load(bool showWindow);

  // True when the whole file arrived; never raises.
  bool DownloadFile(const std::string& Url, const std::string& LocalFilename);

  // Whether there is a window that can be shown and closed.
  bool Loaded() const { return loaded_; }
  bool IsStaff() const { return staff_; }
  FrmSysTrays& Tray() { return FSys_; }

  clsGraphicalButton btnClose, btnCreditos, btnMinimize, btnIniciar, btnConfig, btnReiniciarUpdates,
      btnReportar;

 private:
  void WireWindow();
  void WireHoverTexts();
  void WireButtons();
  void SetUp(int& line, bool showWindow);
  std::string LoadFailure(const startup::Failure& failure) const;
  void LoadPictures();
  void CentreWhenMaximised();
  std::string OutsideFolder() const;

  void Explain(const char* text);  // what the pointer is over, in the status line
  void Form_MouseMove(controls::MouseButton button);
  void Form_KeyDown(int keyCode);
  void FinishWork();
  void Form_QueryUnload(controls::UnloadMode mode);
  void tmrShow_Timer();

  const startup::Services& services_;
  const web::Hosts& hosts_;
  Screen& screen_;
  controls::MainWindow& window_;
  Actions actions_;
  clsGraphicalButton none_;
  LastPressedHolder lastPressed_{&none_};
  FrmSysTrays FSys_;
  bool loaded_ = false;
  bool staff_ = false;
};

}  // namespace ui
