#include "ui/terminal/terminal_screen.hpp"

#include <algorithm>
#include <utility>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "ui/terminal/player.hpp"

namespace ui {
namespace {

constexpr Area kWorkArea{0, 0, 1280, 984};  // a common screen without its task bar
constexpr Area kNewWindow{0, 0, 340, 130};
constexpr std::uint32_t kWaitMs = 60'000;
constexpr std::string_view kTrayWindow = "FrmSysTrays";  // whose the menu's entries are

// Pointers are nothing to be read, and whether a button is idle its picture tells.
bool IsPrinted(std::string_view property) { return property != "MouseIcon" && property != "Idle"; }

bool IsControl(char c) { return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == 127; }

// One line: a line break as \n, other control characters, which could drive the terminal, as "?".
std::string OneLine(std::string_view text) {
  if (std::none_of(text.begin(), text.end(), IsControl)) return std::string(text);
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r' || c == '\n') {
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      line += "\\n";
    } else {
      line += IsControl(c) ? '?' : c;
    }
  }
  return line;
}

std::string Shown(std::string_view property, const std::string& value) {
  return property == "Picture" ? platform::BaseNameOf(value) : value;
}

}  // namespace

TerminalScreen::TerminalScreen(platform::PosixEventLoop& events, int input, std::ostream& out,
                               std::ostream& errors)
    : events_(events), out_(out), errors_(errors) {
  events_.ReadLines(input, [this](const std::string& line) { return OnLine(line); });
  events_.BeforeEvents([this] { out_.flush(); });
}

void TerminalScreen::Print(const std::string& line) { out_ << OneLine(line) << '\n'; }

void TerminalScreen::Tell(const std::string& line) {
  Print(line);
  out_.flush();
}

void TerminalScreen::Attach(controls::Window& window) {
  windows_.insert({&window, {&window, kNewWindow}});
  window.SetFace(this);
  if (window.Visible) Changed(window, "Visible", controls::ValueText(true));
}

void TerminalScreen::Detach(controls::Window& window) {
  if (windows_.erase(&window) > 0) window.SetFace(nullptr);
}

Area TerminalScreen::WorkArea() { return kWorkArea; }

Area TerminalScreen::Bounds(const controls::Window& window) {
  const auto found = windows_.find(&window);
  return found == windows_.end() ? kNewWindow : found->second.area;
}

void TerminalScreen::MoveTo(controls::Window& window, int left, int top) {
  const auto found = windows_.find(&window);
  if (found == windows_.end()) return;
  found->second.area = {left, top, left + kNewWindow.Width(), top + kNewWindow.Height()};
}

void TerminalScreen::Centre(controls::Window& window) {
  MoveTo(window, (kWorkArea.Width() - kNewWindow.Width()) / 2,
         (kWorkArea.Height() - kNewWindow.Height()) / 2);
}

void TerminalScreen::BringToForeground(controls::Window& window) {
  if (windows_.contains(&window) && window.Visible) window.Activate();
}

void TerminalScreen::NotifyIcon(TrayAction action, const std::string&) {
  trayIcon_ = action != TrayAction::Remove;
}

void TerminalScreen::PopupMenu(controls::Menu& menu) {
  menu_ = &menu;
  Tell("Menu " + menu.name);
}

void TerminalScreen::Changed(const controls::Window& window, const controls::Control& control,
                             std::string_view property, const std::string& value) {
  if (!IsPrinted(property)) return;
  std::string name = window.Name() + "." + control.Name();
  if (!property.empty()) name.append(".").append(property);
  Print(name + ": " + Shown(property, value));
}

void TerminalScreen::Changed(const controls::Window& window, std::string_view property,
                             const std::string& value) {
  Print(window.Name() + "." + std::string(property) + ": " + Shown(property, value));
  if (!windows_.contains(&window)) return;
  if (property == "WindowState") window.Resize();
  if (property == "Visible" && window.Visible) window.Activate();
}

