#include <windows.h>

#include <gtest/gtest.h>

#include <optional>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"
#include "startup/launcher_settings.hpp"
#include "startup/system_directory.hpp"
#include "support/archives.hpp"
#include "support/temp_folder.hpp"
#include "support/test_host.hpp"
#include "update/game_launch.hpp"

namespace {

namespace keys = startup::keys;

constexpr const char* kGame = "Mis juegos ñ/Kelvarin ó";
constexpr const char* kDone = "Se han registrado las librerias correctamente.";

// The system's own processes, on a machine that may lack the registration tool.
struct RealProcesses : platform::Processes {
  void Start(const platform::StartRequest& request) override {
    const bool registers = platform::FileNameOf(request.program) == "regsvr32.exe";
    registrations += registers;
    platform::StartRequest asked = request;
    // Wine without its 32-bit half has the tool in the other folder only.
    if (registers) asked.program = toolThere ? "regsvr32.exe" : "no-regsvr32-here.exe";
    if (registers) tool = request.program;
    try {
      system->Start(asked);
    } catch (const base::RuntimeError&) {
      failures += registers;
      throw;
    }
  }
  bool StartElevated(const platform::StartRequest& request) override {
    return system->StartElevated(request);
  }
  void EndAtOnce(int exitStatus) override { system->EndAtOnce(exitStatus); }
  std::vector<std::string> RunningImageNames() override { return system->RunningImageNames(); }
  std::unique_ptr<platform::NamedLock> TakeLock(const std::string& name) override {
    return system->TakeLock(name);
  }
  std::unique_ptr<platform::Processes> system = platform::MakeProcesses({});
  bool toolThere = true;
  int registrations = 0, failures = 0;
  std::string tool;  // as it was asked for
};

// The launch with processes that really start, the game in a folder with blanks and accents.
struct WindowsLaunchTest : testing::Test {
  WindowsLaunchTest() {
    LibrarySet("0.4.1");
    for (const char* decoy : {"Mis.exe", "Mis juegos.exe", "Mis juegos ñ/Kelvarin.exe"}) PutProgram(decoy);
  }
  void LibrarySet(const char* version) {
    machine.settings->Set(keys::kLibraries, keys::kVersion, keys::kV, version);
  }
  void PutProgram(const std::string& name) {
    folder.Put(name, "");
    platform::CloneFile(platform::FolderOf(platform::ExecutablePath()) + "\\echo_client.exe", folder / name);
  }
  std::string InGame(const char* name) const { return std::string(kGame) + name; }

  // What the client says of its start; empty when it says nothing in good time.
  std::string Echo() {
    const std::string echo = InGame("/Bin/eco.txt");
    const auto end = GetTickCount64() + 20'000;
    while (!folder.Has(echo) && GetTickCount64() < end) machine.events->WaitEvents(20);
    const std::string said = folder.Get(echo);
    platform::TryRemoveFile(folder / echo);
    return said;
  }
  void Launch() {
    machine.dialogs.shown.clear();
    closed = 0;
    launch.EjecutarKelvar("CLAVE ñ \"dos palabras\"");
    EXPECT_EQ(closed, 1);
  }
  std::string Expected() const {
    const std::string bin = folder / InGame("/Bin"), client = bin + "\\KVN-DX8.exe";
    return client + "\n" + client + " CLAVE ñ \"dos palabras\"\n" + bin + "\n";
  }

