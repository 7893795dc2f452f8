#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

class TextView : public View {
 public:
  TextView(Form& form, controls::TextBox& text, const LayoutRow& row) : View(form, text, row), text_(text) {
    const DWORD align = row.align == Align::Center  ? ES_CENTER
                        : row.align == Align::Right ? ES_RIGHT
                                                    : ES_LEFT;
    Create(L"EDIT", platform::Wide(text.Text.Get()), ES_AUTOHSCROLL | WS_GROUP | WS_TABSTOP | align);
  }

  // The box is drawn by the form; the child holds one line in its middle.
  void Place() override {
    View::Place();
    const RECT box = Box();
    const int height = form_.LineHeight(Font());
    const int side = form_.Scaled(5);
    SetWindowPos(Handle(), nullptr, box.left + side, box.top + (Height(box) - height) / 2,
                 Width(box) - 2 * side, height, SWP_NOZORDER | SWP_NOACTIVATE);
  }

  void PaintBehind(HDC dc) override { skin::DrawBox(dc, form_.Colours(), Box(), form_.Scaled(1)); }
  void PaintFocus(HDC dc) override {
    if (Focused()) Outline(dc, Box(), form_.Scaled(2), form_.Colours().focus);
  }

  void Changed(std::string_view property) override {
    if (property == "Text" && TextOf(Handle()) != platform::Wide(text_.Text.Get())) SetText(text_.Text);
    View::Changed(property);
  }

  void Command(int notification) override {
    if (notification == EN_CHANGE) text_.Text = platform::Narrow(TextOf(Handle()));
    if (notification == EN_KILLFOCUS) text_.LostFocus();
  }

  bool TakesPointer() const override { return true; }
  bool TakesText() const override { return true; }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == WM_SETTEXT || message == WM_ERASEBKGND) return Default(message, wParam, lParam);
    if (message == WM_MOUSEMOVE) form_.PointerOver(this, Handle(), wParam, lParam);
    return View::Message(message, wParam, lParam);
  }

 private:
  controls::TextBox& text_;
};

}  // namespace

std::unique_ptr<View> MakeText(Form& form, controls::TextBox& text, const LayoutRow& row) {
  return std::make_unique<TextView>(form, text, row);
}

}  // namespace ui::win32
