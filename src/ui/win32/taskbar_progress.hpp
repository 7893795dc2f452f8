#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <shobjidl.h>

#include "platform/win32/com_apartment.hpp"
#include "ui/win32/unique_com.hpp"

namespace ui::win32 {

// The bar in a window's taskbar button, green, or red after a failure; does nothing where the taskbar has
// none.
class TaskbarProgress {
 public:
  TaskbarProgress();

  // The message that tells a window that it has a taskbar button; before it the taskbar takes no progress.
  UINT CreatedMessage() const { return created_; }
  void ButtonCreated();
  void Show(HWND window, int done, int whole, bool failed);  // none and all of it show no bar

 private:
  platform::ComApartment apartment_;
  UINT created_;
  UniqueCom<ITaskbarList3> taskbar_;
  TBPFLAG shown_ = TBPF_NOPROGRESS;
};

}  // namespace ui::win32
