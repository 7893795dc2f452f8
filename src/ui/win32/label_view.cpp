#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

// The pointer passes through a label to its form, which knows what lies where.
class LabelView : public View {
 public:
  LabelView(Form& form, controls::Label& label, const LayoutRow& row)
      : View(form, label, row), label_(label) {
    Create(L"STATIC", platform::Wide(label.Caption.Get()), SS_NOPREFIX | WS_GROUP);
  }

  void Changed(std::string_view property) override {
    if (property.empty()) {
      SetText(label_.Caption);
      NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, Handle(), OBJID_CLIENT, CHILDID_SELF);
    }
    if (property == "ForeColor" || property == "FontUnderline") Invalidate();
    View::Changed(property);
  }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_PAINT) return View::Message(message, wParam, lParam);
    const BufferedPaint paint(Handle());
    PaintBackground(paint.Dc());
    const COLORREF own = label_.ForeColor == 0 ? Rgb(row_.colour) : COLORREF{label_.ForeColor};
    const COLORREF colour = form_.Colours().Own(own);
    skin::DrawLabel(paint.Dc(), paint.Client(), Font(label_.Underline), colour, row_.align, row_.lines,
                    platform::Wide(label_.Caption.Get()));
    return 0;
  }

 private:
  controls::Label& label_;
};

}  // namespace

std::unique_ptr<View> MakeLabel(Form& form, controls::Label& label, const LayoutRow& row) {
  return std::make_unique<LabelView>(form, label, row);
}

}  // namespace ui::win32
