#pragma once

#include <array>

#include "controls/kinds.hpp"

namespace controls {

// The main window's controls by their names. The update engine writes captions here and knows nothing of
// windows.
struct MainWindow : Window {
  explicit MainWindow(platform::TimerQueue& timers);

  ImageControl cmdClose{*this, "cmdClose"};
  ImageControl cmdCreditos{*this, "cmdCreditos"};
  ImageControl cmdMinimize{*this, "cmdMinimize"};
  ImageControl cmdIniciar{*this, "cmdIniciar"};
  ImageControl cmdConfig{*this, "cmdConfig"};
  ImageControl cmdReiniciarUpdates{*this, "cmdReiniciarUpdates"};
  ImageControl cmdReportar{*this, "cmdReportar"};

  Label lblEstado{*this, "lblEstado", "Presione el botón ¡JUGAR!"};
  Label lblErrorWhatsApp{*this, "lblErrorWhatsApp", "Error? Comunicate a nuestro WhatsApp:"};
  Label lblServerState1{*this, "lblServerState(1)", "Servidor Estado:"};
  Label lblServerState2{*this, "lblServerState(2)", "Servidor Estado:"};
  Label lblServerState3{*this, "lblServerState(3)", "Servidor Estado:"};
  std::array<Label*, 3> lblServerState{&lblServerState1, &lblServerState2, &lblServerState3};
  Label lblClienteGm{*this, "lblClienteGm", "ClienteGM"};
  Label lblName{*this, "lblName"};
  Label lblsize{*this, "lblsize"};
  Label lblDirectorio{*this, "lblDirectorio"};
  Label lblVelocity{*this, "lblVelocity"};
  ProgressBar ProgressBar1{*this, "ProgressBar1"};

  Button cmdSend{*this, "cmdSend"};
  Button Command{*this, "Command"};

  // What lblEstado shows while nothing reports its progress: the text of what the pointer is over, or why the
  // last run failed. Not a control.
  std::string restingStatus;

  Timer NewsTimer;  // named "Timer"
  Timer tmrUpdates;
  Timer tmrShow;
};

}  // namespace controls