  support::TempFolder folder;
  support::TestHost machine;
  RealProcesses processes;
  platform::Host host{machine.clock, *machine.events,   machine.dialogs,   processes,
                      machine.shell, *machine.settings, *machine.profiles, *machine.http};
  startup::Folders folders{folder / kGame};
  startup::RunFlags flags{"launcher", ""};
  startup::Lifetime lifetime{host.events};
  startup::ErrorRecorder recorder{host, folders, lifetime};
  controls::MainWindow window{host.events.Timers()};
  startup::Deployment deployment;
  startup::Services services{host, folders, deployment, flags, recorder, lifetime};
  std::optional<std::string> published;  // digest of the graphics library, as the index has it
  update::LibraryCheck libraries{services, window, [this](const std::string&) { return published; }};
  int closed = 0;
  update::GameLaunch launch{services, libraries, [this] { ++closed; }};
};

TEST_F(WindowsLaunchTest, TheClientStartsWhateverItsFolderIsCalled) {
  PutProgram(InGame("/Bin/KVN-DX8.exe"));
  Launch();
  EXPECT_EQ(Echo(), Expected());
  EXPECT_FALSE(folder.Has("eco.txt"));
  EXPECT_FALSE(folder.Has("Mis juegos ñ/eco.txt"));
  EXPECT_TRUE(machine.dialogs.shown.empty());
}

TEST_F(WindowsLaunchTest, AMissingOrBrokenClientIsToldAndNothingElseRuns) {
  Launch();
  ASSERT_EQ(machine.dialogs.shown.size(), 1u);
  EXPECT_EQ(machine.dialogs.shown[0].text, "No se encuentra KVN-DX8.exe");
  folder.Put(InGame("/Bin/KVN-DX8.exe"), "no program");
  Launch();
  ASSERT_EQ(machine.dialogs.shown.size(), 1u);
  EXPECT_NE(machine.dialogs.shown[0].text.find(" in procedure EjecutarKelvar of Formulario frmMain"),
            std::string::npos);
  EXPECT_FALSE(folder.Has("eco.txt"));
}

TEST_F(WindowsLaunchTest, RegistrationsThatFailDoNotStopTheLaunch) {
  PutProgram(InGame("/Bin/KVN-DX8.exe"));
  for (const bool toolThere : {true, false}) {
    processes.toolThere = toolThere;
    processes.registrations = processes.failures = 0;
    LibrarySet("0.4.0");
    Launch();
    EXPECT_EQ(processes.registrations, 11);
    EXPECT_EQ(processes.failures, toolThere ? 0 : 11);
    EXPECT_EQ(processes.tool, startup::ObtenerDirectorio(recorder) + "\\regsvr32.exe");
    EXPECT_EQ(Echo(), Expected()) << toolThere;
    ASSERT_EQ(machine.dialogs.shown.size(), 1u);
    EXPECT_EQ(machine.dialogs.shown[0].text, kDone);
  }
}

// The system's graphics library, put back as it was at the end.
struct GraphicsLibrary {
  explicit GraphicsLibrary(const std::string& systemFolder) : path(systemFolder + "\\DX8VB.DLL") {
    if (platform::IsFile(path)) before = Bytes();
    platform::WriteWhole(path, "the system's");
  }
  ~GraphicsLibrary() { before ? platform::WriteWhole(path, *before) : platform::RemoveFile(path); }
  GraphicsLibrary(const GraphicsLibrary&) = delete;
  std::string Bytes() const { return platform::ReadWhole(path, 1 << 28); }
  platform::unique_file Open(DWORD sharing) const {
    return platform::unique_file(
        CreateFileW(platform::Wide(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr));
  }
  // Which file of the volume bears the name: another one after a copy.
  DWORD Identity() const {
    BY_HANDLE_FILE_INFORMATION info{};
    GetFileInformationByHandle(Open(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE).get(), &info);
    return info.nFileIndexLow;
  }
  std::string path;
  std::optional<std::string> before;
};

TEST_F(WindowsLaunchTest, TheGraphicsLibraryIsCopiedWhenItDiffersAndMayBeRefused) {
  if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
    GTEST_SKIP() << "would change a real system";
  }
  const GraphicsLibrary library(startup::ObtenerDirectorio(recorder));
  folder.Put(InGame("/Bin/DX8VB.DLL"), "the game's");
  processes.toolThere = false;
  const auto check = [&] {
    machine.dialogs.shown.clear();
    libraries.VerificarLibrerias();
    ASSERT_EQ(machine.dialogs.shown.size(), 1u);
    EXPECT_EQ(machine.dialogs.shown[0].text, kDone);
    EXPECT_EQ(window.lblName.Caption.Get(), "Librerias correctas.");
  };
  for (const auto& other : {std::optional<std::string>(), std::optional(support::Md5Of("another"))}) {
    published = other;
    check();
    EXPECT_EQ(library.Bytes(), "the system's") << "only what the index names goes there";
  }
  published = support::Md5Of("the game's");
  {
    const platform::unique_file used = library.Open(FILE_SHARE_READ);
    ASSERT_TRUE(used);
    check();
  }
  EXPECT_EQ(library.Bytes(), "the system's") << "in use, so it stays";
  check();
  EXPECT_EQ(library.Bytes(), "the game's");
  const DWORD copied = library.Identity();
  check();
  EXPECT_EQ(library.Identity(), copied) << "equal already, so not copied again";
  platform::RemoveFile(folder / InGame("/Bin/DX8VB.DLL"));
  check();
  EXPECT_EQ(library.Bytes(), "the game's");
}

}  // namespace
