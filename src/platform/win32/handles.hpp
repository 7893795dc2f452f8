#pragma once

#include <windows.h>
#include <winhttp.h>

#include <utility>

namespace platform {

// Owns one system handle. Traits: Type, Invalid() and Close(Type).
template <class Traits>
class UniqueHandle {
 public:
  using Type = typename Traits::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, Traits::Invalid())) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(std::exchange(other.handle_, Traits::Invalid()));
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  Type Get() const { return handle_; }
  explicit operator bool() const { return handle_ != Traits::Invalid(); }
  void Reset(Type handle = Traits::Invalid()) {
    const Type old = std::exchange(handle_, handle);
    if (old != Traits::Invalid()) Traits::Close(old);
  }
  Type* Receive() {  // for calls that hand a handle out
    Reset();
    return &handle_;
  }

 private:
  Type handle_ = Traits::Invalid();
};

namespace handle_traits {

struct File {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { CloseHandle(handle); }
};

struct Kernel {  // events, mutexes, processes, threads
  using Type = HANDLE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { CloseHandle(handle); }
};

struct Find {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { FindClose(handle); }
};

struct RegistryKey {
  using Type = HKEY;
  static Type Invalid() { return nullptr; }
  static void Close(Type key) { RegCloseKey(key); }
};

struct Internet {
  using Type = HINTERNET;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { WinHttpCloseHandle(handle); }
};

struct Window {
  using Type = HWND;
  static Type Invalid() { return nullptr; }
  static void Close(Type window) { DestroyWindow(window); }
};

struct Icon {
  using Type = HICON;
  static Type Invalid() { return nullptr; }
  static void Close(Type icon) { DestroyIcon(icon); }
};

}  // namespace handle_traits

using unique_file = UniqueHandle<handle_traits::File>;
using unique_snapshot = UniqueHandle<handle_traits::File>;  // Toolhelp has the invalid value of files
using unique_event = UniqueHandle<handle_traits::Kernel>;
using unique_mutex = UniqueHandle<handle_traits::Kernel>;
using unique_process = UniqueHandle<handle_traits::Kernel>;
using unique_thread = UniqueHandle<handle_traits::Kernel>;
using unique_find = UniqueHandle<handle_traits::Find>;
using unique_registry_key = UniqueHandle<handle_traits::RegistryKey>;
using unique_internet = UniqueHandle<handle_traits::Internet>;
using unique_window = UniqueHandle<handle_traits::Window>;
using unique_icon = UniqueHandle<handle_traits::Icon>;

}  // namespace platform
