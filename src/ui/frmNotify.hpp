#pragma once

#include <cstdint>
#include <string>

#include "controls/kinds.hpp"
#include "startup/services.hpp"
#include "ui/screen.hpp"

namespace ui {

// The news pop-up: slides up out of the lower right corner of the work area, stays, and slides down again.
// Its two labels are its two buttons.
class frmNotify {
 public:
  frmNotify(const startup::Services& services, Screen& screen);
  ~frmNotify();
  frmNotify(const frmNotify&) = delete;

  // Returns when the notice has slid up; one that is on screen slides down first. While a game fills the
  // screen the notice waits; a later one takes its place.
  void ShowMessage(const std::string& text, const std::string& title, std::int32_t number,
                   std::int32_t milliseconds);
  void Hide();  // slides the notice down

  controls::Window window{"frmNotify", "Kelvarin - Noticias"};
  controls::Label lblTitle{
      window, "lblTitle",
      "    Kelvarin      ¡Record de usuarios! 255.                   Torneo 1vs1 en 20 mins"};
  controls::Label lblNews{window, "lblNews", "06/01/2019"};
  controls::Timer Timer1;
  controls::Timer tmrWaiting;  // looks whether the screen is free again

 private:
  struct Notice {
    std::string text, title;
    std::int32_t number = 0, milliseconds = 0;
  };

  void Form_Load();
  void tmrWaiting_Timer();
  void lblNews_MouseMove();
  void lblTitle_MouseMove();
  void lblNews_Click();
  void lblTitle_Click();
  void ShowTexts();
  void StyleNews(bool hovered);
  bool Slide(double from, double to);
  void Place(double offsetTwips);

  const startup::Services& services_;
  Screen& screen_;
  bool attached_ = false;  // from the first notice on
  Notice waiting_;
  std::string text_, title_;
  std::int32_t number_ = 0;
  Area workArea_;
  double height_ = 0;   // of the window, in twips
  double offset_ = 0;   // how much of it stands above the work area's lower edge, in twips
  unsigned slide_ = 0;  // counts slides, so that one that was overtaken by another stops
};

}  // namespace ui
