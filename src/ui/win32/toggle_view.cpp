#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

// A radio button or check box of the system, drawn in the skin's colours. The data decides whether it is on.
template <class Kind>
class ToggleView : public View {
 public:
  ToggleView(Form& form, Kind& kind, const LayoutRow& row, DWORD style)
      : View(form, kind, row), kind_(kind), radio_((style & BS_TYPEMASK) == BS_RADIOBUTTON) {
    Create(L"BUTTON", platform::Wide(kind.Caption.Get()), style | WS_TABSTOP);
    ShowValue();
  }

  void Changed(std::string_view property) override {
    if (property.empty()) SetText(kind_.Caption);
    if (property == "Value") ShowValue();
    View::Changed(property);
  }

  void Command(int notification) override {
    if (notification == BN_CLICKED) Press();
  }

  bool Press() override {
    if constexpr (std::is_same_v<Kind, controls::OptionButton>) {
      if (kind_.Value) return true;
      for (controls::Control* other : kind_.Parent().Controls()) {
        auto* option = dynamic_cast<controls::OptionButton*>(other);
        if (option && option != &kind_) option->Value = false;
      }
      kind_.Value = true;
    } else {
      kind_.Value = !kind_.Value;
    }
    kind_.Click();
    return true;
  }

  bool TakesPointer() const override { return true; }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    switch (message) {
      case WM_PAINT:
        Paint();
        return 0;
      case WM_MOUSEMOVE:
        form_.PointerOver(this, Handle(), wParam, lParam);
        break;
      case WM_MOUSELEAVE:
        form_.PointerLeft();
        break;
      case WM_LBUTTONDOWN:
        form_.UsedPointer();
        break;
    }
    const LRESULT result = View::Message(message, wParam, lParam);
    // The class draws these at once in its own way.
    if (message == BM_SETSTATE || message == BM_SETCHECK || message == WM_ENABLE) Invalidate();
    return result;
  }

 private:
  void ShowValue() {
    SendMessageW(Handle(), BM_SETCHECK, kind_.Value ? BST_CHECKED : BST_UNCHECKED, 0);
    Invalidate();
  }

  void Paint() {
    const BufferedPaint paint(Handle());
    PaintBackground(paint.Dc());
    RECT text = paint.Client();
    const int size = form_.Scaled(14);
    const RECT mark{form_.Scaled(2), (text.bottom - size) / 2, form_.Scaled(2) + size,
                    (text.bottom + size) / 2};
    if (radio_) {
      skin::DrawRadio(paint.Dc(), form_.Colours(), mark, kind_.Value);
    } else {
      skin::DrawTick(paint.Dc(), form_.Colours(), mark, form_.Scaled(1), kind_.Value);
    }
    text.left = mark.right + form_.Scaled(7);
    const COLORREF colour = TextColour();
    skin::DrawLabel(paint.Dc(), text, Font(), colour, Align::Left, Lines::Single,
                    platform::Wide(kind_.Caption.Get()));
    if (Focused() && form_.ShowsFocus())
      Outline(paint.Dc(), paint.Client(), form_.Scaled(1), form_.Colours().focus);
  }

  Kind& kind_;
  bool radio_;
};

}  // namespace

std::unique_ptr<View> MakeOption(Form& form, controls::OptionButton& option, const LayoutRow& row) {
  return std::make_unique<ToggleView<controls::OptionButton>>(form, option, row, BS_RADIOBUTTON);
}

std::unique_ptr<View> MakeCheck(Form& form, controls::CheckBox& check, const LayoutRow& row) {
  return std::make_unique<ToggleView<controls::CheckBox>>(form, check, row, BS_CHECKBOX | WS_GROUP);
}

}  // namespace ui::win32
