#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "controls/control.hpp"
#include "platform/timer_queue.hpp"

namespace controls {

// Colours are 0x00BBGGRR, as the windows' own messages have them: 255 is red, 65280 green.
using Colour = std::uint32_t;

class Label : public Control {
 public:
  Label(Window& window, std::string name, std::string caption = "");
  Property<std::string, Control> Caption;
  Property<Colour, Control> ForeColor{*this, "ForeColor", 0};
  Property<bool, Control> Underline{*this, "FontUnderline", false};
};

class Button : public Control {
 public:
  Button(Window& window, std::string name, std::string caption = "");
  Property<std::string, Control> Caption;
};

// Shows one picture; what makes it a button is ui/clsGraphicalButton.
class ImageControl : public Control {
 public:
  using Control::Control;
  Property<std::string, Control> Picture{*this, "Picture", ""};  // full path; empty: nothing
  Property<std::string, Control> MouseIcon{*this, "MouseIcon",
                                           ""};              // full path of a cursor file; empty: the arrow
  Property<bool, Control> Checked{*this, "Checked", false};  // of one that stands for a check box
  Property<bool, Control> Idle{*this, "Idle", false};        // a press of it has no effect now
  bool isCheck = false;                                      // it stands for a check box
  std::string description;                                   // what a screen reader reads
  std::string sign;  // shown where there is no picture and no room for the description
};

class ProgressBar : public Control {
 public:
  using Control::Control;
  Property<double, Control> Max{*this, "Max", 100};
  Property<double, Control> Value{*this, "Value", 0};
  Property<bool, Control> Failed{*this, "Failed", false};  // what it counts was given up
  // Share of a longer work that it is a part of, 0 to 1, for places that show only one; below 0: there is
  // none.
  Property<double, Control> Whole{*this, "Whole", -1};
};

class TextBox : public Control {
 public:
  TextBox(Window& window, std::string name, std::string text = "");
  void ShowLaidOut() { Text = laidOut_; }  // the text it was made with
  Property<std::string, Control> Text;
  Event<> LostFocus;

 private:
  const std::string laidOut_;
};

class ComboBox : public Control {
 public:
  using Control::Control;
  // Replaces the entries; nothing is selected and the text is empty afterwards.
  void Fill(std::vector<std::string> entries);
  const std::vector<std::string>& Entries() const { return entries_; }
  // Selects an entry and shows its text; -1 selects none. Raises no Change.
  void Select(int index);
  // Index of the entry with this text; -1 when there is none.
  int IndexOf(const std::string& text) const;

  Property<std::int32_t, Control> ListIndex{*this, "ListIndex", -1};
  Property<std::string, Control> Text{*this, "Text", ""};
  Event<> Change;  // the player chose an entry
  Event<> KeyUp;   // the player typed into the text
  Event<> Filled;

 private:
  std::vector<std::string> entries_;
};

class OptionButton : public Control {
 public:
  OptionButton(Window& window, std::string name, std::string caption);
  Property<std::string, Control> Caption;
  Property<bool, Control> Value{*this, "Value", false};
};

class CheckBox : public Control {
 public:
  CheckBox(Window& window, std::string name, std::string caption);
  Property<std::string, Control> Caption;
  Property<bool, Control> Value{*this, "Value", false};
};

class Frame : public Control {
 public:
  Frame(Window& window, std::string name, std::string caption);
  Property<std::string, Control> Caption;
};

// Runs Tick every Interval milliseconds while it is on; its handler is never entered twice. `kind` says
// whether the handler lets events run.
class Timer : public Control {
 public:
  Timer(Window& window, std::string name, platform::TimerQueue& queue, std::uint32_t intervalMs,
        platform::TickKind kind = platform::TickKind::Short);
  ~Timer() override;

  bool On() const { return enabled_; }
  void Set(bool on);                             // switching a running timer on again does not restart it
  void SetInterval(std::uint32_t milliseconds);  // a running timer starts over
  std::uint32_t Interval() const { return interval_; }
  Event<> Tick;

 private:
  void Start();

  platform::TimerQueue& queue_;
  std::uint32_t interval_;
  platform::TickKind kind_;
  bool enabled_ = false;
  platform::TimerQueue::Id id_ = 0;
};

}  // namespace controls
