#include "ui/win32/layout.hpp"

// The main window: sky and banner above, status panel and buttons below.
namespace ui::win32 {
namespace {

// clang-format off
constexpr LayoutRow kRows[] = {
    {"cmdIniciar", 512, 352, 368, 100},
    {"cmdConfig", 516, 476, 120, 48},
    {"cmdReiniciarUpdates", 636, 476, 120, 48},
    {"lblErrorWhatsApp", 521, 454, 350, 20, 9, 0xF3D690, Align::Right},
    {"cmdReportar", 756, 476, 120, 48},
    {"cmdCreditos", 756, 12, 40, 40},
    {"cmdMinimize", 796, 12, 40, 40},
    {"cmdClose", 836, 12, 40, 40},
    {"lblEstado", 44, 370, 434, 65, 10, 0xF2E6C4, Align::Left, Lines::Wrapped},
    {"lblName", 44, 443, 434, 20, 9, 0xDCE5FA},
    {"lblDirectorio", 44, 463, 434, 20, 9, 0xA9B8DC, Align::Left, Lines::Path},
    {"ProgressBar1", 45, 489, 432, 12},
    {"lblVelocity", 44, 507, 246, 20, 9, 0xDCE5FA},
    {"lblsize", 294, 507, 184, 20, 9, 0xDCE5FA, Align::Right},
    {"lblServerState(1)", 597, 95, 260, 42, 9, 0xDCE5FA, Align::Left, Lines::Wrapped},
    {"lblServerState(2)", 597, 137, 260, 42, 9, 0xDCE5FA, Align::Left, Lines::Wrapped},
    {"lblServerState(3)", 597, 179, 260, 42, 9, 0xDCE5FA, Align::Left, Lines::Wrapped},
    {"lblClienteGm", 604, 22, 148, 20, 9, 0xF3D690, Align::Right, Lines::Single, L"MS Sans Serif"},
};
// clang-format on

}  // namespace

const WindowLayout kMainLayout{"frmMain", 900, 560, Chrome::Borderless, 0x0A1026, kRows};

}  // namespace ui::win32
