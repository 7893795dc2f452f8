#include "ui/win32/layout.hpp"

// The options window: video, game, sound, effects and messages in panels, links along the foot.
namespace ui::win32 {
namespace {

// clang-format off
constexpr LayoutRow kRows[] = {
    {"(cmbVideo_Mode)", 34, 110, 120, 20, 9, 0xDCE5FA},
    {"cmbVideo_Mode", 154, 108, 116, 24, 9, 0xF2E6C4},
    {"(cmbFPS)", 34, 142, 120, 20, 9, 0xDCE5FA},
    {"cmbFPS", 154, 140, 116, 24, 9, 0xF2E6C4},
    {"(cmbMemory)", 34, 174, 120, 20, 9, 0xDCE5FA},
    {"cmbMemory", 154, 172, 116, 24, 9, 0xF2E6C4},
    {"lblMemory", 154, 198, 116, 18, 9, 0xF3D690},
    {"chkChangeResolution", 30, 224, 24, 24},
    {"lblPantallaCompleta", 58, 226, 212, 20, 9, 0xDCE5FA},
    {"chkOptimizedOptions", 30, 256, 24, 24},
    {"lblPerformance", 58, 258, 212, 20, 9, 0xDCE5FA},
    {"chkMiniMap", 30, 342, 24, 24},
    {"(chkMiniMap)", 58, 344, 212, 20, 9, 0xDCE5FA},
    {"chkCast", 30, 372, 24, 24},
    {"(chkCast)", 58, 374, 212, 20, 9, 0xDCE5FA},
    {"chkClick", 30, 402, 24, 24},
    {"(chkClick)", 58, 404, 212, 20, 9, 0xDCE5FA},
    {"imgCustomKeys1", 28, 436, 248, 40},
    {"chkSound", 308, 108, 24, 24},
    {"(chkSound)", 336, 110, 212, 20, 9, 0xDCE5FA},
    {"(lblSoundVolume)", 336, 141, 72, 20, 9, 0xA9B8DC},
    {"imgLessSoundVolume", 412, 137, 28, 28},
    {"lblSoundVolume", 442, 141, 60, 20, 10, 0xF3D690, Align::Center},
    {"imgPlusSoundVolume", 504, 137, 28, 28},
    {"chkMusic", 308, 178, 24, 24},
    {"(chkMusic)", 336, 180, 212, 20, 9, 0xDCE5FA},
    {"(lblMusicVolume)", 336, 211, 72, 20, 9, 0xA9B8DC},
    {"imgLessMusicVolume", 412, 207, 28, 28},
    {"lblMusicVolume", 442, 211, 60, 20, 10, 0xF3D690, Align::Center},
    {"imgPlusMusicVolume", 504, 207, 28, 28},
    {"chkSound3DEffects", 308, 250, 24, 24},
    {"(chkSound3DEffects)", 336, 252, 212, 20, 9, 0xDCE5FA},
    {"chkAmbientSounds", 308, 282, 24, 24},
    {"(chkAmbientSounds)", 336, 284, 212, 20, 9, 0xDCE5FA},
    {"chkNormaliceSounds", 308, 314, 24, 24},
    {"(chkNormaliceSounds)", 336, 316, 212, 20, 9, 0xDCE5FA},
    {"chkInvertSound", 308, 346, 24, 24},
    {"(chkInvertSound)", 336, 348, 212, 20, 9, 0xDCE5FA},
    {"(cmbWavsList)", 312, 396, 236, 20, 9, 0xDCE5FA},
    {"cmbWavsList", 312, 424, 92, 24, 9, 0xF2E6C4},
    {"chkSilenciarWav", 416, 424, 24, 24},
    {"(chkSilenciarWav)", 444, 426, 104, 20, 9, 0xDCE5FA},
    {"chkArrowEffect", 586, 106, 24, 24},
    {"lblArrowEffect", 614, 108, 212, 20, 9, 0xDCE5FA},
    {"chkDieEffect", 586, 136, 24, 24},
    {"lblDieEffect", 614, 138, 212, 20, 9, 0xDCE5FA},
    {"chkTextEffect", 586, 166, 24, 24},
    {"lblTextEffect", 614, 168, 212, 20, 9, 0xDCE5FA},
    {"chkEffect_Time", 586, 196, 24, 24},
    {"lblTimeEffect", 614, 198, 212, 20, 9, 0xDCE5FA},
    {"chkCarteles", 586, 280, 24, 24},
    {"(chkCarteles)", 614, 282, 212, 20, 9, 0xDCE5FA},
    {"chkFiltro", 586, 310, 24, 24},
    {"(chkFiltro)", 614, 312, 212, 20, 9, 0xDCE5FA},
    {"(optConsola)", 590, 349, 238, 20, 9, 0xA9B8DC},
    {"optConsola", 590, 372, 238, 22, 9, 0xDCE5FA},
    {"optPantalla", 590, 401, 116, 22, 9, 0xDCE5FA},
    {"(txtCantMensajes)", 754, 402, 74, 20, 9, 0xDCE5FA},
    {"txtCantMensajes", 708, 400, 40, 24, 9, 0xF2E6C4, Align::Center},
    {"imgCustomMsg", 584, 436, 248, 40},
    {"imgManual", 136, 500, 140, 40},
    {"imgReglamento", 276, 500, 140, 40},
    {"imgWeb", 416, 500, 140, 40},
    {"imgDonar", 556, 500, 140, 40},
    {"imgMapa", 696, 500, 140, 40},
    {"Label3", 20, 566, 500, 20, 9, 0xA9B8DC},
    {"imgDefaultOptions", 556, 556, 144, 40},
    {"imgCerrar", 700, 556, 144, 40},
};
// clang-format on

}  // namespace

const WindowLayout kOptionsLayout{"frmOpciones", 860, 600, Chrome::Dialog, 0x0A1026, kRows};

}  // namespace ui::win32
