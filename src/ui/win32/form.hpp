#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "controls/control.hpp"
#include "ui/win32/gdi.hpp"
#include "ui/win32/layout.hpp"
#include "ui/win32/picture_cache.hpp"
#include "ui/win32/taskbar_progress.hpp"
#include "ui/win32/theme.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {

// What all forms have in common.
struct FormShare {
  PictureCache pictures;
  TaskbarProgress taskbar;
  Theme theme;
  std::function<void()> aboutToShow;  // a form comes onto the screen
  // A form was told of it by the system.
  std::function<void()> settingsChanged;
  std::function<void()> resumed;  // the machine woke
};

// A real window that shows one window of the program: frame, scale, background, focus and the pointer's
// events. Its controls are views.
class Form {
 public:
  Form(FormShare& share, controls::Window& window);
  ~Form();
  Form(const Form&) = delete;

  HWND Handle() const { return handle_.get(); }
  controls::Window& Window() { return window_; }

  void Changed(std::string_view property);
  void Changed(const controls::Control& control, std::string_view property);
  void Centre();
  void ToForeground();
  void StartDrag();
  // What the keyboard does in the window as a whole: Esc, Tab, Enter. True when the message is done with.
  bool Translate(MSG& message);

  // For the views.
  int Scaled(int logical) const;
  int Dpi() const { return dpi_; }  // of the drawing: less than the monitor's when the window would not fit
  HFONT Font(const wchar_t* face, int points, bool underline);
  int LineHeight(HFONT font) const;
  PictureCache& Pictures() { return share_.pictures; }
  const Palette& Colours() const { return share_.theme.Colours(); }
  void CopyBackground(HDC dc, const RECT& part);  // of the form, to the surface's origin
  bool ShowsFocus() const { return showsFocus_; }
  void FocusMoved(View& view, bool here);
  void UsedPointer();
  void PointerOver(View* view, HWND over, WPARAM buttons, LPARAM position);
  void PointerLeft();
  void ShowProgress(int done, int whole, bool failed) { share_.taskbar.Show(Handle(), done, whole, failed); }
  void ThemeChanged();  // colours or size of texts are others now

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT PointerMessage(UINT message, WPARAM wParam, LPARAM lParam);

  void Create();
  void MakeViews();
  void FitScale();
  void Resize(const POINT* corner);
  void Rescale(const POINT* corner);
  void FitClient(SIZE size);
  void PaintBackground();
  void PreparePictures();
  void PaintTitle(HDC dc);
  void ForgetBackground();
  void Paint();
  void ShowNow();
  void BringOntoMonitor();
  void FocusFirst();
  void SizeChanged(WPARAM kind);
  void Activated(bool active);
  LRESULT ColourOf(HDC dc, HWND child) const;
  LRESULT SetPointer();
  void LimitSize(MINMAXINFO& limits) const;
  void SetIcons();
  View* ViewOf(HWND child) const;
  View* LabelAt(POINT point) const;
  SIZE WindowSize() const;

  FormShare& share_;
  controls::Window& window_;
  const WindowLayout& layout_;
  UniqueWindow handle_;
  int monitorDpi_ = 96;
  int dpi_ = 96;
  std::unique_ptr<Canvas> background_;
  std::map<std::tuple<std::wstring, int, bool>, UniqueFont> fonts_;
  std::vector<std::unique_ptr<View>> views_;
  UniqueBrush boxBrush_;
  UniqueIcon bigIcon_, smallIcon_;
  HWND lastFocus_ = nullptr;
  View* under_ = nullptr;      // the view that the pointer was last over; null: the bare window
  View* pressed_ = nullptr;    // the label that the left button went down on
  POINT lastPointer_{-1, -1};  // on the screen
  bool dragged_ = false;       // the press that is told was the one that moved the window
  bool showsFocus_ = false;    // the keyboard was used last
  bool moving_ = false;        // the window's state is being changed by this program
};

}  // namespace ui::win32
