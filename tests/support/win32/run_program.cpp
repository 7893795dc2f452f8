#include "support/win32/run_program.hpp"

#include <stdexcept>

#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"

namespace support {
namespace {

constexpr DWORD kGenerousMs = 60'000;

}  // namespace

DWORD RunProgram(const std::string& commandLine) {
  std::wstring line = platform::Wide(commandLine);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION started;
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started)) {
    throw std::runtime_error("cannot start " + commandLine);
  }
  const platform::unique_process process(started.hProcess);
  const platform::unique_thread thread(started.hThread);
  if (WaitForSingleObject(process.get(), kGenerousMs) != WAIT_OBJECT_0) {
    TerminateProcess(process.get(), STILL_ACTIVE);
  }
  DWORD status = STILL_ACTIVE;
  GetExitCodeProcess(process.get(), &status);
  return status;
}

}  // namespace support
