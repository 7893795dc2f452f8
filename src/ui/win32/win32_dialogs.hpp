#pragma once

#include "platform/dialogs.hpp"
#include "ui/win32/win32_screen.hpp"

namespace ui::win32 {

// The system's message boxes, owned by the window that the player is looking at.
class Win32Dialogs : public platform::Dialogs {
 public:
  // Boxes shown before a screen is known have no owner.
  void SetScreen(const Win32Screen* screen) { screen_ = screen; }  // not owned

  platform::DialogAnswer Show(const std::string& text, platform::DialogButtons buttons,
                              const std::string& title) override;
  void CloseAll() override;
  // A program without a console has nowhere to tell it; the error log has what matters.
  void Announce(const std::string&, const std::string&) override {}

 private:
  const Win32Screen* screen_ = nullptr;
};

}  // namespace ui::win32
