#include "ui/FrmSysTrays.hpp"

#include <algorithm>
#include <array>

#include "base/url.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace ui {
namespace {

constexpr std::uint32_t kFlashMs = 1000;
constexpr std::size_t kTipUnits = 63;  // of UTF-16; the field's 64th holds the terminating zero

// The messages by the numbers that the system's windows use for them.
constexpr int kFirstMessage = 512;
constexpr int kLeftDoubleClick = 515;
constexpr int kRightUp = 517;
constexpr std::array<const char*, 10> kMessageNames = {
    "MOUSEMOVE", "LBUTTONDOWN",   "LBUTTONUP",   "LBUTTONDBLCLK", "RBUTTONDOWN",
    "RBUTTONUP", "RBUTTONDBLCLK", "MBUTTONDOWN", "MBUTTONUP",     "MBUTTONDBLCLK"};

// The longest beginning of UTF-8 text that fits into so many UTF-16 units, no character torn.
std::string CutToUnits(const std::string& text, std::size_t limit) {
  std::size_t units = 0, at = 0;
  while (at < text.size()) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    units += bytes == 4 ? 2 : 1;
    if (units > limit) break;
    at += bytes;
  }
  return text.substr(0, at);
}

}  // namespace

FrmSysTrays::FrmSysTrays(const startup::Services& services, Screen& screen)
    : services_(services),
      screen_(screen),
      TmrFlash(window_, "TmrFlash", services.host.events.Timers(), kFlashMs) {
  BuildMenu();
  // The shell forgets every icon when it starts over, so the icon is handed to it again and again.
  TmrFlash.Tick += [this] { Notify(TrayAction::Modify); };
  screen_.TrayMessage += [this](int number) {
    if (loaded_) DecodeMessage(number);
  };
}

void FrmSysTrays::BuildMenu() {
  const auto add = [this](const char* name, const char* caption, std::function<void()> action = {}) {
    controls::MenuEntry& entry = mPopupMenu.entries.emplace_back();
    entry.name = name;
    entry.caption = caption;
    if (action) entry.Click += std::move(action);
    return &entry;
  };
  add("mSep1", "-");
  add("mDonate", "¡Dona y consigue tus regalos!",
      [this] { OpenPage(services_.deployment.web + "/web/index.php?op=Donaciones"); });
  add("mWeb", "&Noticias (Ver en la web)",
      [this] { OpenPage(base::AsHttps(services_.deployment.web) + "/"); });
  mRestore_ = add("mRestore", "&Restaurar", [this] { Restore(); });
  add("mSep2", "-");
  add("mExit", "&Cerrar", [this] { owner_->QueryUnload(controls::UnloadMode::Code); });
}

void FrmSysTrays::Form_Load(controls::Window& owner) {
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        owner_ = &owner;
        loaded_ = true;
        TrayIcon("DEFAULT");
        line = 20;
        TmrFlash.Set(true);
        line = 30;
        Tooltip(platform::BaseNameOf(platform::ExecutablePath()));
        line = 40;
        Notify(TrayAction::Add);
      },
      [](const startup::Failure& failure) {
        return failure.Opening() + " procedimiento Form_Load Formulario FrmSysTrays línea: " + failure.Line();
      });
}

void FrmSysTrays::FSys_Unload() {
  if (!loaded_) return;
  loaded_ = false;
  TmrFlash.Set(false);
  Notify(TrayAction::Remove);
}

void FrmSysTrays::Tooltip(const std::string& text) { tip_ = CutToUnits(text, kTipUnits); }

void FrmSysTrays::Interval(std::int32_t milliseconds) {
  TmrFlash.SetInterval(static_cast<std::uint32_t>(std::max(milliseconds, 0)));
}

void FrmSysTrays::TrayIcon(const std::string& file) { SetPicture(file == "DEFAULT" ? std::string{} : file); }

void FrmSysTrays::DecodeMessage(int number) {
  const int index = number - kFirstMessage;
  const bool known = index >= 0 && index < static_cast<int>(kMessageNames.size());
  MouseMessage(known ? kMessageNames[static_cast<std::size_t>(index)]
                     : "OTHER....: " + std::to_string(number));
  if (number == kLeftDoubleClick) Restore();
  if (number == kRightUp) PopUp();
}

void FrmSysTrays::PopUp() {
  mRestore_->enabled = !OwnerOnScreen();
  screen_.PopupMenu(mPopupMenu);
}

bool FrmSysTrays::OwnerOnScreen() const {
  return owner_->Visible && owner_->State != controls::WindowState::Minimised;
}

void FrmSysTrays::Restore() {
  if (OwnerOnScreen()) return;
  owner_->State = LastState;
  owner_->Visible = true;
  screen_.BringToForeground(*owner_);
}

void FrmSysTrays::MeResize(controls::Window& owner) {
  if (owner.State == controls::WindowState::Minimised) {
    owner.Visible = false;
  } else {
    LastState = owner.State;
  }
}

void FrmSysTrays::MeQueryUnload(controls::Window& owner, bool& Cancel, controls::UnloadMode UnloadMode) {
  if (UnloadMode != controls::UnloadMode::ControlMenu) return;
  Cancel = true;
  owner.State = controls::WindowState::Minimised;
  owner.Visible = false;
}

void FrmSysTrays::mMaximize() {
  owner_->State = controls::WindowState::Maximised;
  owner_->Visible = true;
}

void FrmSysTrays::mMinimize() { owner_->State = controls::WindowState::Minimised; }

void FrmSysTrays::About() {
  services_.host.dialogs.Show("About code goes here.", platform::DialogButtons::Ok, "About");
}

void FrmSysTrays::OpenPage(const std::string& page) {
  services_.host.shell.OpenPage(page, services_.folders.AppPath + platform::NativePath("\\.."));
}

}  // namespace ui
