#include <windows.h>
// after windows.h, which they build on
#include <shellapi.h>
#include <tlhelp32.h>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/win32/com_apartment.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/system_error.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr DWORD kElevationRequired = 740;  // winerror.h of some toolchains lacks the name
constexpr std::string_view kGlobalPrefix = "Global\\";

WORD ShowCommandOf(WindowStyle style) {
  switch (style) {
    case WindowStyle::Minimised:
      return SW_SHOWMINNOACTIVE;
    case WindowStyle::Hidden:
      return SW_HIDE;
    case WindowStyle::NormalFocus:
      break;
  }
  return SW_SHOWNORMAL;
}

// Full path of the program that a request names; empty when it is neither a full path nor a bare name.
std::string ProgramOf(const StartRequest& request) {
  const std::string program = NativePath(request.program);
  if (program.find_first_of("\\:") == std::string::npos) {
    return program.empty() ? program : SystemFolder() + kSeparator + program;
  }
  const bool onDrive = program.size() > 2 && program[1] == ':' && program[2] == '\\';
  return onDrive || program.starts_with("\\\\") ? program : std::string{};
}

// The command line without the program that it begins with, which may hold blanks and yet have no quotes.
std::string ArgumentsOf(const StartRequest& request) {
  const std::string_view line = request.commandLine;
  std::size_t end = std::min(line.find(' '), line.size());
  if (line.starts_with(request.program)) end = request.program.size();
  if (line.starts_with('"')) end = std::min(line.find('"', 1), line.size() - 1) + 1;
  return std::string(base::Trim(line.substr(end)));
}

// Lets the shell start a program; it asks the player for the rights of an administrator where these are
// needed, or with the verb "runas" in any case. False when the player refused.
bool StartByShell(const StartRequest& request, const std::string& program, const wchar_t* verb) {
  const ComApartment com;
  const std::wstring file = Wide(program), arguments = Wide(ArgumentsOf(request)),
                     folder = Wide(request.workingFolder);
  SHELLEXECUTEINFOW start{};
  start.cbSize = sizeof start;
  start.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
  start.hwnd = GetActiveWindow();  // the question comes up over it, and not behind other windows
  start.lpVerb = verb;
  start.lpFile = file.c_str();
  start.lpParameters = arguments.c_str();
  start.lpDirectory = folder.empty() ? nullptr : folder.c_str();
  start.nShow = ShowCommandOf(request.style);
  if (ShellExecuteExW(&start)) return true;
  const DWORD code = GetLastError();
  if (code != ERROR_CANCELLED) RaiseWithText(code, program);
  return false;
}

// A working folder as CreateProcess takes it, which knows no long paths: by its short name when it has one.
std::wstring FolderArgument(const std::string& folder) {
  const std::wstring plain = Wide(folder), path = SystemPath(folder);
  if (plain == path) return plain;
  std::wstring shorter(path.size() + 1, L'\0');
  const DWORD length = GetShortPathNameW(path.c_str(), shorter.data(), static_cast<DWORD>(shorter.size()));
  constexpr std::wstring_view kPrefix = L"\\\\?\\";
  if (length == 0 || length >= MAX_PATH || !shorter.starts_with(kPrefix)) return plain;
  return shorter.substr(kPrefix.size(), length - kPrefix.size());
}

class SystemLock : public NamedLock {
 public:
  SystemLock(unique_mutex mutex, bool existed) : mutex_(std::move(mutex)), existed_(existed) {}
  bool AlreadyExisted() const override { return existed_; }

 private:
  unique_mutex mutex_;
  bool existed_;
};

class SystemProcesses : public Processes {
 public:
  void Start(const StartRequest& request) override {
    const std::string program = ProgramOf(request);
    if (program.empty()) RaiseWithText(ERROR_BAD_PATHNAME);
    std::wstring line = Wide(request.commandLine);  // the call may write into it
    const std::wstring folder = FolderArgument(request.workingFolder);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = ShowCommandOf(request.style);
    PROCESS_INFORMATION started;
    if (!CreateProcessW(SystemPath(program).c_str(), line.data(), nullptr, nullptr, FALSE,
                        CREATE_DEFAULT_ERROR_MODE, nullptr, folder.empty() ? nullptr : folder.c_str(), &start,
                        &started)) {
      const DWORD code = GetLastError();
      if (code != kElevationRequired) RaiseWithText(code, program);
      // Its manifest demands it. A refusal is a failure like any other here, in the system's words.
      if (!StartByShell(request, program, nullptr)) RaiseWithText(ERROR_CANCELLED, program);
      return;
    }
    const unique_process process(started.hProcess);
    const unique_thread thread(started.hThread);
  }

  bool StartElevated(const StartRequest& request) override {
    const std::string program = ProgramOf(request);
    if (program.empty()) RaiseWithText(ERROR_BAD_PATHNAME);
    return StartByShell(request, program, L"runas");
  }

  void EndAtOnce(int exitStatus) override { ExitProcess(static_cast<UINT>(exitStatus)); }

  std::vector<std::string> RunningImageNames() override {
    std::vector<std::string> names;
    const unique_snapshot snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry;
    entry.dwSize = sizeof entry;
    if (!snapshot || !Process32FirstW(snapshot.get(), &entry)) return names;
    do {
      names.push_back(FileNameOf(Narrow(entry.szExeFile)));
    } while (Process32NextW(snapshot.get(), &entry));
    return names;
  }

  std::unique_ptr<NamedLock> TakeLock(const std::string& name) override {
    unique_mutex mutex(CreateMutexW(nullptr, FALSE, Wide(name).c_str()));
    DWORD code = GetLastError();
    if (mutex) return std::make_unique<SystemLock>(std::move(mutex), code == ERROR_ALREADY_EXISTS);
    // Denied is a lock that another user holds, but also any global name in a confined session. Only in the
    // first case is there something to open; the second one is content with a name of its session.
    if (code == ERROR_ACCESS_DENIED && name.starts_with(kGlobalPrefix)) {
      mutex.reset(OpenMutexW(SYNCHRONIZE, FALSE, Wide(name).c_str()));
      if (!mutex && GetLastError() == ERROR_FILE_NOT_FOUND) {
        return TakeLock("Local\\" + name.substr(kGlobalPrefix.size()));
      }
    }
    return std::make_unique<SystemLock>(std::move(mutex), true);
  }
};

}  // namespace

std::unique_ptr<Processes> MakeProcesses(TellOutside) { return std::make_unique<SystemProcesses>(); }

}  // namespace platform
