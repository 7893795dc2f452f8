#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

constexpr int kLinesDropped = 12;

// A list to choose from; one whose typed text matters to somebody may be typed into.
class ComboView : public View {
 public:
  ComboView(Form& form, controls::ComboBox& combo, const LayoutRow& row)
      : View(form, combo, row), combo_(combo), editable_(combo.KeyUp.HasHandlers()) {
    const DWORD kind = editable_ ? CBS_DROPDOWN | CBS_AUTOHSCROLL : CBS_DROPDOWNLIST;
    Create(L"COMBOBOX", L"",
           kind | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL | WS_CLIPCHILDREN | WS_GROUP | WS_TABSTOP);
    combo.Filled += [this, alive = std::weak_ptr(alive_)] {
      if (!alive.expired()) FillList();
    };
    FillList();
  }

  void Place() override {
    View::Place();
    const RECT box = Box();
    const int line = form_.LineHeight(Font());
    // The part that shows the choice is as high as the row; what the system adds around it is measured.
    SendMessageW(Handle(), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), line);
    RECT whole{};
    GetWindowRect(Handle(), &whole);
    SendMessageW(Handle(), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), line + Height(box) - Height(whole));
    SendMessageW(Handle(), CB_SETITEMHEIGHT, 0, line);
    SetWindowPos(Handle(), nullptr, box.left, box.top, Width(box), Height(box) + line * kLinesDropped,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    if (const HWND edit = Edit()) {
      const int side = form_.Scaled(6);
      SetWindowPos(edit, nullptr, side, (Height(box) - line) / 2, Width(box) - Height(box) - side, line,
                   SWP_NOZORDER | SWP_NOACTIVATE);
    }
    ShowChoice();
  }

  void Changed(std::string_view property) override {
    if (property == "ListIndex" || property == "Text") ShowChoice();
    View::Changed(property);
  }

  void Command(int notification) override {
    if (notification == CBN_SELCHANGE) {
      combo_.Select(static_cast<int>(SendMessageW(Handle(), CB_GETCURSEL, 0, 0)));
      combo_.Change();
    }
    if (notification == CBN_EDITCHANGE && !showing_) Typed();
    // Both of the class's own drawing.
    if (notification == CBN_CLOSEUP || notification == CBN_DROPDOWN) Invalidate();
  }

  // An entry of the open list; the closed part is painted as a whole.
  void Draw(const DRAWITEMSTRUCT& item) override {
    if (item.itemState & ODS_COMBOBOXEDIT) {
      Invalidate();
      return;
    }
    if (item.itemID >= combo_.Entries().size()) return;
    const bool chosen = (item.itemState & ODS_SELECTED) != 0;
    const Palette& colours = form_.Colours();
    Fill(item.hDC, item.rcItem, chosen ? colours.chosen : colours.box);
    RECT text = item.rcItem;
    text.left += form_.Scaled(7);
    skin::DrawLabel(item.hDC, text, Font(), chosen ? colours.chosenText : colours.boxText, row_.align,
                    Lines::Single, platform::Wide(combo_.Entries()[item.itemID]));
  }

  bool TakesPointer() const override { return true; }
  bool TakesText() const override { return editable_; }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == WM_PAINT) {
      Paint();
      return 0;
    }
    if (message == WM_SETTEXT || message == WM_ERASEBKGND) return Default(message, wParam, lParam);
    // The system gives the wheel to what is under the pointer, be it only passing over.
    if (message == WM_MOUSEWHEEL && !HasFocus()) return 0;
    if (message == WM_MOUSEMOVE) form_.PointerOver(this, Handle(), wParam, lParam);
    const LRESULT result = View::Message(message, wParam, lParam);
    if (message == WM_LBUTTONDOWN || message == WM_COMMAND || message == WM_KEYDOWN || message == WM_ENABLE) {
      Invalidate();
    }
    return result;
  }

 private:
  void FillList() {
    SendMessageW(Handle(), CB_RESETCONTENT, 0, 0);
    for (const std::string& entry : combo_.Entries()) {
      SendMessageW(Handle(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(platform::Wide(entry).c_str()));
    }
    ShowChoice();
  }

  void Typed() {
    const std::string typed = platform::Narrow(TextOf(Handle()));
    showing_ = true;
    combo_.Text = typed;
    combo_.ListIndex = combo_.IndexOf(typed);
    showing_ = false;
    ShowChoice();
    combo_.KeyUp();
  }

  void ShowChoice() {
    if (showing_) return;
    showing_ = true;
    const auto index = static_cast<LRESULT>(combo_.ListIndex.Get());
    const std::wstring text = platform::Wide(combo_.Text.Get());
    const bool textStays = editable_ && TextOf(Handle()) == text;
    const LRESULT caret = SendMessageW(Handle(), CB_GETEDITSEL, 0, 0);
    if (SendMessageW(Handle(), CB_GETCURSEL, 0, 0) != index) {
      SendMessageW(Handle(), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    }
    if (editable_ && TextOf(Handle()) != text) SetText(combo_.Text);
    // Selecting an entry moves the caret, also from behind what the player is typing.
    if (textStays) SendMessageW(Handle(), CB_SETEDITSEL, 0, caret);
    showing_ = false;
    Invalidate();
  }

  // The part that is typed into; null for a list that is only chosen from.
  HWND Edit() const {
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    return editable_ && GetComboBoxInfo(Handle(), &info) ? info.hwndItem : nullptr;
  }

  bool HasFocus() const { return Focused() || (editable_ && GetFocus() == Edit()); }

  void Paint() {
    const BufferedPaint paint(Handle());
    const RECT box = paint.Client();
    skin::DrawBox(paint.Dc(), form_.Colours(), box, form_.Scaled(1));
    RECT arrow = box;
    arrow.left = arrow.right - Height(box);
    skin::DrawArrow(paint.Dc(), arrow, form_.Colours().caption);
    if (!editable_) {
      RECT text = box;
      text.left += form_.Scaled(7);
      text.right = arrow.left;
      skin::DrawLabel(paint.Dc(), text, Font(), TextColour(), row_.align, Lines::Single,
                      platform::Wide(combo_.Text.Get()));
    }
    if (HasFocus()) Outline(paint.Dc(), box, form_.Scaled(2), form_.Colours().focus);
  }

  controls::ComboBox& combo_;
  bool editable_;
  bool showing_ = false;  // the data and the list are being brought together
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // the list outlives what shows it
};

}  // namespace

std::unique_ptr<View> MakeCombo(Form& form, controls::ComboBox& combo, const LayoutRow& row) {
  return std::make_unique<ComboView>(form, combo, row);
}

}  // namespace ui::win32
