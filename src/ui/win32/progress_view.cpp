#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cmath>

#include "ui/win32/form.hpp"
#include "ui/win32/skin.hpp"
#include "ui/win32/view.hpp"

namespace ui::win32 {
namespace {

constexpr int kSteps = 1000;  // what the system's bar counts in, for those who read it

class ProgressView : public View {
 public:
  ProgressView(Form& form, controls::ProgressBar& bar, const LayoutRow& row)
      : View(form, bar, row), bar_(bar) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    Create(PROGRESS_CLASSW, L"Progreso", 0);
    SendMessageW(Handle(), PBM_SETRANGE32, 0, kSteps);
    Report();
  }

  void Changed(std::string_view property) override {
    if (property == "Value" || property == "Max") Report();
    View::Changed(property);
  }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_PAINT) return View::Message(message, wParam, lParam);
    const BufferedPaint paint(Handle());
    skin::DrawProgress(paint.Dc(), paint.Client(), Share());
    return 0;
  }

 private:
  double Share() const { return bar_.Max > 0 ? std::clamp(bar_.Value / bar_.Max, 0.0, 1.0) : 0; }

  void Report() {
    const int step = static_cast<int>(std::lround(Share() * kSteps));
    if (step == shown_) return;
    shown_ = step;
    SendMessageW(Handle(), PBM_SETPOS, static_cast<WPARAM>(step), 0);
    Invalidate();
    form_.ShowProgress(step, kSteps);
  }

  controls::ProgressBar& bar_;
  int shown_ = 0;
};

}  // namespace

std::unique_ptr<View> MakeProgress(Form& form, controls::ProgressBar& bar, const LayoutRow& row) {
  return std::make_unique<ProgressView>(form, bar, row);
}

}  // namespace ui::win32
