#include "ui/win32/layout.hpp"

// The news pop-up.
namespace ui::win32 {
namespace {

// clang-format off
constexpr LayoutRow kRows[] = {
    {"lblTitle", 96, 14, 228, 58, 10, 0xF3D690, Align::Left, Lines::Wrapped},
    {"lblNews", 96, 86, 228, 34, 9, 0xDCE5FA, Align::Left, Lines::Wrapped},
};
// clang-format on

}  // namespace

const WindowLayout kNewsLayout{"frmNotify", 340, 130, Chrome::Notice, 0x0A1026, kRows};

}  // namespace ui::win32
