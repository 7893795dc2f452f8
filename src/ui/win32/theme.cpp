#include "ui/win32/theme.hpp"

#include <algorithm>

#include "ui/win32/system_library.hpp"

namespace ui::win32 {
namespace {

// 0xRRGGBB, as the drawings of the skin have it.
constexpr COLORREF Colour(unsigned rgb) { return RGB(rgb >> 16, rgb >> 8 & 0xFF, rgb & 0xFF); }

constexpr Palette kSkin = {
    .plain = false,
    .panel = Colour(0x0A1026),
    .box = Colour(0x060B1C),
    .boxText = Colour(0xF2E6C4),
    .border = Colour(0x8D6F38),
    .caption = Colour(0xF3D690),
    .chosen = Colour(0x24366C),
    .chosenText = Colour(0xFFD778),
    .focus = Colour(0xFFD778),
    .dimmed = Colour(0x7C849C),
    .groove = Colour(0x02040C),
    .done = Colour(0xD8A444),
    .failed = Colour(0xC83228),
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
