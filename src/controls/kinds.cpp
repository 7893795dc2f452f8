#include "controls/kinds.hpp"

#include <algorithm>

namespace controls {

Label::Label(Window& window, std::string name, std::string caption)
    : Control(window, std::move(name)), Caption(*this, "", std::move(caption)) {}

Button::Button(Window& window, std::string name, std::string caption)
    : Control(window, std::move(name)), Caption(*this, "", std::move(caption)) {}

TextBox::TextBox(Window& window, std::string name, std::string text)
    : Control(window, std::move(name)), Text(*this, "Text", text), laidOut_(std::move(text)) {}

OptionButton::OptionButton(Window& window, std::string name, std::string caption)
    : Control(window, std::move(name)), Caption(*this, "", std::move(caption)) {}

CheckBox::CheckBox(Window& window, std::string name, std::string caption)
    : Control(window, std::move(name)), Caption(*this, "", std::move(caption)) {}

Frame::Frame(Window& window, std::string name, std::string caption)
    : Control(window, std::move(name)), Caption(*this, "", std::move(caption)) {}

void ComboBox::Fill(std::vector<std::string> entries) {
  entries_ = std::move(entries);
  ListIndex = -1;
  Text = std::string{};
  Filled();
}

void ComboBox::Select(int index) {
  const bool valid = index >= 0 && static_cast<std::size_t>(index) < entries_.size();
  ListIndex = valid ? index : -1;
  Text = valid ? entries_[static_cast<std::size_t>(index)] : std::string{};
}

int ComboBox::IndexOf(const std::string& text) const {
  const auto found = std::find(entries_.begin(), entries_.end(), text);
  return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
}

Timer::Timer(Window& window, std::string name, platform::TimerQueue& queue, std::uint32_t intervalMs,
             platform::TickKind kind)
    : Control(window, std::move(name)), queue_(queue), interval_(intervalMs), kind_(kind) {}

Timer::~Timer() { queue_.Stop(id_); }

void Timer::Start() {
  const auto tick = [this] { Tick(); };
  id_ = queue_.Start(interval_, tick, kind_);
}

void Timer::Set(bool on) {
  if (on == enabled_) return;
  enabled_ = on;
  if (on) {
    Start();
  } else {
    queue_.Stop(id_);
  }
  Notify("Enabled", ValueText(on));
}

void Timer::SetInterval(std::uint32_t milliseconds) {
  interval_ = milliseconds;
  if (!enabled_) return;
  queue_.Stop(id_);
  Start();
}

}  // namespace controls
