#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/numeric.hpp"

namespace controls {

class Control;
class Window;

// Whoever shows the controls. Called after each change of a property, on the interface thread.
class Face {
 public:
  virtual ~Face() = default;

  // `value` as text: truth values True/False, numbers decimal. `property` is empty for the caption.
  virtual void Changed(const Window& window, const Control& control, std::string_view property,
                       const std::string& value) = 0;
  // A property of the window itself.
  virtual void Changed(const Window& window, std::string_view property, const std::string& value) = 0;
};

inline std::string ValueText(bool value) { return value ? "True" : "False"; }
inline std::string ValueText(const std::string& value) { return value; }
inline std::string ValueText(double value) { return base::NumberText(value); }
inline std::string ValueText(std::int32_t value) { return std::to_string(value); }
inline std::string ValueText(std::uint32_t value) { return std::to_string(value); }

// A value that tells its owner when it really changes. Owner offers Notify(std::string_view, const
// std::string&).
template <class T, class Owner>
class Property {
 public:
  Property(Owner& owner, std::string_view name, T initial)
      : owner_(owner), name_(name), value_(std::move(initial)) {}
  Property(const Property&) = delete;

  const T& Get() const { return value_; }
  operator const T&() const { return value_; }
  Property& operator=(T value) {
    if (value == value_) return *this;
    value_ = std::move(value);
    owner_.Notify(name_, ValueText(value_));
    return *this;
  }
  Property& operator=(const Property& other) { return *this = T(other.value_); }

 private:
  Owner& owner_;
  std::string_view name_;
  T value_;
};

// The handlers of one event, run in the order they were added.
template <class... Args>
class Event {
 public:
  void operator+=(std::function<void(Args...)> handler) { handlers_.push_back(std::move(handler)); }
  void operator()(Args... args) const {
    for (std::size_t i = 0; i < handlers_.size(); ++i) handlers_[i](args...);
  }
  bool HasHandlers() const { return !handlers_.empty(); }

 private:
  std::vector<std::function<void(Args...)>> handlers_;
};

enum class MouseButton { None = 0, Left = 1, Right = 2, Middle = 4 };

inline constexpr int kKeyEscape = 27;

// What a window holds, as plain data: no control knows how it is drawn.
class Control {
 public:
  // `name` as other code and the terminal name it, an element of an array with its index:
  // "lblServerState(1)".
  Control(Window& window, std::string name);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& Name() const { return name_; }
  Window& Parent() const { return window_; }
  void Notify(std::string_view property, const std::string& value);

  Property<bool, Control> Visible{*this, "Visible", true};
  Property<bool, Control> Enabled{*this, "Enabled", true};

  Event<> Click;
  Event<MouseButton> MouseDown, MouseMove, MouseUp;  // the buttons held during a move

 private:
  Window& window_;
  std::string name_;
};

enum class WindowState { Normal = 0, Minimised = 1, Maximised = 2 };
inline std::string ValueText(WindowState state) { return std::to_string(static_cast<int>(state)); }

// Why a window is asked to close.
enum class UnloadMode { ControlMenu = 0, Code = 1, SystemShutdown = 2 };

class Window {
 public:
  Window(std::string name, std::string caption);
  virtual ~Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  const std::string& Name() const { return name_; }
  const std::vector<Control*>& Controls() const { return controls_; }
  Control* Find(std::string_view name) const;  // null when there is none
  void SetFace(Face* face) { face_ = face; }   // not owned; null: nobody looks
  void Notify(std::string_view property, const std::string& value);
  void Notify(const Control& control, std::string_view property, const std::string& value);

  Property<std::string, Window> Caption;
  Property<bool, Window> Visible{*this, "Visible", false};
  Property<WindowState, Window> State{*this, "WindowState", WindowState::Normal};
  Property<std::string, Window> Picture{*this, "Picture", ""};  // full path of the background; empty: none

  Event<int> KeyDown;  // virtual key code, before any control sees it
  Event<MouseButton> MouseDown, MouseMove;
  Event<> Activate, Resize;
  Event<UnloadMode> QueryUnload;

 private:
  friend class Control;
  std::string name_;
  std::vector<Control*> controls_;
  Face* face_ = nullptr;
};

}  // namespace controls
