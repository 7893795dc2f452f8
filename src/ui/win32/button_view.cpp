#include <windows.h>
// after windows.h, which it builds on
#include <oleacc.h>

#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

using controls::MouseButton;

constexpr BYTE kDimmedStrength = 90;  // of 255

// A push button of the system that draws a picture, or a plain button where there is none.
class ButtonView : public View {
 public:
  ButtonView(Form& form, controls::Control& control, const LayoutRow& row, const std::string& text)
      : View(form, control, row) {
    const bool leadsSomewhere = control.Click.HasHandlers();
    Create(L"BUTTON", platform::Wide(text), BS_OWNERDRAW | WS_GROUP | (leadsSomewhere ? WS_TABSTOP : 0u));
  }

  void Command(int notification) override {
    if (notification == BN_CLICKED) control_.Click();
  }

  bool Press() override {
    if (!control_.Enabled) return false;
    control_.Click();
    return true;
  }

  bool TakesPointer() const override { return true; }

  std::optional<Spoken> Speak() const override {
    Spoken spoken{ROLE_SYSTEM_PUSHBUTTON, Name()};
    if (CanBePressed() && control_.Click.HasHandlers()) {
      spoken.action = L"Pulsar";
    } else {
      spoken.state = STATE_SYSTEM_UNAVAILABLE;
    }
    return spoken;
  }

  void Draw(const DRAWITEMSTRUCT& item) override {
    const RECT& box = item.rcItem;
    const Canvas canvas(item.hDC, Width(box), Height(box));
    const HBITMAP picture = Picture(Width(box), Height(box));
    if (picture) {
      DrawPicture(canvas.Dc(), box, picture);
    } else {
      DrawPlain(canvas.Dc(), box, (item.itemState & ODS_SELECTED) != 0);
    }
    if (Focused() && form_.ShowsFocus()) {
      RECT ring = box;
      if (picture) InflateRect(&ring, -form_.Scaled(2), -form_.Scaled(2));  // pictures have a margin
      Outline(canvas.Dc(), ring, form_.Scaled(2), form_.Colours().focus);
    }
    BitBlt(item.hDC, 0, 0, Width(box), Height(box), canvas.Dc(), 0, 0, SRCCOPY);
  }

 protected:
  virtual bool CanBePressed() const { return control_.Enabled; }
  virtual HBITMAP Picture(int, int) const { return nullptr; }
  virtual std::wstring Name() const { return TextOf(Handle()); }
  virtual std::wstring Words() const { return Name(); }
  virtual void DrawPlain(HDC dc, const RECT& box, bool pressed) const {
    const Palette& colours = form_.Colours();
    PaintBackground(dc);
    skin::DrawButton(dc, colours, box, form_.Scaled(1), pressed);
    skin::DrawLabel(dc, box, form_.Font(row_.face, row_.points, false),
                    CanBePressed() ? colours.boxText : colours.dimmed, Align::Center, Lines::Single, Words());
  }
  virtual HCURSOR Pointer() const { return nullptr; }

  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    switch (message) {
      case WM_MOUSEMOVE:
        form_.PointerOver(this, Handle(), wParam, lParam);
        break;
      case WM_MOUSELEAVE:
        form_.PointerLeft();
        break;
      case WM_LBUTTONDBLCLK:
      case WM_LBUTTONDOWN:  // the second press of a quick pair counts as one more press
        form_.UsedPointer();
        control_.MouseDown(MouseButton::Left);
        return Default(WM_LBUTTONDOWN, wParam, lParam);
      case WM_LBUTTONUP:
        control_.MouseUp(MouseButton::Left);
        break;
      case WM_RBUTTONDOWN:
        control_.MouseDown(MouseButton::Right);
        break;
      case WM_RBUTTONUP:
        control_.MouseUp(MouseButton::Right);
        break;
      case WM_SETCURSOR:
        if (const HCURSOR pointer = Pointer()) {
          SetCursor(pointer);
          return TRUE;
        }
        break;
    }
    return View::Message(message, wParam, lParam);
  }

 private:
  // A button that leads nowhere shows its picture as a shade of itself.
  void DrawPicture(HDC dc, const RECT& box, HBITMAP picture) const {
    PaintBackground(dc);
    const UniqueDc source(CreateCompatibleDC(dc));
    const HGDIOBJ before = SelectObject(source.get(), picture);
    const BYTE strength = control_.Enabled ? 255 : kDimmedStrength;
    GdiAlphaBlend(dc, 0, 0, Width(box), Height(box), source.get(), 0, 0, Width(box), Height(box),
                  {AC_SRC_OVER, 0, strength, 0});
    SelectObject(source.get(), before);
  }
};

