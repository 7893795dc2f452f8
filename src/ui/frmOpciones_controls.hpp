#pragma once

#include "controls/kinds.hpp"
#include "settings/game_config.hpp"

namespace ui {

// The options window's controls by their names, in the order in which the keyboard walks them. A fixed
// caption beside a control carries that control's name in brackets.
struct OptionsWindow : controls::Window {
  static constexpr const char* kCaption = "Opciones - Kelvarin";  // until something of the video changes
  OptionsWindow() : Window("frmOpciones", kCaption) {}

  using Image = controls::ImageControl;
  using Label = controls::Label;
  using ComboBox = controls::ComboBox;

  // Video
  Label captionVideo_Mode{*this, "(cmbVideo_Mode)", "Modo de video:"};
  ComboBox cmbVideo_Mode{*this, "cmbVideo_Mode"};
  Label captionFPS{*this, "(cmbFPS)", "Límite de FPS:"};
  ComboBox cmbFPS{*this, "cmbFPS"};
  Label captionMemory{*this, "(cmbMemory)", "Memoria de video:"};
  ComboBox cmbMemory{*this, "cmbMemory"};
  Label lblMemory{*this, "lblMemory"};
  Image chkChangeResolution{*this, "chkChangeResolution"};
  Label lblPantallaCompleta{*this, "lblPantallaCompleta", "Pantalla completa"};
  Image chkOptimizedOptions{*this, "chkOptimizedOptions"};
  Label lblPerformance{*this, "lblPerformance", "Optimizar rendimiento"};

  // Game
  Image chkMiniMap{*this, "chkMiniMap"};
  Label captionMiniMap{*this, "(chkMiniMap)", "Mostrar minimapa"};
  Image chkCast{*this, "chkCast"};
  Label captionCast{*this, "(chkCast)", "Lanzar con clic en el hechizo"};
  Image chkClick{*this, "chkClick"};
  Label captionClick{*this, "(chkClick)", "Conservar la cruz del mouse"};
  Image imgCustomKeys1{*this, "imgCustomKeys1"};

  // Sound
  Image chkSound{*this, "chkSound"};
  Label captionSound{*this, "(chkSound)", "Efectos de sonido"};
  Label captionSoundVolume{*this, "(lblSoundVolume)", "Volumen"};
  Image imgLessSoundVolume{*this, "imgLessSoundVolume"};
  Label lblSoundVolume{*this, "lblSoundVolume"};
  Image imgPlusSoundVolume{*this, "imgPlusSoundVolume"};
  Image chkMusic{*this, "chkMusic"};
  Label captionMusic{*this, "(chkMusic)", "Música"};
  Label captionMusicVolume{*this, "(lblMusicVolume)", "Volumen"};
  Image imgLessMusicVolume{*this, "imgLessMusicVolume"};
  Label lblMusicVolume{*this, "lblMusicVolume"};
  Image imgPlusMusicVolume{*this, "imgPlusMusicVolume"};
  Image chkSound3DEffects{*this, "chkSound3DEffects"};
  Label captionSound3DEffects{*this, "(chkSound3DEffects)", "Sonido 3D"};
  Image chkAmbientSounds{*this, "chkAmbientSounds"};
  Label captionAmbientSounds{*this, "(chkAmbientSounds)", "Sonidos ambientales"};
  Image chkNormaliceSounds{*this, "chkNormaliceSounds"};
  Label captionNormaliceSounds{*this, "(chkNormaliceSounds)", "Normalizar sonidos"};
  Image chkInvertSound{*this, "chkInvertSound"};
  Label captionInvertSound{*this, "(chkInvertSound)", "Invertir izquierda y derecha"};
  Label captionWavsList{*this, "(cmbWavsList)", "Sonido por número (1 a 305):"};
  ComboBox cmbWavsList{*this, "cmbWavsList"};  // any text may be typed
  Image chkSilenciarWav{*this, "chkSilenciarWav"};
  Label captionSilenciarWav{*this, "(chkSilenciarWav)", "Silenciado"};

  // Effects
  Image chkArrowEffect{*this, "chkArrowEffect"};
  Label lblArrowEffect{*this, "lblArrowEffect", "Efecto de flechas"};
  Image chkDieEffect{*this, "chkDieEffect"};
  Label lblDieEffect{*this, "lblDieEffect", "Efecto al morir"};
  Image chkTextEffect{*this, "chkTextEffect"};
  Label lblTextEffect{*this, "lblTextEffect", "Efectos de texto"};
  Image chkEffect_Time{*this, "chkEffect_Time"};
  Label lblTimeEffect{*this, "lblTimeEffect", "Efectos de tiempo"};

  // Messages
  Image chkCarteles{*this, "chkCarteles"};
  Label captionCarteles{*this, "(chkCarteles)", "Avisar hechizo/golpe rápido"};
  Image chkFiltro{*this, "chkFiltro"};
  Label captionFiltro{*this, "(chkFiltro)", "Filtrar insultos"};
  Label captionConsola{*this, "(optConsola)", "Mensajes del clan:"};
  controls::OptionButton optConsola{*this, "optConsola", "En consola y overhead"};
  controls::OptionButton optPantalla{*this, "optPantalla", "En pantalla,"};
  controls::TextBox txtCantMensajes{*this, "txtCantMensajes"};
  Label captionCantMensajes{*this, "(txtCantMensajes)", "mensajes"};
  Image imgCustomMsg{*this, "imgCustomMsg"};

  // Links and foot
  Image imgManual{*this, "imgManual"};
  Image imgReglamento{*this, "imgReglamento"};
  Image imgWeb{*this, "imgWeb"};
  Image imgDonar{*this, "imgDonar"};
  Image imgMapa{*this, "imgMapa"};
  Label Label3{*this, "Label3", "Los cambios se guardan al instante."};
  Image imgDefaultOptions{*this, "imgDefaultOptions"};
  Image imgCerrar{*this, "imgCerrar"};

