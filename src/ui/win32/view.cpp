#include "ui/win32/view.hpp"

#include "ui/win32/form.hpp"

namespace ui::win32 {
namespace {

template <class Kind, auto Make>
std::unique_ptr<View> TryMake(Form& form, controls::Control& control, const LayoutRow& row) {
  auto* kind = dynamic_cast<Kind*>(&control);
  return kind ? Make(form, *kind, row) : nullptr;
}

using Maker = std::unique_ptr<View> (*)(Form&, controls::Control&, const LayoutRow&);
constexpr Maker kMakers[] = {
    TryMake<controls::Label, MakeLabel>,         TryMake<controls::ProgressBar, MakeProgress>,
    TryMake<controls::ImageControl, MakeImage>,  TryMake<controls::Button, MakeButton>,
    TryMake<controls::TextBox, MakeText>,        TryMake<controls::ComboBox, MakeCombo>,
    TryMake<controls::OptionButton, MakeOption>, TryMake<controls::CheckBox, MakeCheck>,
    TryMake<controls::Frame, MakeFrame>,
};

}  // namespace

std::unique_ptr<View> MakeView(Form& form, controls::Control& control, const LayoutRow& row) {
  for (const Maker make : kMakers) {
    if (auto view = make(form, control, row)) return view;
  }
  return nullptr;
}

View::View(Form& form, controls::Control& control, const LayoutRow& row)
    : form_(form), control_(control), row_(row) {}

View::~View() {
  if (!handle_) return;
  SetWindowLongPtrW(Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before_));
  SetWindowLongPtrW(Handle(), GWLP_USERDATA, 0);
}

RECT View::Box() const {
  return {form_.Scaled(row_.x), form_.Scaled(row_.y), form_.Scaled(row_.x + row_.width),
          form_.Scaled(row_.y + row_.height)};
}

void View::Create(const wchar_t* windowClass, const std::wstring& text, DWORD style) {
  const RECT box = Box();
  const DWORD shown = (control_.Visible ? WS_VISIBLE : 0u) | (control_.Enabled ? 0u : WS_DISABLED);
  handle_.reset(CreateWindowExW(0, windowClass, text.c_str(), WS_CHILD | WS_CLIPSIBLINGS | style | shown,
                                box.left, box.top, Width(box), Height(box), form_.Handle(), nullptr,
                                GetModuleHandleW(nullptr), nullptr));
  SetWindowLongPtrW(Handle(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  before_ = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&View::Procedure)));
}

LRESULT CALLBACK View::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* view = reinterpret_cast<View*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return view ? view->Message(message, wParam, lParam) : DefWindowProcW(window, message, wParam, lParam);
}

const Speaker* View::SpeakerOf(HWND window) {
  return reinterpret_cast<View*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

LRESULT View::Message(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND:
      return 1;
    case WM_SETTEXT: {  // the class would paint the new text at once
      const LRESULT result = DefWindowProcW(Handle(), message, wParam, lParam);
      Invalidate();
      return result;
    }
    case WM_GETOBJECT:
      if (const auto answer = AnswerGetObject(Handle(), wParam, lParam, &View::SpeakerOf)) return *answer;
      break;
    case WM_NCHITTEST:
      if (!TakesPointer()) return HTTRANSPARENT;
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: {
      const LRESULT result = Default(message, wParam, lParam);
      form_.FocusMoved(*this, message == WM_SETFOCUS);
      return result;
    }
  }
  return Default(message, wParam, lParam);
}

LRESULT View::Default(UINT message, WPARAM wParam, LPARAM lParam) {
  return CallWindowProcW(before_, Handle(), message, wParam, lParam);
}

void View::Place() {
  if (!handle_) return;
  const RECT box = Box();
  RECT place{};
  GetWindowRect(Handle(), &place);
  MapWindowPoints(nullptr, form_.Handle(), reinterpret_cast<POINT*>(&place), 2);
  if (!EqualRect(&place, &box)) {
    SetWindowPos(Handle(), nullptr, box.left, box.top, Width(box), Height(box),
                 SWP_NOZORDER | SWP_NOACTIVATE);
  }
  SendMessageW(Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(Font()), FALSE);
  Invalidate();
}

void View::Changed(std::string_view property) {
  if (property == "Visible") ShowWindow(Handle(), control_.Visible ? SW_SHOWNA : SW_HIDE);
  if (property == "Enabled") {
    EnableWindow(Handle(), control_.Enabled);
    Invalidate();
  }
}

void View::SetText(const std::string& text) { SetWindowTextW(Handle(), platform::Wide(text).c_str()); }

COLORREF View::TextColour() const {
  return control_.Enabled ? form_.Colours().Own(Rgb(row_.colour)) : form_.Colours().dimmed;
}

HFONT View::Font(bool underline) const { return form_.Font(row_.face, row_.points, underline); }

void View::PaintBackground(HDC dc) const {
  RECT place{};
  GetWindowRect(Handle(), &place);
  MapWindowPoints(nullptr, form_.Handle(), reinterpret_cast<POINT*>(&place), 2);
  form_.CopyBackground(dc, place);
}

}  // namespace ui::win32