class ImageView : public ButtonView {
 public:
  ImageView(Form& form, controls::ImageControl& image, const LayoutRow& row)
      : ButtonView(form, image, row, image.description), image_(image) {}

  std::optional<Spoken> Speak() const override {
    if (!image_.isCheck) return ButtonView::Speak();
    const LONG checked = image_.Checked ? STATE_SYSTEM_CHECKED : 0;
    return Spoken{ROLE_SYSTEM_CHECKBUTTON, Name(), {}, checked, image_.Checked ? L"Desmarcar" : L"Marcar"};
  }

  void Changed(std::string_view property) override {
    // Complete by the time the image has its first picture.
    if (TextOf(Handle()) != platform::Wide(image_.description)) SetText(image_.description);
    if (property == "Checked" || property == "Idle") {
      Invalidate();
      NotifyWinEvent(EVENT_OBJECT_STATECHANGE, Handle(), OBJID_CLIENT, CHILDID_SELF);
    }
    if (property == "Picture") {
      Invalidate();
      UpdateWindow(Handle());  // a press is seen even when its click starts long work
    }
    View::Changed(property);
  }

  void PreparePicture() override {
    const RECT box = Box();
    if (image_.Visible) form_.Pictures().Prepare(image_.Picture, Width(box), Height(box));
  }

 protected:
  // Of the control itself: its window was made before it had one.
  std::wstring Name() const override { return platform::Wide(image_.description); }
  std::wstring Words() const override { return image_.sign.empty() ? Name() : platform::Wide(image_.sign); }
  bool CanBePressed() const override { return image_.Enabled && !image_.Idle; }
  HBITMAP Picture(int width, int height) const override {
    if (form_.Colours().plain) return nullptr;
    return form_.Pictures().Picture(image_.Picture, width, height);
  }
  HCURSOR Pointer() const override {
    return image_.MouseIcon.Get().empty() ? nullptr : form_.Pictures().Cursor(image_.MouseIcon, form_.Dpi());
  }

 private:
  void DrawPlain(HDC dc, const RECT& box, bool pressed) const override {
    if (!image_.isCheck) return ButtonView::DrawPlain(dc, box, pressed);
    PaintBackground(dc);
    RECT mark = box;
    InflateRect(&mark, -Width(box) / 6, -Height(box) / 6);
    skin::DrawTick(dc, form_.Colours(), mark, form_.Scaled(1), image_.Checked);
  }

  controls::ImageControl& image_;
};

class PlainButtonView : public ButtonView {
 public:
  PlainButtonView(Form& form, controls::Button& button, const LayoutRow& row)
      : ButtonView(form, button, row, button.Caption), button_(button) {}

  void Changed(std::string_view property) override {
    if (property.empty()) SetText(button_.Caption);
    View::Changed(property);
  }

 private:
  controls::Button& button_;
};

}  // namespace

std::unique_ptr<View> MakeImage(Form& form, controls::ImageControl& image, const LayoutRow& row) {
  return std::make_unique<ImageView>(form, image, row);
}

std::unique_ptr<View> MakeButton(Form& form, controls::Button& button, const LayoutRow& row) {
  return std::make_unique<PlainButtonView>(form, button, row);
}

}  // namespace ui::win32
