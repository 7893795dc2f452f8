#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <thread>

#include "launcher.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/win32/event_loop_win32.hpp"
#include "startup/launcher_settings.hpp"
#include "support/game_mirror.hpp"
#include "support/temp_folder.hpp"
#include "support/test_host.hpp"
#include "support/win32/picture_file.hpp"
#include "ui/win32/win32_dialogs.hpp"
#include "ui/win32/win32_screen.hpp"

namespace {

constexpr const char* kGame = "juego ñ";

// The machine's own clock, of a machine that may have started just now.
struct MachineClock : platform::Clock {
  std::uint64_t Milliseconds() override { return real->Milliseconds(); }
  std::uint32_t SystemUptime() override { return freshlyBooted ? 5'000 : 3'600'000; }
  void Sleep(std::uint32_t milliseconds) override { real->Sleep(milliseconds); }
  std::int64_t UnixTime() override { return real->UnixTime(); }
  std::string DateText() override { return real->DateText(); }
  std::string TimeText() override { return real->TimeText(); }
  std::unique_ptr<platform::Clock> real = platform::MakeClock();
  bool freshlyBooted = false;
};

// A whole launcher with real windows, real time and a mirror on loopback.
struct WindowsLauncherTest : testing::Test {
  WindowsLauncherTest() {
    namespace keys = startup::keys;
    for (const char* section : {keys::kLastUrl, keys::kUrlWeb}) {
      machine.settings->Set(keys::kApplication, section, keys::kUrl, "");
    }
    machine.settings->Set(keys::kApplication, keys::kConfig, keys::kShow, "");
    machine.settings->Set(keys::kLibraries, keys::kVersion, keys::kV, "0.4.1");
    events.preTranslate = [this](MSG& message) { return screen.Translate(message); };
    dialogs.SetScreen(&screen);
    for (const platform::FoundFile& found : platform::ListTree(LAUNCHER_SKIN)) {
      platform::CloneFile(LAUNCHER_SKIN + found.path, [&] {
        const std::string target = folder / (std::string(kGame) + "/RECURSOS/GRAFICOS/" + found.path);
        platform::MakeFolders(platform::FolderOf(target));
        return target;
      }());
    }
  }

  bool Unpacking() const {
    const std::string staging = folder / (std::string(kGame) + "/RECURSOS/INIT/UPDATE/Unzip");
    return platform::IsFolder(staging) && !platform::ListFolder(staging).empty();
  }
  void Start(platform::Dialogs& boxes) {
    mirror.Publish();
    support::Deploy(folder, kGame, {mirror.Url()}, mirror.server.Url(""));
    host.emplace(platform::Host{clock, events, boxes, machine.processes, machine.shell, *machine.settings,
                                *machine.profiles, *machine.http});
    launcher.emplace(*host, screen, ::Start{folder / (std::string(kGame) + "/launcher.exe"), ""});
    launcher->Main();
    handle = screen.HandleOf(launcher->MainWindow());
  }

  bool Until(const std::function<bool()>& condition) {
    const auto end = GetTickCount64() + 60'000;
    while (!condition()) {
      if (GetTickCount64() > end) return false;
      events.WaitEvents(10);
    }
    return true;
  }

  support::TempFolder folder;
  support::GameMirror mirror;
  support::TestHost machine;  // its clock and message boxes are not used
  MachineClock clock;
  platform::Win32EventLoop events{clock};
  ui::win32::Win32Screen screen;
  ui::win32::Win32Dialogs dialogs;
  std::optional<platform::Host> host;
  std::optional<Launcher> launcher;
  HWND handle = nullptr;
};

enum Phase { kOther, kDownloading, kUnpacking, kVerifying, kPhases };

// Asks a window again and again, from a thread of its own, whether it still answers.
class Watcher {
 public:
  explicit Watcher(HWND window)
      : thread_([this, window](std::stop_token stop) {
          while (!stop.stop_requested()) {
            const Phase phase = now;
            DWORD_PTR result = 0;
            const bool answers = SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 60'000, &result);
            answered[phase] += answers && now == phase;
            Sleep(2);
          }
          ended = true;
        }) {}

  // What it asks last must still be answered: the window's thread goes on until `ended`.
  void Stop() { thread_.request_stop(); }

  std::atomic<bool> ended = false;

  std::atomic<Phase> now = kOther;
  std::array<std::atomic<int>, kPhases> answered{};  // how often within the phase

 private:
  std::jthread thread_;
};

TEST_F(WindowsLauncherTest, WindowAnswersWhileWorkGoesOn) {
  constexpr std::size_t kLarge = 48u << 20;
  std::string large(kLarge, '\0');
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i >> 8);
  const std::string digest = support::Md5Of(large);
  for (int i = 1; i <= 3; ++i) {
    const std::string name = "datos" + std::to_string(i) + ".bin";
    folder.Put(std::string(kGame) + "/Bin/" + name, large);
    mirror.AddIndexRecord({digest, "\\Bin\\" + name});
  }
  const std::vector<support::ZipItem> patch = {
      {.name = "RECURSOS/GRAFICOS/1.dat", .bytes = large},
      {.name = "RECURSOS/GRAFICOS/2.dat", .bytes = large.substr(0, 4u << 20), .stored = true}};
  mirror.AddPatch("Graficos", patch);
  support::Answer slow = support::Text(support::MakeZip(patch));
  slow.paceBytes = 64 * 1024;
  slow.paceMs = 15;
  mirror.server.On(mirror.PathOf("OldAct/Graficos/Graficos1.zip"), slow);
  Start(machine.dialogs);
  ASSERT_TRUE(IsWindowVisible(handle));