platform::DialogAnswer TerminalScreen::Show(const std::string& text, platform::DialogButtons buttons,
                                            const std::string& title) {
  Announce(text, title);
  if (buttons == platform::DialogButtons::Ok) return platform::UnattendedAnswer(buttons);
  Question question{buttons, std::nullopt};
  questions_.push_back(&question);
  while (!question.answer && !events_.InputEnded()) events_.WaitEvents(kWaitMs);
  questions_.erase(std::find(questions_.begin(), questions_.end(), &question));
  return question.answer.value_or(platform::UnattendedAnswer(buttons));
}

void TerminalScreen::Announce(const std::string& text, const std::string& title) {
  Tell("MsgBox [" + title + "] " + text);
}

bool TerminalScreen::OnLine(const std::string& line) {
  const bool answering = !questions_.empty();
  std::string complaint;
  if (answering) {
    complaint = Answer(line);
  } else if (const auto read = ReadPlayerLine(line)) {
    if (MustWait(*read)) {
      kept_.push_back(line);
    } else {
      complaint = Obey(*read);
    }
  } else if (!base::Trim(line).empty()) {
    complaint = "not understood";
  }
  if (!complaint.empty()) errors_ << OneLine(line) << ": " << complaint << std::endl;
  // What follows an answer is meant for the time when the question is closed.
  return !(answering && complaint.empty());
}

std::string TerminalScreen::Answer(const std::string& line) {
  Question& question = *questions_.back();
  question.answer = ReadAnswer(line, question.buttons);
  if (question.answer) return {};
  const bool three = question.buttons == platform::DialogButtons::YesNoCancel;
  return three ? "answer Yes, No or Cancel" : "answer Yes or No";
}

bool TerminalScreen::MustWait(const PlayerLine& line) const {
  if (startUpDone_) return false;
  const bool closes = line.act == PlayerAct::Close || line.act == PlayerAct::Escape;
  const controls::Window* window = FindWindow(line.window);
  return !(closes && window && window->Visible);
}

void TerminalScreen::StartUpDone() {
  startUpDone_ = true;
  events_.GiveBack(std::exchange(kept_, {}));
}

std::string TerminalScreen::Obey(const PlayerLine& line) {
  if (line.act == PlayerAct::Tray) {
    if (!trayIcon_) return "there is no icon in the notification area";
    TrayMessage(line.number);
    return {};
  }
  if (menu_ && (line.window == kTrayWindow || line.window == menu_->name)) return ChooseEntry(line.control);
  controls::Window* window = FindWindow(line.window);
  return window ? ObeyWindow(line, *window) : "there is no window " + line.window;
}

std::string TerminalScreen::ObeyWindow(const PlayerLine& line, controls::Window& window) {
  if (line.act == PlayerAct::Close) {  // also from the task bar
    if (!window.Visible) return window.Name() + " is not visible";
    window.QueryUnload(controls::UnloadMode::ControlMenu);
    return {};
  }
  if (const std::string why = WhyOutOfReach(window); !why.empty()) return window.Name() + " " + why;
  if (line.act == PlayerAct::Escape) {
    window.KeyDown(controls::kKeyEscape);
    return {};
  }
  if (line.control.empty()) {
    window.MouseMove(controls::MouseButton::None);
    return {};
  }
  controls::Control* control = window.Find(line.control);
  if (!control) return "there is no control " + line.control + " in " + window.Name();
  const std::string why = line.act == PlayerAct::Click   ? ClickControl(*control)
                          : line.act == PlayerAct::Point ? PointAt(*control)
                                                         : EnterValue(*control, line.value);
  return why.empty() ? why : line.control + " " + why;
}

std::string TerminalScreen::ChooseEntry(const std::string& name) {
  const auto found = std::find_if(menu_->entries.begin(), menu_->entries.end(),
                                  [&](const controls::MenuEntry& entry) { return entry.name == name; });
  if (found == menu_->entries.end() || found->caption == "-") return "there is no entry " + name;
  if (!found->enabled) return name + " is disabled";
  menu_ = nullptr;  // a menu closes before its entry acts
  found->Click();
  return {};
}

controls::Window* TerminalScreen::FindWindow(const std::string& name) const {
  for (const auto& [key, placed] : windows_) {
    if (key->Name() == name) return placed.window;
  }
  return nullptr;
}

}  // namespace ui
