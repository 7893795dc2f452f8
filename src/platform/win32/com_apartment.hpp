#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <objbase.h>

namespace platform {

// COM on the calling thread, for as long as this lives. What the shell calls to open something may need it.
class ComApartment {
 public:
  ComApartment() : ready_(SUCCEEDED(CoInitializeEx(nullptr, kMode))) {}
  ~ComApartment() {
    if (ready_) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;

 private:
  static constexpr DWORD kMode = COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE;
  bool ready_;
};

}  // namespace platform
