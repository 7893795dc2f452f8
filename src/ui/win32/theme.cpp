#include "ui/win32/theme.hpp"

#include <algorithm>

#include "ui/win32/system_library.hpp"

namespace ui::win32 {
namespace {

constexpr Palette kSkin = {
    .plain = false,
    .panel = RGB(0x0A, 0x10, 0x26),
    .box = RGB(0x06, 0x0B, 0x1C),
    .boxText = RGB(0xF2, 0xE6, 0xC4),
    .border = RGB(0x8D, 0x6F, 0x38),
    .caption = RGB(0xF3, 0xD6, 0x90),
    .chosen = RGB(0x24, 0x36, 0x6C),
    .chosenText = RGB(0xFF, 0xD7, 0x78),
    .focus = RGB(0xFF, 0xD7, 0x78),
    .dimmed = RGB(0x7C, 0x84, 0x9C),
    .groove = RGB(0x02, 0x04, 0x0C),
    .done = RGB(0xD8, 0xA4, 0x44),
    .failed = RGB(0xC8, 0x32, 0x28),
};

Palette SystemColours() {
  const COLORREF text = GetSysColor(COLOR_WINDOWTEXT), ground = GetSysColor(COLOR_WINDOW);
  const COLORREF chosen = GetSysColor(COLOR_HIGHLIGHT);
  return {
      .plain = true,
      .panel = ground,
      .box = ground,
      .boxText = text,
      .border = text,
      .caption = text,
      .chosen = chosen,
      .chosenText = GetSysColor(COLOR_HIGHLIGHTTEXT),
      .focus = chosen,
      .dimmed = GetSysColor(COLOR_GRAYTEXT),
      .groove = ground,
      .done = chosen,
      .failed = text,
  };
}

bool SystemWantsContrast() {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof contrast;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON);
}

int SystemTextPercent() {
  DWORD percent = 100, size = sizeof percent;
  if (RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Accessibility", L"TextScaleFactor",
                   RRF_RT_REG_DWORD, nullptr, &percent, &size) != ERROR_SUCCESS) {
    return 100;
  }
  return static_cast<int>(std::clamp<DWORD>(percent, 100, 225));
}

// Attributes of windows that the headers do not know yet.
constexpr DWORD kDark = 20, kDarkBefore2004 = 19, kCaptionColour = 35, kTextColour = 36;
constexpr COLORREF kDefaultColour = 0xFFFFFFFF;

}  // namespace

bool Theme::Refresh() {
  const Palette before = palette_;
  const int percentBefore = textPercent_;
  const bool contrast = wantsContrast ? wantsContrast() : SystemWantsContrast();
  palette_ = contrast ? SystemColours() : kSkin;
  textPercent_ = SystemTextPercent();
  return percentBefore != textPercent_ || !(before == palette_);
}

void FitTitleBar(HWND window, const Palette& palette) {
  using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD);
  static const auto set = SystemFunction<SetAttribute>(L"dwmapi.dll", "DwmSetWindowAttribute");
  if (!set) return;
  const BOOL dark = !palette.plain;
  if (FAILED(set(window, kDark, &dark, sizeof dark))) set(window, kDarkBefore2004, &dark, sizeof dark);
  const COLORREF ground = palette.plain ? kDefaultColour : palette.panel;
  const COLORREF text = palette.plain ? kDefaultColour : palette.caption;
  set(window, kCaptionColour, &ground, sizeof ground);
  set(window, kTextColour, &text, sizeof text);
}

}  // namespace ui::win32
