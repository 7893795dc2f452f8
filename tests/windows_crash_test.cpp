#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "platform/crash_reports.hpp"
#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

constexpr const char* kFolder = "LAUNCHER_TEST_CRASH";
constexpr int kUncaught = static_cast<int>(0xE0004B56);

int Deeper(volatile int* above) {  // until the stack is used up
  volatile int here[1024];
  here[0] = *above + 1;
  return here[0] < 0 ? 0 : Deeper(here) + here[0];
}

void WriteToNowhere() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

__attribute__((noinline)) void WritePastTheEnd() {
  volatile char text[16];
  volatile char* volatile start = text;
  volatile char* const at = start;
  for (int i = 0; i < 64; ++i) at[i] = 'x';
}

struct Disaster {
  const char* name;
  void (*happen)();
  int status;
};

class WindowsCrashReports : public testing::TestWithParam<Disaster> {};

// The child that crashes is this program started anew for this test; it finds the folder in the environment.
TEST_P(WindowsCrashReports, ACrashLeavesADumpAndTheEndOfTheLog) {
  const support::TempFolder own;
  if (!std::getenv(kFolder)) _putenv_s(kFolder, own.Path().c_str());
  const std::string folder = std::getenv(kFolder), reports = folder + "\\Fallos ñ",
                    log = folder + "\\Errores.log";
  std::string text = "first\r\n";
  for (int line = 0; line < 2000; ++line) text += "line " + std::to_string(line) + "\r\n";
  WriteWhole(log, text);
  EXPECT_EXIT(
      {
        ReportCrashesTo(reports, log);
        GetParam().happen();
      },
      testing::ExitedWithCode(GetParam().status), "");
  _putenv_s(kFolder, "");
  const std::string report = TakeCrashReport(reports);
  ASSERT_FALSE(report.empty());
  const std::string told = ReadWhole(report, 1 << 20);
  EXPECT_TRUE(told.starts_with("launcher ")) << told.substr(0, 80);
  EXPECT_TRUE(told.ends_with("\nline 1999\r\n"));
  EXPECT_EQ(told.find("first"), std::string::npos);
  EXPECT_TRUE(ReadWhole(report.substr(0, report.size() - 4) + ".dmp", 1 << 28).starts_with("MDMP"));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, WindowsCrashReports,
    testing::Values(Disaster{"null", WriteToNowhere, static_cast<int>(EXCEPTION_ACCESS_VIOLATION)},
                    Disaster{"overflow",
                             [] {
                               volatile int start = 0;
                               Deeper(&start);
                             },
                             static_cast<int>(EXCEPTION_STACK_OVERFLOW)},
                    Disaster{"uncaught", [] { std::thread([] { throw std::runtime_error("x"); }).join(); },
                             kUncaught},
                    Disaster{"smashed", WritePastTheEnd, static_cast<int>(STATUS_STACK_BUFFER_OVERRUN)},
                    Disaster{"abort", [] { std::abort(); }, kUncaught}),
    [](const auto& info) { return std::string(info.param.name); });

// Start-up tells of an earlier crash before it shows its window.
bool ShowsItsWindow(DWORD process) {
  const HWND window = FindWindowW(nullptr, L"Launcher - Kelvarin");
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  return owner == process && IsWindowVisible(window);
}

// The finished program, made to run what lies at no address.
TEST(WindowsCrashOfTheProgram, LeavesItsReportAmongThePlayersOwnData) {
  const support::TempFolder folder;
  folder.Put("game/Deployment.ini", "[MIRRORS]\r\n1=http://127.0.0.1:1/\r\n");
  folder.Put("Errores.log", "the last line\r\n");
  const std::string program = folder / "game/launcher.exe";
  CloneFile(FolderOf(ExecutablePath()) + "\\launcher.exe", program);
  std::wstring line = Wide("\"" + program + "\"");
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION started;
  ASSERT_TRUE(
      CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started));
  const unique_process process(started.hProcess);
  const unique_thread thread(started.hThread);
  for (int i = 0; i < 3000 && !ShowsItsWindow(started.dwProcessId); ++i) Sleep(10);
  const unique_thread crash(CreateRemoteThread(process.get(), nullptr, 0, nullptr, nullptr, 0, nullptr));
  const DWORD waited = WaitForSingleObject(process.get(), 60'000);
  TerminateProcess(process.get(), 1);
  EXPECT_EQ(waited, WAIT_OBJECT_0);
  DWORD status = 0;
  GetExitCodeProcess(process.get(), &status);
  EXPECT_EQ(status, static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION));
  const std::string report = TakeCrashReport(CrashFolder());
  ASSERT_FALSE(report.empty());
  EXPECT_NE(ReadWhole(report, 1 << 20).find("\nthe last line\r\n"), std::string::npos);
  RemoveTree(CrashFolder());
}

}  // namespace
}  // namespace platform
