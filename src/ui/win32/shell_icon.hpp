#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "ui/win32/gdi.hpp"

namespace ui::win32 {

// The icon in the notification area, told to the shell on a thread of its own: a shell that is busy keeps
// those who tell it something waiting, for seconds.
class ShellIcon {
 public:
  // The icon's mouse messages go to `window` as `callback`; the window outlives this.
  ShellIcon(HWND window, UINT callback) : window_(window), callback_(callback) {}
  ~ShellIcon();  // takes the icon away
  ShellIcon(const ShellIcon&) = delete;

  struct Look {
    std::shared_ptr<const UniqueIcon> icon;
    std::wstring tip;
  };
  // None: no icon. What is wanted already is told once more, since a shell that starts over forgets it.
  void Want(std::optional<Look> look);
  // Until the shell was told of everything, or that long.
  void Await(std::chrono::milliseconds longest);

 private:
  void TellAll(const std::stop_token& stop);
  void Tell(const std::optional<Look>& look);

  const HWND window_;
  const UINT callback_;
  std::mutex mutex_;
  std::condition_variable_any changed_;
  std::optional<Look> wanted_;
  bool due_ = false;  // the shell is to be told
  bool telling_ = false;
  bool there_ = false;   // of the thread alone: the shell has taken the icon
  std::jthread thread_;  // from the first wish on
};

}  // namespace ui::win32
