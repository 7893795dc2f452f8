#pragma once

#include <functional>
#include <optional>
#include <string>

#include "startup/procedure.hpp"
#include "ui/clsGraphicalButton.hpp"

namespace ui {

// What a window makes of a failure of its own.
using Words = std::function<std::string(const startup::Failure&)>;

// The pictures of one window, all in one folder of the skin. A skin that lacks some of them still gives a
// window that works: a place without its picture stays plain, and the first picture missing is told, once.
class SkinPictures {
 public:
  explicit SkinPictures(std::string folder) : folder_(std::move(folder)) {}  // with its separator

  // Full path of a picture that a skin may do without; empty when it does.
  std::string Optional(const std::string& file) const;
  // Full path of one that every skin should have; empty and remembered when this one does not. `line` is the
  // caller's own.
  std::string Required(const std::string& file, int line);

  struct Button {
    std::string stem;             // of its pictures "_n", "_a" and "_c"
    const char* disabled = "_c";  // which of them stands for the disabled one
    bool startDisabled = false;
    std::string handPointer = {};  // a cursor file, full path; empty: the arrow
  };
  // The look of a button that has no behaviour: the normal picture, which never lights up.
  static Button Idle(std::string stem) { return {std::move(stem), "_n", true}; }
  void Load(clsGraphicalButton& button, controls::ImageControl& image, const Button& look,
            LastPressedHolder& window, int line);

  // Records the first picture that was missing since the last time.
  void ReportMissing(startup::ErrorRecorder& recorder, const Words& words);

 private:
  std::string folder_;
  std::optional<startup::Failure> missing_;
};

}  // namespace ui
