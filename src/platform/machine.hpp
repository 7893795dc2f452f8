#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/host.hpp"

// Makers of the real services, one implementation each in win32/ and posix/.
namespace platform {

// Where the Linux build tells the outside what it does ("Run ...", "Open ...", "MsgBox ..."); Windows has no
// use for it. Called on the interface thread.
using TellOutside = std::function<void(const std::string& line)>;

std::unique_ptr<Clock> MakeClock();
std::unique_ptr<Processes> MakeProcesses(TellOutside tell);
std::unique_ptr<Shell> MakeShell(TellOutside tell);
std::unique_ptr<SettingsStore> MakeSettingsStore();
std::unique_ptr<ProfileFiles> MakeProfileFiles();
std::unique_ptr<HttpClient> MakeHttpClient();

// The interface thread's loop, made on that thread: the system's events and the timers that are due by
// `clock`.
std::unique_ptr<EventLoop> MakeEventLoop(Clock& clock);

}  // namespace platform
