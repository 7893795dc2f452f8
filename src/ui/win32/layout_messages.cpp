#include "ui/win32/layout.hpp"

// The predefined-messages window.
namespace ui::win32 {
namespace {

// clang-format off
constexpr LayoutRow kRows[] = {
    {"lblMensajes", 20, 14, 520, 40, 9, 0xDCE5FA, Align::Left, Lines::Wrapped},
    {"Label1", 20, 66, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(0)", 112, 64, 428, 24, 9, 0xF2E6C4},
    {"Label2", 20, 100, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(1)", 112, 98, 428, 24, 9, 0xF2E6C4},
    {"Label3", 20, 134, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(2)", 112, 132, 428, 24, 9, 0xF2E6C4},
    {"Label4", 20, 168, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(3)", 112, 166, 428, 24, 9, 0xF2E6C4},
    {"Label5", 20, 202, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(4)", 112, 200, 428, 24, 9, 0xF2E6C4},
    {"Label6", 20, 236, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(5)", 112, 234, 428, 24, 9, 0xF2E6C4},
    {"Label7", 20, 270, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(6)", 112, 268, 428, 24, 9, 0xF2E6C4},
    {"Label8", 20, 304, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(7)", 112, 302, 428, 24, 9, 0xF2E6C4},
    {"Label9", 20, 338, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(8)", 112, 336, 428, 24, 9, 0xF2E6C4},
    {"Label10", 20, 372, 88, 20, 9, 0xDCE5FA},
    {"messageTxt(9)", 112, 370, 428, 24, 9, 0xF2E6C4},
    {"cmdAceptar", 304, 418, 114, 34, 9, 0xF2E6C4, Align::Center},
    {"cmdClose", 426, 418, 114, 34, 9, 0xF2E6C4, Align::Center},
};
// clang-format on

}  // namespace

const WindowLayout kMessagesLayout{"frmMessagesConfigurateds", 560, 468, Chrome::Dialog, 0x0D1530, kRows};

}  // namespace ui::win32
