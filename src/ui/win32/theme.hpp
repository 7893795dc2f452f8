#pragma once

#include <windows.h>

#include <functional>

namespace ui::win32 {

// The colours of what is drawn.
struct Palette {
  bool plain;  // the player wants high contrast: no pictures, and the system's own colours
  COLORREF panel, box, boxText, border, caption, chosen, chosenText, focus, dimmed, groove, done, failed;

  bool operator==(const Palette&) const = default;

  // A colour of the skin's own, such as a text's: gives way to the system's in high contrast.
  COLORREF Own(COLORREF skin) const { return plain ? boxText : skin; }
};

// What the player asked the system for: contrast and size of texts. One for all windows.
class Theme {
 public:
  Theme() { Refresh(); }

  // Asks again; whether anything is different now.
  bool Refresh();
  const Palette& Colours() const { return palette_; }
  int TextPercent() const { return textPercent_; }  // 100 to 225

  std::function<bool()> wantsContrast;  // in place of the system's own word

 private:
  Palette palette_{};
  int textPercent_ = 100;
};

// The colours of a window's title bar, where this Windows lets a program choose: a bright one over a dark
// skin would glare.
void FitTitleBar(HWND window, const Palette& palette);

}  // namespace ui::win32
