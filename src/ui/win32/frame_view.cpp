#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

// Drawn behind the controls that stand in it, with its caption in a gap of its upper border.
class FrameView : public View {
 public:
  FrameView(Form& form, controls::Frame& frame, const LayoutRow& row)
      : View(form, frame, row), frame_(frame) {}

  void PaintBehind(HDC dc) override {
    if (!frame_.Visible) return;
    RECT box = Box();
    const std::wstring caption = platform::Wide(frame_.Caption.Get());
    const HGDIOBJ before = SelectObject(dc, Font());
    SIZE size{};
    GetTextExtentPoint32W(dc, caption.c_str(), static_cast<int>(caption.size()), &size);
    SelectObject(dc, before);
    Fill(dc, box, skin::kPanel);
    Outline(dc, box, form_.Scaled(1), skin::kBorder);
    if (caption.empty()) return;
    const int gap = form_.Scaled(6);
    const RECT text{box.left + form_.Scaled(12), box.top - size.cy / 2,
                    box.left + form_.Scaled(12) + size.cx + 2 * gap, box.top + size.cy - size.cy / 2};
    Fill(dc, {text.left, box.top, text.right, box.top + form_.Scaled(1)}, skin::kPanel);
    skin::DrawLabel(dc, text, Font(), skin::kCaption, Align::Center, Lines::Single, caption);
  }

 private:
  controls::Frame& frame_;
};

}  // namespace

std::unique_ptr<View> MakeFrame(Form& form, controls::Frame& frame, const LayoutRow& row) {
  return std::make_unique<FrameView>(form, frame, row);
}

}  // namespace ui::win32
