#include "ui/win32/taskbar_progress.hpp"

namespace ui::win32 {

TaskbarProgress::TaskbarProgress() : created_(RegisterWindowMessageW(L"TaskbarButtonCreated")) {}

void TaskbarProgress::ButtonCreated() {
  auto taskbar = Made<ITaskbarList3>([](ITaskbarList3** made) {
    return CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                            reinterpret_cast<void**>(made));
  });
  if (!taskbar || FAILED(taskbar->HrInit())) return;
  taskbar_ = std::move(taskbar);
  shown_ = TBPF_NOPROGRESS;
}

void TaskbarProgress::Show(HWND window, int done, int whole, bool failed) {
  if (!taskbar_) return;
  const bool running = done > 0 && done < whole;
  const TBPFLAG state = failed ? TBPF_ERROR : running ? TBPF_NORMAL : TBPF_NOPROGRESS;
  if (state != TBPF_NOPROGRESS) {
    taskbar_->SetProgressValue(window, static_cast<ULONGLONG>(done), static_cast<ULONGLONG>(whole));
  }
  if (state != shown_) taskbar_->SetProgressState(window, state);
  shown_ = state;
}

}  // namespace ui::win32
