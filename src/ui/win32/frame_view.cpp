#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

// A group box of the system, for those who read it; drawn behind the controls that stand in it, with its
// caption in a gap of its upper border.
class FrameView : public View {
 public:
  FrameView(Form& form, controls::Frame& frame, const LayoutRow& row)
      : View(form, frame, row), frame_(frame) {
    Create(L"BUTTON", platform::Wide(frame.Caption.Get()), BS_GROUPBOX);
  }

  bool IsGround() const override { return true; }

  void PaintBehind(HDC dc) override {
    if (!frame_.Visible) return;
    const Palette& colours = form_.Colours();
    const RECT box = Box();
    const std::wstring caption = platform::Wide(frame_.Caption.Get());
    const HGDIOBJ before = SelectObject(dc, Font());
    SIZE size{};
    GetTextExtentPoint32W(dc, caption.c_str(), static_cast<int>(caption.size()), &size);
    SelectObject(dc, before);
    Fill(dc, box, colours.panel);
    Outline(dc, box, form_.Scaled(1), colours.border);
    if (caption.empty()) return;
    const int gap = form_.Scaled(6);
    const RECT text{box.left + form_.Scaled(12), box.top - size.cy / 2,
                    box.left + form_.Scaled(12) + size.cx + 2 * gap, box.top + size.cy - size.cy / 2};
    Fill(dc, {text.left, box.top, text.right, box.top + form_.Scaled(1)}, colours.panel);
    skin::DrawLabel(dc, text, Font(), colours.caption, Align::Center, Lines::Single, caption);
  }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_PAINT) return View::Message(message, wParam, lParam);
    const BufferedPaint paint(Handle());
    PaintBackground(paint.Dc());
    return 0;
  }

 private:
  controls::Frame& frame_;
};

}  // namespace

std::unique_ptr<View> MakeFrame(Form& form, controls::Frame& frame, const LayoutRow& row) {
  return std::make_unique<FrameView>(form, frame, row);
}

}  // namespace ui::win32
