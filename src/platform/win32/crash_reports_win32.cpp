#include <windows.h>
// after windows.h, which it builds on
#include <dbghelp.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "base/runtime_error.hpp"
#include "platform/crash_reports.hpp"
#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/system_library.hpp"
#include "platform/win32/wide.hpp"

// Everything below Crashed runs in a process that is broken: it takes no memory from the heap and needs
// nothing that was not made before.
namespace platform {
namespace {

constexpr DWORD kUncaught = 0xE0004B56;  // a C++ exception that nobody caught, or abort()
constexpr DWORD kPatienceMs = 20'000;
constexpr DWORD kTail = 8 * 1024;           // bytes of the log
constexpr ULONG kStackReserve = 64 * 1024;  // bytes left to whoever reports an overflow of the stack
constexpr std::size_t kLongestPath = 900;   // with the name of a report within what wsprintf can make

// The one thing that a process has only one of. Filled once, before the handlers are set.
struct Prepared {
  std::array<wchar_t, kLongestPath> folder{}, log{};
};
Prepared prepared;
std::atomic<bool> reporting = false;

void Copy(const std::wstring& text, std::array<wchar_t, kLongestPath>& into) {
  if (text.size() < into.size()) text.copy(into.data(), text.size());
}

struct Crash {
  EXCEPTION_POINTERS* pointers;
  DWORD thread;
};

unique_file Made(const wchar_t* name) {
  return unique_file(CreateFileW(name, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
}

void WriteDump(const Crash& crash, const wchar_t* name) {
  const unique_library library = LoadSystemLibrary(L"dbghelp.dll");
  auto* const write = FunctionOf<decltype(MiniDumpWriteDump)>(library.get(), "MiniDumpWriteDump");
  if (!write) return;
  const unique_file file = Made(name);
  MINIDUMP_EXCEPTION_INFORMATION information{crash.thread, crash.pointers, FALSE};
  write(GetCurrentProcess(), GetCurrentProcessId(), file.get(),
        static_cast<MINIDUMP_TYPE>(MiniDumpNormal | MiniDumpWithThreadInfo), &information, nullptr, nullptr);
}

void WriteTail(HANDLE into) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const unique_file log(
      CreateFileW(prepared.log.data(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  LARGE_INTEGER size{};
  if (!log || !GetFileSizeEx(log.get(), &size)) return;
  LARGE_INTEGER start{};
  start.QuadPart = size.QuadPart > kTail ? size.QuadPart - kTail : 0;
  SetFilePointerEx(log.get(), start, nullptr, FILE_BEGIN);
  std::array<char, kTail> text;
  DWORD count = 0, written = 0;
  ReadFile(log.get(), text.data(), kTail, &count, nullptr);
  const char* begin = text.data();
  const char* const end = begin + count;
  if (start.QuadPart > 0) {  // only whole lines
    while (begin != end && *begin++ != '\n') {
    }
  }
  WriteFile(into, begin, static_cast<DWORD>(end - begin), &written, nullptr);
}

void WriteText(const EXCEPTION_RECORD& record, const wchar_t* name) {
  const unique_file file = Made(name);
  std::array<char, 256> line;
  const int size = std::snprintf(
      line.data(), line.size(), "launcher " LAUNCHER_VERSION ": 0x%08lX at %p of %p\r\n",
      record.ExceptionCode, record.ExceptionAddress, static_cast<void*>(GetModuleHandleW(nullptr)));
  DWORD written = 0;
  WriteFile(file.get(), line.data(), static_cast<DWORD>(size), &written, nullptr);
  WriteTail(file.get());
}

// On a thread of its own, because the stack of the one that crashed may be used up.
DWORD WINAPI WriteReport(void* argument) {
  const Crash& crash = *static_cast<const Crash*>(argument);
  SYSTEMTIME now;
  GetSystemTime(&now);
  std::array<wchar_t, kLongestPath + 64> name;
  const auto named = [&](const wchar_t* ending) {
    wsprintfW(name.data(), L"%s\\crash-%04u%02u%02u-%02u%02u%02u-%03u%s", prepared.folder.data(), now.wYear,
              now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds, ending);
    return name.data();
  };
  CreateDirectoryW(prepared.folder.data(), nullptr);
  WriteText(*crash.pointers->ExceptionRecord, named(L".txt"));
  WriteDump(crash, named(L".dmp"));
  return 0;
}

LONG WINAPI Crashed(EXCEPTION_POINTERS* pointers) {
  if (reporting.exchange(true)) return EXCEPTION_CONTINUE_SEARCH;
  Crash crash{pointers, GetCurrentThreadId()};
  const unique_thread writer(CreateThread(nullptr, 0, WriteReport, &crash, 0, nullptr));
  if (writer) WaitForSingleObject(writer.get(), kPatienceMs);
  // At once, and without the system's own question: the next start tells the player.
  TerminateProcess(GetCurrentProcess(), pointers->ExceptionRecord->ExceptionCode);
  return EXCEPTION_EXECUTE_HANDLER;
}

[[noreturn]] void GiveUp() {
  RaiseException(kUncaught, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  std::_Exit(3);
}

}  // namespace

void ReportCrashesTo(const std::string& folder, const std::string& log) {
  try {
    MakeFolders(folder);
  } catch (const base::RuntimeError&) {
    return;  // nowhere to leave a report
  }
  KeepCrashReports(folder, kMostCrashReports - 1);  // room for one more
  Copy(SystemPath(folder), prepared.folder);
  Copy(SystemPath(log), prepared.log);
  ULONG reserve = kStackReserve;
  SetThreadStackGuarantee(&reserve);
  SetUnhandledExceptionFilter(Crashed);
  std::set_terminate(GiveUp);
  std::signal(SIGABRT, [](int) { GiveUp(); });
}

}  // namespace platform
