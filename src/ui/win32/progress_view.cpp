#include <windows.h>

#include <commctrl.h>
#include <oleacc.h>

#include <algorithm>
#include <cmath>
#include <string>

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
    if (property == "Value" || property == "Max" || property == "Failed" || property == "Whole") Report();
    View::Changed(property);
  }

  std::optional<Spoken> Speak() const override {
    const std::wstring percent = std::to_wstring(std::lround(Share() * 100)) + L"%";
    return Spoken{ROLE_SYSTEM_PROGRESSBAR, L"Progreso", bar_.Failed ? L"Error" : percent,
                  STATE_SYSTEM_READONLY};
  }

 protected:
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_PAINT) return View::Message(message, wParam, lParam);
    const BufferedPaint paint(Handle());
    skin::DrawProgress(paint.Dc(), form_.Colours(), paint.Client(), Shown(), bar_.Failed);
    return 0;
  }

 private:
  double Share() const { return bar_.Max > 0 ? std::clamp(bar_.Value / bar_.Max, 0.0, 1.0) : 0; }
  // A failure is seen however far the bar had come.
  double Shown() const { return bar_.Failed && Share() == 0 ? 1 : Share(); }

  static int Steps(double share) {
    return static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * kSteps));
  }

  void Report() {
    const int step = Steps(Shown());
    const int whole = bar_.Whole < 0 || bar_.Failed ? step : Steps(bar_.Whole);
    if (whole != told_ || bar_.Failed != failed_) form_.ShowProgress(whole, kSteps, bar_.Failed);
    told_ = whole;
    if (step == shown_ && bar_.Failed == failed_) return;
    shown_ = step;
    failed_ = bar_.Failed;
    SendMessageW(Handle(), PBM_SETPOS, static_cast<WPARAM>(step), 0);
    Invalidate();
    NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, Handle(), OBJID_CLIENT, CHILDID_SELF);
  }

  controls::ProgressBar& bar_;
  int shown_ = 0;
  int told_ = 0;  // to the taskbar
  bool failed_ = false;
};

}  // namespace

std::unique_ptr<View> MakeProgress(Form& form, controls::ProgressBar& bar, const LayoutRow& row) {
  return std::make_unique<ProgressView>(form, bar, row);
}

}  // namespace ui::win32