  Watcher watcher(handle);
  const auto timer = events.Timers().Start(3, [&] {
    const std::string status = launcher->MainWindow().lblEstado.Caption;
    watcher.now = status.starts_with("Archivos verificados") ||
                          mirror.server.Count(mirror.PathOf("NewAct2/Info.kvn")) > 0
                      ? kVerifying
                  : Unpacking()                                                             ? kUnpacking
                  : mirror.server.Count(mirror.PathOf("OldAct/Graficos/Graficos1.zip")) > 0 ? kDownloading
                                                                                            : kOther;
  });
  launcher->MainWindow().cmdIniciar.Click();
  EXPECT_TRUE(Until([&] { return launcher->Life().Ending(); }));
  events.Timers().Stop(timer);
  watcher.Stop();
  EXPECT_TRUE(Until([&] { return watcher.ended.load(); }));
  EXPECT_EQ(folder.Get(std::string(kGame) + "/RECURSOS/GRAFICOS/1.dat").size(), kLarge);
  for (const Phase phase : {kDownloading, kUnpacking, kVerifying}) {
    EXPECT_GT(watcher.answered[phase], 20) << "no answers while phase " << phase << " went on";
  }
}

TEST_F(WindowsLauncherTest, StartedWithTheSystemItWaitsBesideTheClock) {
  clock.freshlyBooted = true;
  Start(machine.dialogs);
  EXPECT_FALSE(launcher->Life().Ending());
  EXPECT_FALSE(IsWindowVisible(handle));
  SendMessageW(FindWindowW(L"LauncherTray", nullptr), WM_MOUSEMOVE, 0, WM_LBUTTONDBLCLK);
  EXPECT_TRUE(IsWindowVisible(handle));
  EXPECT_FALSE(IsIconic(handle));
  EXPECT_GT(support::TakePicture(handle).Colours(), 100u) << "restored without its content";
}

// Whatever the system does once it has its answer: the worker has ended, the game is as before the patch or
// as after it, and the next start does the rest.
TEST_F(WindowsLauncherTest, TheEndOfTheSessionLeavesNothingHalfDone) {
  const std::string large(24u << 20, 'x');
  const std::string target = std::string(kGame) + "/RECURSOS/GRAFICOS/1.dat";
  mirror.AddPatch("Graficos", {{.name = "RECURSOS/GRAFICOS/1.dat", .bytes = large}});
  mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  Start(machine.dialogs);
  bool ended = false;
  const auto timer = events.Timers().Start(3, [&] {
    if (ended || !Unpacking()) return;
    ended = true;
    EXPECT_EQ(SendMessageW(handle, WM_QUERYENDSESSION, 0, 0), TRUE);
    SendMessageW(handle, WM_ENDSESSION, TRUE, 0);
    EXPECT_FALSE(Unpacking()) << "the worker goes on";
    const std::string now = folder.Get(target);
    EXPECT_TRUE(now.empty() || now == large) << now.size();
  });
  launcher->MainWindow().cmdIniciar.Click();
  EXPECT_TRUE(Until([&] { return launcher->Life().Ending(); }));
  events.Timers().Stop(timer);
  EXPECT_TRUE(ended);
  launcher.reset();
  Start(machine.dialogs);
  launcher->MainWindow().cmdIniciar.Click();
  EXPECT_TRUE(Until([&] { return launcher->Life().Ending(); }));
  EXPECT_EQ(folder.Get(target), large);
}

TEST_F(WindowsLauncherTest, OpenMessageBoxDoesNotKeepTheProgramFromEnding) {
  Start(dialogs);
  const struct {
    platform::DialogButtons buttons;
    platform::DialogAnswer answer;
  } rows[] = {{platform::DialogButtons::YesNo, platform::DialogAnswer::No},
              {platform::DialogButtons::YesNoCancel, platform::DialogAnswer::Cancel},
              {platform::DialogButtons::Ok, platform::DialogAnswer::Ok}};
  // Boxes over boxes: the innermost one is open when the program ends.
  std::vector<platform::DialogAnswer> answers;
  platform::TimerQueue::Id timer = 0;
  const std::function<void(std::size_t)> open = [&](std::size_t at) {
    if (at == std::size(rows)) {
      EXPECT_TRUE(FindWindowW(L"#32770", nullptr));
      launcher->CloseLauncher();
      return;
    }
    timer = events.Timers().Start(50, [&, at] {
      events.Timers().Stop(timer);
      open(at + 1);
    });
    answers.insert(answers.begin(), host->dialogs.Show("¿Seguro?", rows[at].buttons, "¡ATENCIÓN!"));
  };
  std::atomic<bool> done = false;
  std::jthread rescuer([&done] {  // presses another button, so that boxes left open fail instead of hanging
    for (int i = 0; i < 500 && !done; ++i) Sleep(20);
    for (; !done; Sleep(20)) PostMessageW(FindWindowW(L"#32770", nullptr), WM_COMMAND, IDOK, 0);
  });
  open(0);
  done = true;
  ASSERT_EQ(answers.size(), std::size(rows));
  for (std::size_t i = 0; i < answers.size(); ++i) EXPECT_EQ(answers[i], rows[i].answer) << i;
  EXPECT_TRUE(launcher->Life().Ending());
}

}  // namespace
