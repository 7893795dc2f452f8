#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>

#include "controls/kinds.hpp"
#include "platform/posix/unique_fd.hpp"
#include "support/test_host.hpp"
#include "ui/terminal/terminal_screen.hpp"

namespace ui {
namespace {

using platform::DialogAnswer;
using platform::DialogButtons;

struct SampleWindow : controls::Window {
  explicit SampleWindow(platform::TimerQueue& timers)
      : Window("frmMain", "Caption"), tmr(*this, "tmr", timers, 100) {
    combo.Fill({"70", "100"});
    typed.Fill({"1", "2"});
  }
  controls::Label label{*this, "lblServerState(1)"};
  controls::ImageControl image{*this, "cmdIniciar"};
  controls::Button button{*this, "cmdSend"};
  controls::TextBox box{*this, "txtCantMensajes"};
  controls::ComboBox combo{*this, "cmbFPS"};
  controls::ComboBox typed{*this, "cmbWavsList"};
  controls::OptionButton one{*this, "optConsola", "1"}, two{*this, "optPantalla", "2"};
  controls::ProgressBar bar{*this, "ProgressBar1"};
  controls::Timer tmr;
};

// A terminal whose player writes into a pipe.
class NativeTerminal : public testing::Test {
 protected:
  NativeTerminal() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    input_ = platform::UniqueFd(ends[0]);
    player_ = platform::UniqueFd(ends[1]);
    screen.emplace(events, input_.get(), out, errors);
    screen->Attach(window);
    window.Visible = true;
    screen->StartUpDone();
    Printed();
  }
  ~NativeTerminal() override { screen->Detach(window); }

