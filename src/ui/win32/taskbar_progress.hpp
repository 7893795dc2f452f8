#pragma once

#include <windows.h>

#include <memory>

#include "platform/win32/com_apartment.hpp"

namespace ui::win32 {

// The green bar in a window's taskbar button; does nothing where the taskbar has none.
class TaskbarProgress {
 public:
  TaskbarProgress();
  ~TaskbarProgress();
  TaskbarProgress(const TaskbarProgress&) = delete;

  // The message that tells a window that it has a taskbar button; before it the taskbar takes no progress.
  UINT CreatedMessage() const { return created_; }
  void ButtonCreated();
  void Show(HWND window, int done, int whole);  // none and all of it show no bar

 private:
  struct List;
  platform::ComApartment apartment_;
  UINT created_;
  std::unique_ptr<List> list_;
  bool shown_ = false;
};

}  // namespace ui::win32
