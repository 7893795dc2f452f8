#include "ui/win32/taskbar_progress.hpp"

#include <shobjidl.h>

namespace ui::win32 {

struct TaskbarProgress::List {
  ITaskbarList3* taskbar = nullptr;
  ~List() {
    if (taskbar) taskbar->Release();
  }
};

TaskbarProgress::TaskbarProgress() : created_(RegisterWindowMessageW(L"TaskbarButtonCreated")) {}

TaskbarProgress::~TaskbarProgress() = default;

void TaskbarProgress::ButtonCreated() {
  auto list = std::make_unique<List>();
  if (FAILED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                              reinterpret_cast<void**>(&list->taskbar)))) {
    return;
  }
  if (SUCCEEDED(list->taskbar->HrInit())) list_ = std::move(list);
}

void TaskbarProgress::Show(HWND window, int done, int whole) {
  if (!list_) return;
  const bool running = done > 0 && done < whole;
  if (running) {
    list_->taskbar->SetProgressValue(window, static_cast<ULONGLONG>(done), static_cast<ULONGLONG>(whole));
  } else if (shown_) {
    list_->taskbar->SetProgressState(window, TBPF_NOPROGRESS);
  }
  shown_ = running;
}

}  // namespace ui::win32