  // Whether the frame rate or the video mode was changed since the window was opened.
  bool FrameRateChanged = false;
  bool VideoModeChanged = false;
};

// When a check shows its field again beside its own clicks, and what else its click does.
enum CheckTrait : unsigned {
  kPlain = 0,
  kOnActivate = 1,       // refreshed each time the window is activated
  kOnOptimise = 2,       // refreshed after the performance switch
  kOnReset = 4,          // shown as on by a reset
  kShowsVolumes = 8,     // its click rewrites the volume labels
  kSwitchesEffects = 16  // the performance switch itself
};

// A check control that shows and toggles one field; one with texts tells the player what the new state means.
struct Check {
  controls::ImageControl OptionsWindow::*control;
  controls::Label OptionsWindow::*caption;  // its click counts as the control's
  bool settings::GameConfig::*field;
  unsigned traits = kPlain;
  const char* textOn = nullptr;
  const char* textOff = nullptr;
};

using OW = OptionsWindow;
using GC = settings::GameConfig;
inline constexpr Check kChecks[] = {
    {&OW::chkChangeResolution, &OW::lblPantallaCompleta, &GC::FullScreenResolution, kOnActivate},
    {&OW::chkOptimizedOptions, &OW::lblPerformance, &GC::OptimizarRendimiento,
     kOnOptimise | kSwitchesEffects},
    {&OW::chkMiniMap, &OW::captionMiniMap, &GC::MiniMapa, kOnActivate},
    {&OW::chkCast, &OW::captionCast, &GC::Effect_Cast_Spells, kOnActivate,
     "Al hacer clic en un hechizo directamente en el inventario de Hechizos, podrás lanzarlo directamente, "
     "sin "
     "tener que apretar el botón 'LANZAR'",
     "Para lanzar un hechizo, debes apretar el botón 'LANZAR' luego de seleccionarlo."},
    {&OW::chkClick, &OW::captionClick, &GC::Effect_Clic_Spells, kOnActivate,
     "Si lanzas un hechizo o flecha muy rápido, la cruz del mouse NO se irá y podrás hacer clic de nuevo "
     "para "
     "lanzar cuando el intervalo haya finalizado.",
     "Si lanzas un hechizo o flecha muy rápido, la cruz del mouse desaparecerá y tendrás que volver a "
     "apretar "
     "lanzar/caster el hechizo o flecha."},
    {&OW::chkSound, &OW::captionSound, &GC::Sound_Activated, kOnActivate | kOnReset | kShowsVolumes},
    {&OW::chkMusic, &OW::captionMusic, &GC::Music_Activated,
     kOnActivate | kOnOptimise | kOnReset | kShowsVolumes},
    {&OW::chkSound3DEffects, &OW::captionSound3DEffects, &GC::Sound3D_Activated,
     kOnActivate | kOnOptimise | kOnReset},
    {&OW::chkAmbientSounds, &OW::captionAmbientSounds, &GC::AmbientSounds, kOnOptimise},
    {&OW::chkNormaliceSounds, &OW::captionNormaliceSounds, &GC::NormaliceSounds},
    {&OW::chkInvertSound, &OW::captionInvertSound, &GC::InvertSounds},
    {&OW::chkArrowEffect, &OW::lblArrowEffect, &GC::Effect_Arrows, kOnOptimise | kOnReset},
    {&OW::chkDieEffect, &OW::lblDieEffect, &GC::Effect_Die, kOnOptimise},
    {&OW::chkTextEffect, &OW::lblTextEffect, &GC::Effect_Text, kOnOptimise},
    {&OW::chkEffect_Time, &OW::lblTimeEffect, &GC::Effect_Time, kOnOptimise},
    {&OW::chkCarteles, &OW::captionCarteles, &GC::IntervalMessages, kOnActivate,
     "Si lanzas un hechizo/golpe demasiado rápido, se te avisará por aquí.",
     "No recibirás notificación al intentar lanzar un hechizo/golpe muy rápido."},
    {&OW::chkFiltro, &OW::captionFiltro, &GC::Effect_Filter, kOnActivate | kOnOptimise | kOnReset,
     "No verás los insultos de los usuarios, y éstos serán reemplazados por sinónimos que creemos "
     "inofensivos.",
     "Verás todos los mensajes de los usuarios SIN CENSURA, (no es recomendable para la salud mental)."},
};

// The pictures of the window's other buttons.
struct OptionButtonPicture {
  controls::ImageControl OptionsWindow::*control;
  const char* picture;
  const char* description;
  const char* sign = "";
};

inline constexpr OptionButtonPicture kOptionButtons[] = {
    {&OW::imgCerrar, "cerrar", "Cerrar"},
    {&OW::imgCustomKeys1, "teclas", "Configurar teclas"},
    {&OW::imgDonar, "donar", "Donar"},
    {&OW::imgManual, "manual", "Manual"},
    {&OW::imgReglamento, "reglamento", "Reglamento"},
    {&OW::imgWeb, "web", "Sitio web"},
    {&OW::imgCustomMsg, "mensajes", "Mensajes predefinidos"},
    {&OW::imgDefaultOptions, "default", "Restablecer"},
    {&OW::imgPlusSoundVolume, "mas", "Subir el volumen de los efectos", "+"},
    {&OW::imgLessSoundVolume, "menos", "Bajar el volumen de los efectos", "–"},
    {&OW::imgPlusMusicVolume, "mas", "Subir el volumen de la música", "+"},
    {&OW::imgLessMusicVolume, "menos", "Bajar el volumen de la música", "–"},
};

}  // namespace ui
