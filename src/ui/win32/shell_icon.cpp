#include "ui/win32/shell_icon.hpp"

#include <shellapi.h>

#include <algorithm>
#include <utility>

namespace ui::win32 {
namespace {

constexpr UINT kIconId = 1;

}  // namespace

ShellIcon::~ShellIcon() {
  if (thread_.joinable()) Want(std::nullopt);
}

void ShellIcon::Want(std::optional<Look> look) {
  const std::lock_guard lock(mutex_);
  wanted_ = std::move(look);
  due_ = true;
  changed_.notify_all();
  if (!thread_.joinable()) thread_ = std::jthread([this](const std::stop_token& stop) { TellAll(stop); });
}

void ShellIcon::Await(std::chrono::milliseconds longest) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, longest, [this] { return !due_ && !telling_; });
}

// What was wanted before the end is still told.
void ShellIcon::TellAll(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  while (changed_.wait(lock, stop, [this] { return due_; })) {
    const std::optional<Look> look = wanted_;
    due_ = false;
    telling_ = true;
    lock.unlock();
    Tell(look);
    lock.lock();
    telling_ = false;
    changed_.notify_all();
  }
}

void ShellIcon::Tell(const std::optional<Look>& look) {
  NOTIFYICONDATAW data{};
  data.cbSize = NOTIFYICONDATAW_V1_SIZE;  // the layout whose tip is a field of 64 characters
  data.hWnd = window_;
  data.uID = kIconId;
  if (!look) {
    if (std::exchange(there_, false)) Shell_NotifyIconW(NIM_DELETE, &data);
    return;
  }
  data.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
  data.uCallbackMessage = callback_;
  data.hIcon = look->icon->get();
  std::copy_n(look->tip.begin(), std::min<std::size_t>(look->tip.size(), 63), data.szTip);
  there_ = (there_ && Shell_NotifyIconW(NIM_MODIFY, &data)) || Shell_NotifyIconW(NIM_ADD, &data);
}

}  // namespace ui::win32
