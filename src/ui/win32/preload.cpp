#include "ui/win32/preload.hpp"

#include "platform/win32/system_library.hpp"

namespace ui::win32 {

Preload::Preload()
    : thread_([] { static_cast<void>(platform::LoadSystemLibrary(L"windowscodecs.dll").release()); }) {}

}  // namespace ui::win32
