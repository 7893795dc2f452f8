#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

#include "controls/kinds.hpp"
#include "ui/win32/accessible.hpp"
#include "ui/win32/gdi.hpp"
#include "ui/win32/layout.hpp"

namespace ui::win32 {

class Form;

// One control of a window, shown by a child window of a system class, so that keyboard and screen readers
// know what it is. How it looks is ours.
class View : public Speaker {
 public:
  View(Form& form, controls::Control& control, const LayoutRow& row);
  virtual ~View();
  View(const View&) = delete;

  controls::Control& Control() const { return control_; }
  HWND Handle() const { return handle_.get(); }
  RECT Box() const;  // of its row, in pixels of the form

  virtual void Place();  // after a change of scale
  virtual void Changed(std::string_view property);
  virtual void Command(int /*notification*/) {}         // the child tells its parent something
  virtual void Draw(const DRAWITEMSTRUCT& /*item*/) {}  // an owner-drawn child asks to be drawn
  virtual void PreparePicture() {}                      // its picture will be asked for soon
  virtual void PaintBehind(HDC) {}                      // into the background that all views share
  virtual bool IsGround() const { return false; }       // others stand on it
  std::optional<Spoken> Speak() const override { return std::nullopt; }
  virtual void PaintFocus(HDC) {}                      // onto the form, around the child
  virtual bool Press() { return false; }               // by Enter; false: it cannot be pressed
  virtual bool TakesPointer() const { return false; }  // false: the form sees the pointer over it
  virtual bool TakesText() const { return false; }     // it can be typed into

 protected:
  // Makes the child window; its messages come to Message from then on.
  void Create(const wchar_t* windowClass, const std::wstring& text, DWORD style);
  virtual LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam);
  // Sets the window's text without the painting that its class would do at once.
  void SetText(const std::string& text);
  void Invalidate() const { InvalidateRect(Handle(), nullptr, FALSE); }
  bool Focused() const { return GetFocus() == Handle(); }
  HFONT Font(bool underline = false) const;
  COLORREF TextColour() const;  // of the row, or that of a control that cannot be used
  // A memory surface of the child's size that already shows the form's background.
  void PaintBackground(HDC dc) const;

  Form& form_;
  controls::Control& control_;
  const LayoutRow& row_;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static const Speaker* SpeakerOf(HWND window);

  UniqueWindow handle_;
  WNDPROC before_ = nullptr;
};

// The view of a control by its kind; null for what is never seen (timers).
std::unique_ptr<View> MakeView(Form& form, controls::Control& control, const LayoutRow& row);

std::unique_ptr<View> MakeLabel(Form& form, controls::Label& label, const LayoutRow& row);
std::unique_ptr<View> MakeProgress(Form& form, controls::ProgressBar& bar, const LayoutRow& row);
std::unique_ptr<View> MakeImage(Form& form, controls::ImageControl& image, const LayoutRow& row);
std::unique_ptr<View> MakeButton(Form& form, controls::Button& button, const LayoutRow& row);
std::unique_ptr<View> MakeText(Form& form, controls::TextBox& text, const LayoutRow& row);
std::unique_ptr<View> MakeCombo(Form& form, controls::ComboBox& combo, const LayoutRow& row);
std::unique_ptr<View> MakeOption(Form& form, controls::OptionButton& option, const LayoutRow& row);
std::unique_ptr<View> MakeCheck(Form& form, controls::CheckBox& check, const LayoutRow& row);
std::unique_ptr<View> MakeFrame(Form& form, controls::Frame& frame, const LayoutRow& row);

}  // namespace ui::win32
