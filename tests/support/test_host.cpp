#include "support/test_host.hpp"

namespace support {

platform::DialogAnswer ScriptedDialogs::Show(const std::string& text, platform::DialogButtons buttons,
                                             const std::string& title) {
  shown.push_back({title, text, buttons});
  if (onShow) onShow(shown.back());
  if (buttons == platform::DialogButtons::Ok || answers.empty()) return platform::UnattendedAnswer(buttons);
  const platform::DialogAnswer answer = answers.front();
  answers.pop_front();
  return answer;
}

std::unique_ptr<platform::NamedLock> RecordedProcesses::TakeLock(const std::string& name) {
  locksTaken.push_back(name);
  auto lock = std::make_unique<RecordedLock>();
  lock->existed = lockExists;
  lock->onRelease = [this, name] { locksReleased.push_back(name); };
  return lock;
}

TestHost::TestHost()
    : events(platform::MakeEventLoop(clock)),
      settings(platform::MakeSettingsStore()),
      profiles(platform::MakeProfileFiles()),
      http(platform::MakeHttpClient()),
      host{clock, *events, dialogs, processes, shell, *settings, *profiles, *http} {}

}  // namespace support
