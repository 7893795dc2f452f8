#include "ui/win32/form.hpp"

#include <algorithm>

#include "ui/win32/dpi.hpp"
#include "ui/win32/skin.hpp"

namespace ui::win32 {
namespace {

constexpr const wchar_t* kClass = L"LauncherWindow";
constexpr const wchar_t* kIcon = L"AAA";

struct Styles {
  DWORD style, extended;
};

Styles StylesOf(Chrome chrome) {
  switch (chrome) {
    case Chrome::Borderless:
      return {WS_POPUP | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN, WS_EX_APPWINDOW};
    case Chrome::Notice:
      return {WS_POPUP | WS_CLIPCHILDREN, WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TOPMOST};
    case Chrome::Dialog:
      break;
  }
  return {WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN, WS_EX_APPWINDOW};
}

void Register(WNDPROC procedure) {
  WNDCLASSEXW info{};
  info.cbSize = sizeof info;
  info.lpfnWndProc = procedure;
  info.hInstance = GetModuleHandleW(nullptr);
  info.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  info.lpszClassName = kClass;
  RegisterClassExW(&info);  // the second time is refused, which is fine
}

UniqueIcon ProgramIcon(int size) {
  return UniqueIcon(static_cast<HICON>(
      LoadImageW(GetModuleHandleW(nullptr), kIcon, IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
}

}  // namespace

Form::Form(FormShare& share, controls::Window& window)
    : share_(share),
      window_(window),
      layout_(LayoutOf(window.Name())),
      boxBrush_(CreateSolidBrush(Colours().box)) {
  Create();
  FitScale();
  if (window_.Visible) PreparePictures();
  SetIcons();
  MakeViews();
  Resize(nullptr);
  Centre();
  if (window_.Visible) ShowNow();
}

Form::~Form() {
  ShowWindow(Handle(), SW_HIDE);
  views_.clear();
  SetWindowLongPtrW(Handle(), GWLP_USERDATA, 0);
}

void Form::Create() {
  Register(&Form::Procedure);
  const Styles styles = StylesOf(layout_.chrome);
  // The window's address is bound by the first message that carries it, WM_NCCREATE.
  handle_.reset(CreateWindowExW(styles.extended, kClass, platform::Wide(window_.Caption.Get()).c_str(),
                                styles.style, 0, 0, 10, 10, nullptr, nullptr, GetModuleHandleW(nullptr),
                                this));
  monitorDpi_ = DpiOf(Handle());
  if (layout_.chrome == Chrome::Dialog) FitTitleBar(Handle(), Colours());
  // A program with more rights than the shell would not hear it.
  ChangeWindowMessageFilterEx(Handle(), share_.taskbar.CreatedMessage(), MSGFLT_ALLOW, nullptr);
}

// In the order of the rows, which is the order in which the keyboard and screen readers walk the window.
void Form::MakeViews() {
  for (const LayoutRow& row : layout_.rows) {
    controls::Control* const control = window_.Find(row.name);
    if (!control) continue;
    if (auto view = MakeView(*this, *control, row)) views_.push_back(std::move(view));
  }
  for (const auto& view : views_) {
    if (!view->IsGround()) continue;
    SetWindowPos(view->Handle(), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }
}

int Form::Scaled(int logical) const { return MulDiv(logical, dpi_, kDesignDpi); }

SIZE Form::WindowSize() const {
  RECT rect{0, 0, Scaled(layout_.width), Scaled(layout_.height)};
  const Styles styles = StylesOf(layout_.chrome);
  GrowToWindow(rect, styles.style, styles.extended, monitorDpi_);
  return {Width(rect), Height(rect)};
}

// To the monitor's scale and the player's size of texts, or the largest at which the whole window can be
// seen. Texts do not grow alone: the layout grows with them.
void Form::FitScale() {
  const RECT work = WorkAreaOf(Handle());
  const int asked = dpi_ = MulDiv(monitorDpi_, share_.theme.TextPercent(), 100);
  const SIZE wanted = WindowSize();
  if (wanted.cx > Width(work)) dpi_ = MulDiv(asked, Width(work), wanted.cx);
  if (wanted.cy > Height(work)) dpi_ = std::min(dpi_, MulDiv(asked, Height(work), wanted.cy));
  fonts_.clear();
}

// The window and all in it, after a change of scale.
void Form::Resize(const POINT* corner) {
  const SIZE size = WindowSize();
  SetWindowPos(Handle(), nullptr, corner ? corner->x : 0, corner ? corner->y : 0, size.cx, size.cy,
               SWP_NOZORDER | SWP_NOACTIVATE | (corner ? 0u : SWP_NOMOVE));
  FitClient(size);
  for (const auto& view : views_) view->Place();
  ForgetBackground();
}

void Form::Rescale(const POINT* corner) {
  FitScale();
  SetIcons();
  Resize(corner);
}

// The frame may be another one than was reckoned with: it is the system's, and its theme's.
void Form::FitClient(SIZE size) {
  RECT client{};
  GetClientRect(Handle(), &client);
  const int width = Scaled(layout_.width) - Width(client), height = Scaled(layout_.height) - Height(client);
  if (width == 0 && height == 0) return;
  SetWindowPos(Handle(), nullptr, 0, 0, size.cx + width, size.cy + height,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Form::SetIcons() {
  bigIcon_ = ProgramIcon(SystemMetricAt(SM_CXICON, monitorDpi_));
  smallIcon_ = ProgramIcon(SystemMetricAt(SM_CXSMICON, monitorDpi_));
  SendMessageW(Handle(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(bigIcon_.get()));
  SendMessageW(Handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon_.get()));
}

HFONT Form::Font(const wchar_t* face, int points, bool underline) {
  const auto [found, isNew] = fonts_.try_emplace({face, points, underline});
  if (isNew) {
    found->second.reset(CreateFontW(-MulDiv(points, dpi_, 72), 0, 0, 0, FW_NORMAL, FALSE, underline, FALSE,
                                    DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                    CLEARTYPE_QUALITY, DEFAULT_PITCH, face));
  }
  return found->second.get();
}

int Form::LineHeight(HFONT font) const {
  const HDC dc = GetDC(Handle());
  const HGDIOBJ before = SelectObject(dc, font);
  TEXTMETRICW metrics{};
  GetTextMetricsW(dc, &metrics);
  SelectObject(dc, before);
  ReleaseDC(Handle(), dc);
  return metrics.tmHeight;
}

// The picture becomes the surface.
void Form::PaintBackground() {
  const RECT all{0, 0, Scaled(layout_.width), Scaled(layout_.height)};
  UniqueBitmap picture;
  if (!Colours().plain) picture = Pictures().OwnPicture(window_.Picture, Width(all), Height(all));
  const bool bare = !picture;
  const HDC screen = GetDC(Handle());
  background_ = bare ? std::make_unique<Canvas>(screen, Width(all), Height(all))
                     : std::make_unique<Canvas>(screen, std::move(picture));
  ReleaseDC(Handle(), screen);
  const HDC dc = background_->Dc();
  if (bare) {
    Fill(dc, all, Colours().plain ? Colours().panel : Rgb(layout_.colour));
    if (layout_.chrome != Chrome::Dialog) Outline(dc, all, Scaled(1), Colours().border);
    if (layout_.chrome == Chrome::Borderless) PaintTitle(dc);
  }
  for (const auto& view : views_) view->PaintBehind(dc);
}

// What is about to be seen is read while the system brings up the window.
void Form::PreparePictures() {
  if (Colours().plain) return;
  if (!background_) Pictures().Prepare(window_.Picture, Scaled(layout_.width), Scaled(layout_.height));
  for (const auto& view : views_) view->PreparePicture();
}

// In place of the title that the picture holds.
void Form::PaintTitle(HDC dc) {
  const RECT place{Scaled(44), Scaled(24), Scaled(layout_.width / 2), Scaled(64)};
  skin::DrawLabel(dc, place, Font(L"Tahoma", 14, false), Colours().caption, Align::Left, Lines::Single,
                  platform::Wide(window_.Caption.Get()));
}

void Form::ForgetBackground() {
  background_.reset();
  RedrawWindow(Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

// Made when it is first needed: a window that is never shown never reads its picture.
void Form::CopyBackground(HDC dc, const RECT& part) {
  if (!background_) PaintBackground();
  BitBlt(dc, 0, 0, Width(part), Height(part), background_->Dc(), part.left, part.top, SRCCOPY);
}

void Form::Paint() {
  const BufferedPaint paint(Handle());
  CopyBackground(paint.Dc(), paint.Client());
  for (const auto& view : views_) view->PaintFocus(paint.Dc());
}

void Form::Changed(std::string_view property) {
  if (property == "Caption") SetWindowTextW(Handle(), platform::Wide(window_.Caption.Get()).c_str());
  if (property == "Picture") ForgetBackground();
  if (property == "Visible") ShowNow();
  if (property == "WindowState") {
    if (window_.Visible) ShowNow();
    window_.Resize();
  }
}

void Form::Changed(const controls::Control& control, std::string_view property) {
  const auto found = std::find_if(views_.begin(), views_.end(),
                                  [&](const auto& view) { return &view->Control() == &control; });
  if (found != views_.end()) (*found)->Changed(property);
}

void Form::ShowNow() {
  int command = SW_HIDE;
  if (window_.Visible) {
    switch (window_.State.Get()) {
      case controls::WindowState::Minimised:
        command = SW_MINIMIZE;
        break;
      case controls::WindowState::Maximised:
        command = SW_SHOWMAXIMIZED;
        break;
      case controls::WindowState::Normal:
        command = layout_.chrome == Chrome::Notice ? SW_SHOWNOACTIVATE : SW_SHOWNORMAL;
        break;
    }
  }
  const bool appears = window_.Visible && !IsWindowVisible(Handle());
  if (appears) {
    BringOntoMonitor();
    PreparePictures();
    share_.aboutToShow();
  }
  moving_ = true;
  ShowWindow(Handle(), command);
  moving_ = false;
  if (appears && layout_.chrome == Chrome::Borderless) FocusFirst();
  if (appears && layout_.chrome == Chrome::Notice) {
    NotifyWinEvent(EVENT_SYSTEM_ALERT, Handle(), OBJID_CLIENT, CHILDID_SELF);
  }
  RedrawWindow(Handle(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void Form::SizeChanged(WPARAM kind) {
  if (moving_ || (kind != SIZE_MINIMIZED && kind != SIZE_MAXIMIZED && kind != SIZE_RESTORED)) return;
  if (!IsWindowVisible(Handle())) return;
  window_.State = kind == SIZE_MINIMIZED   ? controls::WindowState::Minimised
                  : kind == SIZE_MAXIMIZED ? controls::WindowState::Maximised
                                           : controls::WindowState::Normal;
}

// A window whose monitor went away, or that was dragged nearly out of sight.
void Form::BringOntoMonitor() {
  if (layout_.chrome == Chrome::Notice || IsIconic(Handle())) return;
  RECT own{}, seen{};
  GetWindowRect(Handle(), &own);
  const RECT work = WorkAreaOf(Handle());
  IntersectRect(&seen, &own, &work);
  const bool reachable = Width(seen) >= Width(own) / 4 && Height(seen) >= Height(own) / 4 &&
                         (layout_.chrome == Chrome::Borderless || own.top >= work.top);
  if (reachable) return;
  const LONG left = std::max(std::min(own.left, work.right - Width(own)), work.left);
  const LONG top = std::max(std::min(own.top, work.bottom - Height(own)), work.top);
  SetWindowPos(Handle(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// The keyboard starts at what matters most.
void Form::FocusFirst() {
  const HWND first = GetNextDlgTabItem(Handle(), nullptr, FALSE);
  if (!first) return;
  lastFocus_ = first;
  if (GetFocus() == Handle()) SetFocus(first);
}

void Form::ThemeChanged() {
  boxBrush_.reset(CreateSolidBrush(Colours().box));
  if (layout_.chrome == Chrome::Dialog) FitTitleBar(Handle(), Colours());
  Rescale(nullptr);
  BringOntoMonitor();
}

void Form::Centre() {
  const RECT work = WorkAreaOf(Handle());
  RECT own{};
  GetWindowRect(Handle(), &own);
  const LONG left = work.left + (Width(work) - Width(own)) / 2,
             top = work.top + (Height(work) - Height(own)) / 2;
  SetWindowPos(Handle(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Form::ToForeground() {
  SetForegroundWindow(Handle());
  RedrawWindow(Handle(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void Form::StartDrag() {
  POINT at{};
  GetCursorPos(&at);
  dragged_ = true;
  ReleaseCapture();
  SendMessageW(Handle(), WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(at.x, at.y));
}

View* Form::ViewOf(HWND child) const {
  for (HWND at = child; at && at != Handle(); at = GetParent(at)) {
    for (const auto& view : views_) {
      if (view->Handle() == at) return view.get();
    }
  }
  return nullptr;
}

void Form::Activated(bool active) {
  if (!active) {
    // A window that loses the keyboard before any of its controls had it starts with the first one again.
    if (const HWND focus = GetFocus(); focus && IsChild(Handle(), focus)) lastFocus_ = focus;
    return;
  }
  window_.Activate();
}

void Form::LimitSize(MINMAXINFO& limits) const {
  if (layout_.chrome == Chrome::Dialog || views_.empty()) return;
  const RECT work = WorkAreaOf(Handle());
  const SIZE size = WindowSize();
  limits.ptMaxSize = {size.cx, size.cy};
  limits.ptMaxPosition = {(Width(work) - size.cx) / 2, (Height(work) - size.cy) / 2};
}

LRESULT Form::ColourOf(HDC dc, HWND child) const {
  const View* view = ViewOf(child);  // none for a list that hangs below its combo
  SetTextColor(dc, !view || view->Control().Enabled ? Colours().boxText : Colours().dimmed);
  SetBkColor(dc, Colours().box);
  return reinterpret_cast<LRESULT>(boxBrush_.get());
}

LRESULT CALLBACK Form::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* form = static_cast<Form*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(form));
    return DefWindowProcW(window, message, wParam, lParam);
  }
  auto* form = reinterpret_cast<Form*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  // Messages of the window's making come before its owner knows its handle.
  if (!form || !form->handle_) return DefWindowProcW(window, message, wParam, lParam);
  return form->Message(message, wParam, lParam);
}

LRESULT Form::Message(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == share_.taskbar.CreatedMessage()) share_.taskbar.ButtonCreated();
  switch (message) {
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      Paint();
      return 0;
    case WM_CLOSE:
      window_.QueryUnload(controls::UnloadMode::ControlMenu);
      return 0;
    // Nothing is ever half written, so the session may end at any time; what is under way gets the time that
    // the system grants.
    case WM_QUERYENDSESSION:
      return TRUE;
    case WM_ENDSESSION:
      if (wParam) window_.QueryUnload(controls::UnloadMode::SystemShutdown);
      return 0;
    case WM_POWERBROADCAST:
      if (wParam == PBT_APMRESUMEAUTOMATIC) share_.resumed();
      return TRUE;
    case WM_SIZE:
      SizeChanged(wParam);
      break;
    case WM_GETMINMAXINFO:
      LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam));
      return 0;
    case WM_ACTIVATE:
      Activated(LOWORD(wParam) != WA_INACTIVE);
      break;
    case WM_SETFOCUS:
      if (lastFocus_) SetFocus(lastFocus_);
      return 0;
    case WM_MOUSEACTIVATE:
      if (layout_.chrome == Chrome::Notice) return MA_NOACTIVATE;
      break;
    case WM_DPICHANGED: {
      const RECT& place = *reinterpret_cast<const RECT*>(lParam);
      const POINT corner{place.left, place.top};
      monitorDpi_ = HIWORD(wParam);
      Pictures().Clear();
      Rescale(&corner);
      BringOntoMonitor();
      return 0;
    }
    case WM_DISPLAYCHANGE:
      BringOntoMonitor();
      break;
    case WM_SETTINGCHANGE:
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
      share_.settingsChanged();
      break;
    case WM_COMMAND:
      if (View* view = lParam ? ViewOf(reinterpret_cast<HWND>(lParam)) : nullptr)
        view->Command(HIWORD(wParam));
      return 0;
    case WM_DRAWITEM: {
      const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (View* view = ViewOf(item.hwndItem)) view->Draw(item);
      return TRUE;
    }
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC:  // of a disabled text box
      return ColourOf(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    default:
      return PointerMessage(message, wParam, lParam);
  }
  return DefWindowProcW(Handle(), message, wParam, lParam);
}

}  // namespace ui::win32
