#include <gtest/gtest.h>
#include <windows.h>

#include <random>
#include <thread>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/user_folders.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/harden.hpp"
#include "platform/win32/known_folder.hpp"
#include "platform/win32/moved_aside.hpp"
#include "platform/win32/wide.hpp"
#include "support/body_sink.hpp"
#include "support/faulty_server.hpp"
#include "support/temp_folder.hpp"
#include "support/win32/junction.hpp"

namespace platform {
namespace {

using support::TempFolder;

struct LibraryTraits : base::NullIsNone<HMODULE> {
  static void Close(Type library) { FreeLibrary(library); }
};

// A program mapped the way a running one is; it can be renamed and nothing else.
base::UniqueHandle<LibraryTraits> Mapped(const std::string& path) {
  return base::UniqueHandle<LibraryTraits>(
      LoadLibraryExW(Wide(path).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
}

template <class Condition>
bool Eventually(Condition condition) {
  for (const std::uint64_t end = GetTickCount64() + 20'000; GetTickCount64() < end; Sleep(5)) {
    if (condition()) return true;
  }
  return false;
}

TEST(WindowsSettings, LieWhereOlderInstallationsLeftThem) {
  const std::wstring key = L"Software\\VB and VBA Program Settings\\LauncherTests\\Ñ";
  MakeSettingsStore()->Set("LauncherTests", "Ñ", "clave", "año €");
  wchar_t value[100];
  DWORD size = sizeof value, type = 0;
  ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, key.c_str(), L"clave", RRF_RT_ANY, &type, value, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(Narrow(value), "año €");
  EXPECT_EQ(type, DWORD{REG_SZ});
  unique_registry_key folder;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_ALL_ACCESS, folder.receive()),
            ERROR_SUCCESS);
  const std::wstring longer(2000, L'x');
  RegSetValueExW(folder.get(), L"open", 0, REG_SZ, reinterpret_cast<const BYTE*>(longer.data()),
                 static_cast<DWORD>(longer.size() * sizeof(wchar_t)));  // without its final NUL
  EXPECT_EQ(MakeSettingsStore()->Get("LauncherTests", "Ñ", "open"), std::string(2000, 'x'));
  RegDeleteTreeW(folder.get(), nullptr);
}

TEST(WindowsUserFolders, OnlyAFolderThatIsThereIsTakenFromTheEnvironment) {
  const TempFolder folder;
  const std::string shells = KnownFolder(FOLDERID_LocalAppData);
  const std::pair<std::string, std::string> cases[] = {{folder.Path(), folder.Path()},
                                                       {folder / "none", shells},
                                                       {"relative", shells},
                                                       {"C:\\" + std::string(MAX_PATH, 'x'), shells},
                                                       {"", shells}};
  const std::string before = std::getenv("LOCALAPPDATA");
  for (const auto& [told, taken] : cases) {
    SetEnvironmentVariableW(L"LOCALAPPDATA", told.empty() ? nullptr : Wide(told).c_str());
    EXPECT_EQ(LocalDataFolder(), taken + "\\Kelvarin") << told;
  }
  SetEnvironmentVariableW(L"LOCALAPPDATA", Wide(before).c_str());
}

TEST(WindowsFiles, ARunningProgramIsReplaced) {
  const TempFolder folder;
  const std::string program = folder / "juego ñ.exe";
  CloneFile(ExecutablePath(), program);
  {
    const auto running = Mapped(program);
    ASSERT_TRUE(running);
    ASSERT_FALSE(DeleteFileW(Wide(program).c_str())) << "a running program could be deleted here";
    for (const char* next : {"second", "third"}) {
      WriteWhole(program, next);
      EXPECT_EQ(ReadWhole(program, 100), next);
    }
    EXPECT_EQ(ListTree(folder.Path()).size(), 2u) << "the old program lies beside the new one";
  }
  RemoveMovedAside(program);
  EXPECT_EQ(ListTree(folder.Path()), std::vector<FoundFile>{{"juego ñ.exe"}});
}

TEST(WindowsFiles, AKilledWriterLeavesNothing) {
  const TempFolder folder;  // the child that is killed makes one of its own, but writes into this one
  const char* variable = "LAUNCHER_TEST_KILLED_WRITER";
  if (!std::getenv(variable)) _putenv_s(variable, (folder / "a").c_str());
  EXPECT_EXIT(
      {
        OutputFile file(std::getenv(variable));
        file.Write("half");
        TerminateProcess(GetCurrentProcess(), 7);
      },
      testing::ExitedWithCode(7), "");
  _putenv_s(variable, "");
  EXPECT_EQ(ListTree(folder.Path()).size(), 0u);
}

TEST(WindowsFiles, AJunctionIsNeitherListedNorFollowed) {
  const TempFolder folder, outside;
  outside.Put("precious", "1");
  folder.Put("tree/a", "1");
  if (!support::MakeJunction(folder / "tree/link", outside.Path())) GTEST_SKIP() << "no junctions here";
  ASSERT_TRUE(IsFile(folder / "tree/link/precious"));
  EXPECT_EQ(ListTree(folder / "tree"), std::vector<FoundFile>{{"a"}});
  try {
    RemoveTree(folder / "tree");
    EXPECT_FALSE(folder.Has("tree"));
  } catch (const base::RuntimeError&) {  // Wine cannot remove a link to a folder that is not empty
  }
  EXPECT_TRUE(outside.Has("precious"));
}

TEST(WindowsProcesses, ABareNameIsFoundInTheSystemFolderOnly) {
  const TempFolder folder;
  const auto processes = MakeProcesses({});
  CloneFile(SystemFolder() + "\\cmd.exe", folder / "decoy.exe");
  SetCurrentDirectoryW(Wide(folder.Path()).c_str());
  for (const char* program : {"decoy.exe", ".\\decoy.exe", "", "decoy", "\\decoy.exe", "x:decoy.exe"}) {
    EXPECT_THROW(processes->Start({program, "decoy.exe /c exit", WindowStyle::Hidden, ""}),
                 base::RuntimeError)
        << program;
  }
  HardenProcess();
  CloneFile(SystemFolder() + "\\version.dll", folder / "decoy.dll");
  EXPECT_EQ(LoadLibraryW(L"decoy.dll"), nullptr);
  SetCurrentDirectoryW(Wide(SystemFolder()).c_str());
}

TEST(WindowsProcesses, AnElevatedOneGetsItsArgumentsAndFolder) {
  const TempFolder folder;
  ASSERT_TRUE(MakeProcesses({})->StartElevated(
      {"cmd.exe", "cmd.exe /c echo [%CD%]>out & ren out done", WindowStyle::Hidden, folder.Path()}));
  ASSERT_TRUE(Eventually([&] { return folder.Has("done"); }));
  EXPECT_THROW(MakeProcesses({})->StartElevated({folder / "none.exe", "none.exe", WindowStyle::Hidden, ""}),
               base::RuntimeError);
}

TEST(WindowsShell, OnlyWebAddressesAreOpenedAsPages) {
  const auto shell = MakeShell({});
  for (const char* page : {"", "cmd.exe", "file:///C:/windows/notepad.exe", "javascript:alert(1)",
                           "C:\\windows\\notepad.exe", "ftp://127.0.0.1/", "http://", "http:\\\\a"}) {
    EXPECT_FALSE(shell->OpenPage(page, "")) << page;
  }
  EXPECT_FALSE(shell->OpenFile("regsvr32 C:\\none.dll", ""));
  EXPECT_FALSE(shell->OpenFile("http://127.0.0.1/", ""));
}

TEST(WindowsHttpClient, IsStoppedAtAnyMoment) {
  support::FaultyServer server("127.0.0.2");
  const support::DeafPort deaf("127.0.0.4");
  server.On("/silent", support::Silent());
  server.On("/hold", support::CutShort(std::string(100'000, 'x'), 60'000, support::Answer::Cut::Silence));
  server.On("/trickle", {.body = std::string(100'000, 'y'), .paceBytes = 100, .paceMs = 1});
  const std::string urls[] = {deaf.Url(), server.Url("/silent"), server.Url("/hold"), server.Url("/trickle")};
  std::minstd_rand random(1);
  for (int i = 0; i < 40; ++i) {
    const auto client = MakeHttpClient();  // gone while the system still works on what was given up
    std::stop_source stop;
    const std::jthread player([&, pause = random() % 12] {
      Sleep(pause);
      stop.request_stop();
    });
    support::BodySink sink;
    const auto outcome = client->Get({.url = urls[random() % 4]}, sink, stop.get_token());
    EXPECT_EQ(outcome.error, HttpError::Cancelled);
  }
}

}  // namespace
}  // namespace platform
