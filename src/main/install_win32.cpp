#include "main/install_win32.hpp"

#include <windows.h>
// after windows.h, which it builds on
#include <shlobj.h>

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/dialogs.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/player_install.hpp"
#include "platform/win32/com_apartment.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/known_folder.hpp"
#include "platform/win32/shell_link.hpp"
#include "platform/win32/wide.hpp"

namespace install {
namespace {

constexpr const char* kShortcut = "\\Kelvarin.lnk";
constexpr wchar_t kUninstallKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Kelvarin";

struct Wish {
  bool install = false, uninstall = false, quiet = false;
};

Wish WishOf(std::string_view arguments) {
  Wish wish;
  for (const std::string_view word : base::Split(arguments, ' ')) {
    wish.install |= base::EqualIgnoringCase(word, "/INSTALL");
    wish.uninstall |= base::EqualIgnoringCase(word, "/UNINSTALL");
    wish.quiet |= base::EqualIgnoringCase(word, "/QUIET");
  }
  return wish;
}

// The log lies in the folder above the game's, so that one is the launcher's own too.
std::string GameFolder() {
  return platform::KnownFolder(FOLDERID_LocalAppData) + "\\Programs\\Kelvarin\\Juego";
}

std::string ProgramIn(const std::string& folder) { return folder + "\\" + platform::kInstalledProgram; }

std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

void Say(const Wish& wish, const std::string& text) {
  if (wish.quiet) return;
  MessageBoxW(nullptr, platform::Wide(text).c_str(), platform::Wide(platform::kDefaultDialogTitle).c_str(),
              MB_OK | MB_SETFOREGROUND);
}

std::vector<std::string> Shortcuts() {
  std::vector<std::string> paths;
  for (const KNOWNFOLDERID& id : {FOLDERID_Programs, FOLDERID_Desktop}) {
    const std::string folder = platform::KnownFolder(id);
    if (!folder.empty()) paths.push_back(folder + kShortcut);
  }
  return paths;
}

void Set(HKEY key, const wchar_t* name, const std::string& text) {
  const std::wstring value = platform::Wide(text);
  RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

void Set(HKEY key, const wchar_t* name, DWORD number) {
  RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

// The entry in the system's list of programs.
void ListProgram(const std::string& folder) {
  platform::unique_registry_key key;
  const LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, kUninstallKey, 0, nullptr, 0, KEY_SET_VALUE,
                                         nullptr, key.receive(), nullptr);
  if (status != ERROR_SUCCESS) throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
  const std::string program = ProgramIn(folder), uninstall = Quoted(program) + " /UNINSTALL";
  Set(key.get(), L"DisplayName", "Kelvarin");
  Set(key.get(), L"DisplayVersion", LAUNCHER_VERSION);
  Set(key.get(), L"DisplayIcon", program);
  Set(key.get(), L"Publisher", "Kelvarin");
  Set(key.get(), L"InstallLocation", folder);
  Set(key.get(), L"UninstallString", uninstall);
  Set(key.get(), L"QuietUninstallString", uninstall + " /QUIET");
  Set(key.get(), L"NoModify", 1);
  Set(key.get(), L"NoRepair", 1);
}

std::string ListedFolder() {
  std::wstring folder(32768, L'\0');
  auto bytes = static_cast<DWORD>(folder.size() * sizeof(wchar_t));
  const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, kUninstallKey, L"InstallLocation", RRF_RT_REG_SZ,
                                      nullptr, folder.data(), &bytes);
  return status == ERROR_SUCCESS ? platform::Narrow(folder.c_str()) : std::string{};
}

int Install(const Wish& wish) {
  const std::string folder = GameFolder(), program = ProgramIn(folder);
  if (!base::EqualIgnoringCase(platform::ExecutablePath(), program)) {
    platform::InstallInto(platform::ExecutablePath(), folder);
  }
  for (const std::string& shortcut : Shortcuts()) platform::MakeShellLink(shortcut, program, "Kelvarin");
  ListProgram(folder);
  if (!wish.quiet) {
    platform::MakeProcesses({})->Start(
        {program, Quoted(program), platform::WindowStyle::NormalFocus, folder});
  }
  return 0;
}

int Uninstall(const Wish& wish) {
  const std::string folder = platform::FolderOf(platform::ExecutablePath());
  if (!platform::IsInstalledIn(folder)) {
    Say(wish, "El launcher de esta carpeta no fue instalado; no hay nada que desinstalar.");
    return 1;
  }
  for (const std::string& shortcut : Shortcuts()) {
    if (base::EqualIgnoringCase(platform::TargetOfShellLink(shortcut), ProgramIn(folder))) {
      platform::TryRemoveFile(shortcut);
    }
  }
  SetCurrentDirectoryW(platform::Wide(platform::SystemFolder()).c_str());  // a folder in use would stay
  const bool complete = platform::RemoveInstalled(folder);
  platform::TryRemoveEmptyFolder(platform::FolderOf(folder));
  if (!complete) {
    Say(wish, "No se pudieron quitar todos los archivos de " + folder + ".");
    return 1;
  }
  if (base::EqualIgnoringCase(ListedFolder(), folder)) RegDeleteTreeW(HKEY_CURRENT_USER, kUninstallKey);
  Say(wish, platform::IsFolder(folder)
                ? "Kelvarin se desinstaló. Los archivos del juego siguen en " + folder + "."
                : "Kelvarin se desinstaló.");
  return 0;
}

}  // namespace

std::optional<int> RunIfAsked(std::string_view arguments) {
  const Wish wish = WishOf(arguments);
  if (!wish.install && !wish.uninstall) return std::nullopt;
  const platform::ComApartment com;
  try {
    return wish.install ? Install(wish) : Uninstall(wish);
  } catch (const base::RuntimeError& error) {
    Say(wish, "Error " + std::to_string(error.Number()) + " (" + error.Description() + ")" +
                  (wish.install ? " al instalar Kelvarin." : " al desinstalar Kelvarin."));
    return 1;
  }
}

}  // namespace install
