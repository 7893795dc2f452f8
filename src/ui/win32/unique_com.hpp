#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <unknwn.h>

#include <memory>

namespace ui::win32 {

struct ComReleaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using UniqueCom = std::unique_ptr<Interface, ComReleaser>;

// What a call of the form `make(Interface**)` gives; null when it fails.
template <class Interface, class Make>
UniqueCom<Interface> Made(Make make) {
  Interface* object = nullptr;
  return SUCCEEDED(make(&object)) ? UniqueCom<Interface>(object) : nullptr;
}

}  // namespace ui::win32
