#include "ui/frmNotify.hpp"

#include <algorithm>
#include <cmath>

#include "platform/files.hpp"
#include "startup/procedure.hpp"
#include "ui/skin_pictures.hpp"

namespace ui {
namespace {

constexpr const char* kSeeWhole = "Ver noticia completa";
constexpr const char* kClose = "Cerrar notificación.";
constexpr controls::Colour kPlainColour = 0x00FAE5DC;
constexpr controls::Colour kHoverColour = 0x0078D7FF;
constexpr std::uint32_t kDesignIntervalMs = 100;
constexpr std::uint32_t kBusyRoundMs = 5000;
constexpr double kStepTwips = 15;
constexpr double kSlideMs = 400;  // what a whole slide takes on any screen

}  // namespace

frmNotify::frmNotify(const startup::Services& services, Screen& screen)
    : Timer1(window, "Timer1", services.host.events.Timers(), kDesignIntervalMs,
             platform::TickKind::LetsEventsRun),
      tmrWaiting(window, "tmrWaiting", services.host.events.Timers(), kBusyRoundMs,
                 platform::TickKind::LetsEventsRun),
      services_(services),
      screen_(screen) {
  window.MouseMove += [this](controls::MouseButton) { ShowTexts(); };
  lblNews.MouseMove += [this](controls::MouseButton) { lblNews_MouseMove(); };
  lblTitle.MouseMove += [this](controls::MouseButton) { lblTitle_MouseMove(); };
  lblNews.Click += [this] { lblNews_Click(); };
  lblTitle.Click += [this] { lblTitle_Click(); };
  Timer1.Tick += [this] { Hide(); };
  tmrWaiting.Tick += [this] { tmrWaiting_Timer(); };
}

frmNotify::~frmNotify() {
  if (attached_) screen_.Detach(window);
}

void frmNotify::Form_Load() {
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        window.Picture = SkinPictures(services_.folders.GraphicsDir).Optional("Noticia.jpg");
        StyleNews(false);
        line = 20;
        screen_.Attach(window);
        attached_ = true;
        line = 30;
        screen_.SetTopmost(window);
      },
      [](const startup::Failure& failure) {
        return failure.Opening() + " procedimiento Form_Load Formulario frmNotify línea: " + failure.Line();
      });
}

void frmNotify::ShowMessage(const std::string& text, const std::string& title, std::int32_t number,
                            std::int32_t milliseconds) {
  if (screen_.PlayerIsBusy()) {
    waiting_ = {text, title, number, milliseconds};
    tmrWaiting.Set(true);
    return;
  }
  tmrWaiting.Set(false);
  text_ = text;
  title_ = title;
  if (!attached_) Form_Load();
  if (!attached_) return;
  if (Timer1.On()) Hide();
  number_ = number;
  ShowTexts();
  workArea_ = screen_.WorkArea();
  height_ = screen_.Bounds(window).Height() * screen_.TwipsPerPixel(window);
  if (!Slide(0, height_)) return;
  Timer1.SetInterval(static_cast<std::uint32_t>(std::max(milliseconds, 0)));
  Timer1.Set(true);
}

void frmNotify::tmrWaiting_Timer() {
  const Notice notice = waiting_;
  ShowMessage(notice.text, notice.title, notice.number, notice.milliseconds);
}

void frmNotify::Hide() {
  Timer1.Set(false);
  if (!window.Visible) return;
  if (Slide(offset_, 0)) window.Visible = false;
}

// Moves the window step by step; false when another slide or the program's end overtook this one.
bool frmNotify::Slide(double from, double to) {
  const unsigned mine = ++slide_;
  const double direction = to < from ? -1 : 1;
  const auto steps = static_cast<int>(std::abs(to - from) / kStepTwips);
  const double stepMs = kSlideMs * kStepTwips / std::max(height_, kStepTwips);
  const std::uint64_t start = services_.host.clock.Milliseconds();
  for (int step = 0; step <= steps; ++step) {
    Place(step == steps ? to : from + direction * step * kStepTwips);
    if (!window.Visible) window.Visible = true;
    services_.host.events.DoEvents();
    if (slide_ != mine || services_.lifetime.Ending()) return false;
    const auto due = start + static_cast<std::uint64_t>(stepMs * step);
    const std::uint64_t now = services_.host.clock.Milliseconds();
    if (now < due) services_.host.clock.Sleep(static_cast<std::uint32_t>(due - now));
  }
  return true;
}

void frmNotify::Place(double offsetTwips) {
  offset_ = offsetTwips;
  const int offset = static_cast<int>(std::lround(offsetTwips / screen_.TwipsPerPixel(window)));
  screen_.MoveTo(window, workArea_.right - screen_.Bounds(window).Width(), workArea_.bottom - offset);
}

void frmNotify::lblNews_MouseMove() {
  lblNews.Caption = std::string(kSeeWhole);
  StyleNews(true);
  lblTitle.Caption = title_;
}

void frmNotify::lblTitle_MouseMove() {
  lblTitle.Caption = std::string(kClose);
  lblNews.Caption = text_;
  StyleNews(false);
}

void frmNotify::ShowTexts() {
  lblNews.Caption = text_;
  lblTitle.Caption = title_;
  StyleNews(false);
}

void frmNotify::StyleNews(bool hovered) {
  lblNews.Underline = hovered;
  lblNews.ForeColor = hovered ? kHoverColour : kPlainColour;
}

void frmNotify::lblNews_Click() {
  if (lblNews.Caption.Get() != kSeeWhole) return;
  services_.host.shell.OpenPage(services_.deployment.web + "/web/index.php?id=" + std::to_string(number_),
                                services_.folders.AppPath + platform::NativePath("\\.."));
}

void frmNotify::lblTitle_Click() {
  if (lblTitle.Caption.Get() == kClose) Hide();
}

}  // namespace ui
