#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/host.hpp"
#include "platform/machine.hpp"

namespace support {

// A clock that stands still until it is stepped; Sleep steps it at once.
class SteppedClock : public platform::Clock {
 public:
  std::uint64_t Milliseconds() override { return now_ += stepOnRead; }
  std::uint32_t SystemUptime() override { return static_cast<std::uint32_t>(now_) & platform::kUptimeMask; }
  void Sleep(std::uint32_t milliseconds) override { now_ += milliseconds; }
  std::int64_t UnixTime() override { return unixTime; }
  std::string DateText() override { return "21/11/2026"; }
  std::string TimeText() override { return "10:20:30"; }
  void Set(std::uint64_t now) { now_ = now; }
  void Step(std::uint64_t milliseconds) { now_ += milliseconds; }

  std::uint64_t Now() const { return now_; }  // without making time pass

  std::int64_t unixTime = 1'795'256'430;  // the date and time above, UTC
  std::uint64_t stepOnRead = 0;           // makes time pass inside a wait that a test cannot reach into

 private:
  std::uint64_t now_ = 3'600'000;
};

struct ShownDialog {
  std::string title, text;
  platform::DialogButtons buttons;
};

// Records message boxes and answers them from a script; past its end OK, or No, or Cancel.
class ScriptedDialogs : public platform::Dialogs {
 public:
  platform::DialogAnswer Show(const std::string& text, platform::DialogButtons buttons,
                              const std::string& title) override;
  void Announce(const std::string& text, const std::string& title) override {
    shown.push_back({title, text, platform::DialogButtons::Ok});
  }
  std::deque<platform::DialogAnswer> answers;  // used by questions only
  std::vector<ShownDialog> shown;
  std::function<void(const ShownDialog&)> onShow;
};

struct RecordedLock : platform::NamedLock {
  bool existed = false;
  std::function<void()> onRelease;
  bool AlreadyExisted() const override { return existed; }
  ~RecordedLock() override {
    if (onRelease) onRelease();
  }
};

class RecordedProcesses : public platform::Processes {
 public:
  void Start(const platform::StartRequest& request) override {
    started.push_back(request);
    if (onStart) onStart(request);
  }
  bool StartElevated(const platform::StartRequest& request) override {
    elevated.push_back(request);
    return allowElevation;
  }
  void EndAtOnce(int exitStatus) override { endedAtOnce = exitStatus; }
  std::vector<std::string> RunningImageNames() override { return running; }
  std::unique_ptr<platform::NamedLock> TakeLock(const std::string& name) override;

  std::vector<platform::StartRequest> started, elevated;
  bool allowElevation = true;  // what the player answers
  std::vector<std::string> running, locksTaken, locksReleased;
  std::function<void(const platform::StartRequest&)> onStart;  // may raise, as the system does
  std::optional<int> endedAtOnce;
  bool lockExists = false;
};

class RecordedShell : public platform::Shell {
 public:
  bool OpenPage(const std::string& url, const std::string& workingFolder) override {
    pages.push_back(url);
    folders.push_back(workingFolder);
    return true;
  }
  bool OpenFile(const std::string& file, const std::string& workingFolder) override {
    files.push_back(file);
    folders.push_back(workingFolder);
    return true;
  }
  std::vector<std::string> pages, files, folders;
};

// The machine for a test: the real HTTP client, files, profile files, settings store and event loop;
// stand-ins that record for the clock, the message boxes and started processes.
class TestHost {
 public:
  TestHost();

  SteppedClock clock;
  ScriptedDialogs dialogs;
  RecordedProcesses processes;
  RecordedShell shell;
  std::unique_ptr<platform::EventLoop> events;
  std::unique_ptr<platform::SettingsStore> settings;
  std::unique_ptr<platform::ProfileFiles> profiles;
  std::unique_ptr<platform::HttpClient> http;
  platform::Host host;
};

}  // namespace support