  void Put(const std::string& lines) {
    ASSERT_EQ(write(player_.get(), lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
  }
  void EndInput() { player_ = platform::UniqueFd(); }
  // What is printed because of these lines.
  std::string Type(const std::string& lines) {
    Put(lines + "\n");
    events.DoEvents();
    return Printed();
  }
  std::string Printed() { return std::exchange(out, std::ostringstream()).str(); }
  std::string Complaints() { return std::exchange(errors, std::ostringstream()).str(); }

  support::SteppedClock clock;
  platform::PosixEventLoop events{clock};
  std::ostringstream out, errors;
  std::optional<TerminalScreen> screen;
  SampleWindow window{events.Timers()};
  platform::UniqueFd input_, player_;
};

TEST_F(NativeTerminal, AWindowThatComesShownIsTold) {
  screen->Detach(window);
  screen->Attach(window);
  EXPECT_EQ(Printed(), "frmMain.Visible: True\n");
}

TEST_F(NativeTerminal, EveryChangeIsOneLine) {
  window.label.Caption = std::string("Estado:\r\n1\n2\x1B[2J");
  window.label.Caption = window.label.Caption.Get();  // no change
  window.label.ForeColor = 65280;
  window.label.Underline = true;
  window.button.Visible = false;
  window.button.Enabled = false;
  window.image.Picture = std::string("/skin/jugar_n.jpg");
  window.image.MouseIcon = std::string("/skin/HAND-M.CUR");
  window.bar.Max = 1234567;
  window.bar.Value = 0.5;
  window.combo.Select(1);
  window.tmr.Set(true);
  window.Caption = std::string("¡Cambios!");
  window.State = controls::WindowState::Minimised;
  EXPECT_EQ(Printed(),
            "frmMain.lblServerState(1): Estado:\\n1\\n2?[2J\n"
            "frmMain.lblServerState(1).ForeColor: 65280\n"
            "frmMain.lblServerState(1).FontUnderline: True\n"
            "frmMain.cmdSend.Visible: False\n"
            "frmMain.cmdSend.Enabled: False\n"
            "frmMain.cmdIniciar.Picture: jugar_n\n"
            "frmMain.ProgressBar1.Max: 1234567\n"
            "frmMain.ProgressBar1.Value: 0.5\n"
            "frmMain.cmbFPS.ListIndex: 1\n"
            "frmMain.cmbFPS.Text: 100\n"
            "frmMain.tmr.Enabled: True\n"
            "frmMain.Caption: ¡Cambios!\n"
            "frmMain.WindowState: 1\n");
}

TEST_F(NativeTerminal, ALineActsAsThePlayer) {
  std::string log;
  const auto note = [&log](const char* what) { return [&log, what] { log += std::string(what) + " "; }; };
  const auto noteButton = [&log](const char* what) {
    return [&log, what](controls::MouseButton button) {
      log += what + std::to_string(static_cast<int>(button)) + " ";
    };
  };
  window.image.MouseDown += noteButton("down");
  window.image.MouseUp += noteButton("up");
  window.image.Click += note("click");
  window.image.MouseMove += noteButton("over");
  window.MouseMove += noteButton("bare");
  window.box.LostFocus += note("left");
  window.combo.Change += note("chosen");
  window.typed.KeyUp += note("typed");
  window.one.Click += note("option");
  window.label.Click += note("label");
  window.KeyDown += [&](int key) { log += "key" + std::to_string(key) + " "; };
  window.QueryUnload +=
      [&](controls::UnloadMode mode) { log += "close" + std::to_string(static_cast<int>(mode)); };
  screen->TrayMessage += [&](int number) { log += "tray" + std::to_string(number) + " "; };
  screen->NotifyIcon(TrayAction::Add, "");
  window.image.Enabled = false;  // a picture hears of its clicks nevertheless
  window.two.Value = true;
  Printed();

  EXPECT_EQ(Type("frmMain.cmdIniciar\n  frmMain.cmdIniciar~ \nfrmMain~\nfrmMain.lblServerState(1)\nframe~"),
            "");
  EXPECT_EQ(Type("frmMain.txtCantMensajes= a=b ~"), "frmMain.txtCantMensajes.Text:  a=b ~\n");
  EXPECT_EQ(Type("frmMain.cmbFPS=100"), "frmMain.cmbFPS.ListIndex: 1\nfrmMain.cmbFPS.Text: 100\n");
  EXPECT_EQ(Type("frmMain.cmbWavsList=12"), "frmMain.cmbWavsList.Text: 12\n");
  EXPECT_EQ(Type("frmMain.optConsola"), "frmMain.optPantalla.Value: False\nfrmMain.optConsola.Value: True\n");
  Type("tray=515\nfrmMain.Esc\nfrmMain.close");
  EXPECT_EQ(log, "down1 up1 click over0 bare0 label left chosen typed option tray515 key27 close0");
  EXPECT_EQ(Complaints(), "frame~: there is no window frame\n");
}

TEST_F(NativeTerminal, WhatCannotBeDoneIsSaid) {
  int clicks = 0;
  window.button.Click += [&] { ++clicks; };
  window.label.Click += [&] { ++clicks; };
  window.button.Enabled = false;
  window.label.Visible = false;
  Printed();
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"hello", "hello: not understood\n"},
      {"tray=515", "tray=515: there is no icon in the notification area\n"},
      {"frmMain.none", "frmMain.none: there is no control none in frmMain\n"},
      {"frmMain.cmdSend", "frmMain.cmdSend: cmdSend is disabled\n"},
      {"frmMain.lblServerState(1)", "frmMain.lblServerState(1): lblServerState(1) is not visible\n"},
      {"frmMain.cmbFPS=71", "frmMain.cmbFPS=71: cmbFPS has no entry \"71\"\n"},
      {"frmMain.tmr", "frmMain.tmr: tmr is a timer, which nobody can see\n"},
      {"FrmSysTrays.mExit", "FrmSysTrays.mExit: there is no window FrmSysTrays\n"},
  };
  for (const auto& [line, complaint] : cases) {
    EXPECT_EQ(Type(line), "") << line;
    EXPECT_EQ(Complaints(), complaint);
  }
  window.State = controls::WindowState::Minimised;
  Type("frmMain.cmdIniciar");
  EXPECT_EQ(Complaints(), "frmMain.cmdIniciar: frmMain is minimised\n");
  window.Visible = false;
  Type("frmMain.close");
  EXPECT_EQ(Complaints(), "frmMain.close: frmMain is not visible\n");
  EXPECT_EQ(clicks, 0);
}

TEST_F(NativeTerminal, AQuestionTakesTheNextLine) {
  DialogAnswer answer = DialogAnswer::Ok;
  int clicksDuringQuestion = 0, clicks = 0;
  bool open = false;
  window.button.Click += [&] {
    open = true;
    answer = screen->Show("¿Seguir?\r\n\r\nSí", DialogButtons::YesNoCancel, "Título");
    open = false;
  };
  window.image.Click += [&] {
    ++clicks;
    clicksDuringQuestion += open ? 1 : 0;
  };
  EXPECT_EQ(Type("frmMain.cmdSend\nmaybe\nNo\nfrmMain.cmdIniciar"), "MsgBox [Título] ¿Seguir?\\n\\nSí\n");
  EXPECT_EQ(answer, DialogAnswer::No);
  EXPECT_EQ(Complaints(), "maybe: answer Yes, No or Cancel\n");
  events.DoEvents();
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(clicksDuringQuestion, 0);

  EXPECT_EQ(screen->Show("Listo", DialogButtons::Ok, "T"), DialogAnswer::Ok);
  Put("Cancel\nyes\n");
  EXPECT_EQ(screen->Show("¿?", DialogButtons::YesNo, "T"), DialogAnswer::Yes);
  EXPECT_EQ(Complaints(), "Cancel: answer Yes or No\n");
}

TEST_F(NativeTerminal, TheEndOfInputAnswersWithTheLastButton) {
  Put("Yes");
  EndInput();
  EXPECT_EQ(screen->Show("1", DialogButtons::YesNo, "T"), DialogAnswer::Yes);  // a last line without an end
  EXPECT_EQ(screen->Show("2", DialogButtons::YesNo, "T"), DialogAnswer::No);
  EXPECT_EQ(screen->Show("3", DialogButtons::YesNoCancel, "T"), DialogAnswer::Cancel);
  events.DoEvents();
}

}  // namespace
}  // namespace ui
