#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <objbase.h>

namespace platform {

// COM on the calling thread, for as long as this lives. What the shell calls to open something may need it.
class ComApartment {
 public:
  explicit ComApartment(COINIT kind = COINIT_APARTMENTTHREADED)
      : ready_(SUCCEEDED(CoInitializeEx(nullptr, kind | COINIT_DISABLE_OLE1DDE))) {}
  ~ComApartment() {
    if (ready_) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;

 private:
  bool ready_;
};

}  // namespace platform
